// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/OpenWindow.h"

#include "jobproperties/core/Session.h"
#include "jobproperties/window/JobPropertiesWindow.h"
#include "jobproperties/window/OwnTexts.h"

#include <QApplication>
#include <QThread>

#include <array>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace torka::jobproperties {

namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// Makes a QApplication for a host that has none. Qt sets the process's locale when it starts; this restores
// the host's locale at once, because the host may write numbers while the window is open.
class OwnApplication {
public:
    OwnApplication() {
        const char* locale = std::setlocale(LC_ALL, nullptr);
        const std::string before = locale == nullptr ? "C" : locale;
        application = std::make_unique<QApplication>(count, arguments.data());
        std::setlocale(LC_ALL, before.c_str());
        loadOwnTexts();
    }

private:
    // Qt keeps both by reference.
    std::string name = "torka";
    std::array<char*, 2> arguments{name.data(), nullptr};
    int count = 1;
    std::unique_ptr<QApplication> application;
};

} // namespace

SDMRESULT openWindow(Session& session, const std::string& title, std::int32_t& result) {
    const QCoreApplication* host = QCoreApplication::instance();
    const auto refuse = [](const char* reason) {
        std::cerr << "Job Properties: no window can be shown: " << reason << '\n';
        return SDM_NOT_AVAILABLE;
    };
    if (host != nullptr && qobject_cast<const QApplication*>(host) == nullptr) {
        return refuse("the program's Qt application is none with widgets");
    }
    if (host != nullptr && host->thread() != QThread::currentThread()) {
        return refuse("this is not the thread of the program's Qt application");
    }
    // Qt ends the whole program when it finds no display.
    if (host == nullptr && !isSet("QT_QPA_PLATFORM") && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) {
        return refuse("there is no display (DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM are not set)");
    }

    const std::unique_ptr<OwnApplication> own =
        host == nullptr ? std::make_unique<OwnApplication>() : nullptr;
    JobPropertiesWindow window(session, QString::fromStdString(title), QApplication::activeWindow());
    result = window.exec() == QDialog::Accepted ? 0 : 1;
    return SDM_SUCCESS;
}

} // namespace torka::jobproperties
