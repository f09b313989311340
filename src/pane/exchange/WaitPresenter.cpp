// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/WaitPresenter.h"

#include "platform/System.h"

#include <utility>

namespace torka {

namespace {

std::unique_ptr<WaitPresenter>& chosenPresenter() {
    static std::unique_ptr<WaitPresenter> presenter;
    return presenter;
}

int depth = 0; // of nested scopes

} // namespace

WaitPresenter::~WaitPresenter() = default;

void setWaitPresenter(std::unique_ptr<WaitPresenter> presenter) { chosenPresenter() = std::move(presenter); }

WaitPresenter* waitPresenter() { return chosenPresenter().get(); }

ScopedWait::ScopedWait() {
    if (depth++ == 0 && waitPresenter() != nullptr) {
        waitPresenter()->Begin();
    }
}

ScopedWait::~ScopedWait() {
    if (--depth == 0 && waitPresenter() != nullptr) {
        waitPresenter()->End();
    }
}

WaitObserver ScopedWait::Observer() {
    return [](const WaitProgress& progress) {
        if (depth > 0 && waitPresenter() != nullptr) {
            waitPresenter()->Show(progress);
        }
    };
}

bool ScopedWait::IsCancelled() { return !system().Sleep(std::chrono::milliseconds(0)); }

} // namespace torka
