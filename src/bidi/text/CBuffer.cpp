// SPDX-License-Identifier: Apache-2.0
#include "bidi/text/CBuffer.h"

#include "bidi/text/NumberText.h"
#include "platform/TextEncoding.h"

namespace torka {

void CBuffer::AddString(std::wstring_view piece) { text += piece; }

void CBuffer::AddCString(std::string_view piece) { text += wideFromUtf8(piece); }

void CBuffer::AddInt(int value) { text += std::to_wstring(value); }

void CBuffer::AddFloat(float value) { AddCString(streamText(value)); }

std::string CBuffer::GetCStrData() const { return utf8FromWide(text); }

} // namespace torka
