// SPDX-License-Identifier: Apache-2.0
// A program of Qt that knows nothing of the pane. It loads the plug-in because its environment says so.

#include <QApplication>
#include <QStyleFactory>
#include <gtest/gtest.h>

// libcups 2.4 loses texts of the cache that it makes for a PPD, when Qt's dialog asks for a queue that is not
// ours. The address sanitizer asks this function.
extern "C" const char* __lsan_default_suppressions();                                            // NOLINT
extern "C" const char* __lsan_default_suppressions() { return "leak:_ppdCacheCreateWithPPD\n"; } // NOLINT

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_PLUGIN_PATH", TORKA_QT_PLUGINS);
    qputenv("QT_QPA_GENERIC_PLUGINS", "torka");
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    return RUN_ALL_TESTS();
}
