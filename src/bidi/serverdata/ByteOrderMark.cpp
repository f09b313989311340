// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ByteOrderMark.h"

#include "bidi/serverdata/CUtil.h"

namespace torka {

std::wstring withMarkLetters(std::wstring_view wide) {
    return wide.starts_with(wideMark) ? CUtil::__replaceW(wide, wideMark, wideMarkLetters)
                                      : std::wstring(wide);
}

std::string withMarks(std::string_view narrow) {
    return narrow.starts_with(markLetters) ? CUtil::__replace(narrow, markLetters, narrowMark)
                                           : std::string(narrow);
}

std::wstring withMarks(std::wstring_view wide) {
    return wide.starts_with(wideMarkLetters) ? CUtil::__replaceW(wide, wideMarkLetters, wideMark)
                                             : std::wstring(wide);
}

} // namespace torka
