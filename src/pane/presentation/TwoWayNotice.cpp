// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/TwoWayNotice.h"

namespace torka {

TwoWayState twoWayState(bool isOn, bool hasFailed) {
    if (!isOn) {
        return TwoWayState::off;
    }
    return hasFailed ? TwoWayState::failed : TwoWayState::on;
}

TwoWayNotice twoWayNotice(const PaneTexts& texts, TwoWayState state) {
    TwoWayNotice notice;
    switch (state) {
    case TwoWayState::off:
        notice.text = texts.Say(words::off);
        break;
    case TwoWayState::on:
        notice.text = texts.Say(words::on);
        break;
    case TwoWayState::failed:
        notice.text = texts.Say(words::twoWayFailed);
        notice.hint = texts.Say(words::twoWayFailedHint);
        break;
    }
    notice.spoken = texts.Say(words::twoWay, notice.text);
    return notice;
}

} // namespace torka
