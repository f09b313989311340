# SPDX-License-Identifier: Apache-2.0
# What is called and not written here. scripts/install-deps.sh holds the packages.
find_package(PkgConfig REQUIRED)
find_package(ZLIB REQUIRED)
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-uc icu-i18n)
pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(UUID REQUIRED IMPORTED_TARGET uuid)
pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle hogweed)
# Narrows what the filter may ask of the kernel.
pkg_check_modules(SECCOMP REQUIRED IMPORTED_TARGET libseccomp)
pkg_check_modules(AVAHI REQUIRED IMPORTED_TARGET avahi-client)
find_library(GMP_LIBRARY gmp REQUIRED)
# The printing system ships no pkg-config file.
find_library(CUPS_LIBRARY cups REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
# Only the pane's views, the adapter in platform/qt, the print dialog, the sample module and the bundle's entry link it.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Gui Widgets PrintSupport UiTools)
if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    include(GoogleTest)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
endif()
# The interfaces of the desktop portal.
pkg_check_modules(PORTAL REQUIRED xdg-desktop-portal)
