// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFontMetrics>
#include <algorithm>

namespace torka::jobproperties {

// The unit of widths that a window needs at least. A font with Chinese or Japanese characters has an average
// width twice as large, although a text in these languages has half as many characters.
inline int letterWidth(const QFontMetrics& metrics) {
    return std::min(metrics.averageCharWidth(), metrics.horizontalAdvance(QLatin1Char('x')));
}

} // namespace torka::jobproperties
