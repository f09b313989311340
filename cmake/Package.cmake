# SPDX-License-Identifier: Apache-2.0
# Debian packages of the installed files, one for each component: scripts/package builds them.
set(TORKA_PACKAGE_MAINTAINER "The Torka print maintainers <maintainers@example.org>" CACHE STRING "Field of the packages")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME torka)
set(CPACK_PACKAGE_VERSION ${TORKA_SORTED_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL torka torka-print-dialog torka-dev)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${TORKA_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_HOMEPAGE_URL "")

# CPack takes a maintainer's script by the name of its file, so each package has a folder of them.
function(maintainer_script package name)
    set(made ${CMAKE_BINARY_DIR}/packaging/${package}/${name})
    configure_file(packaging/debian/${package}.${name}.in ${made} @ONLY)
    file(CHMOD ${made} PERMISSIONS ${program_mode})
    string(TOUPPER ${package} upper)
    set(scripts CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA)
    set(${scripts} ${${scripts}} ${made} PARENT_SCOPE)
endfunction()

set(CPACK_DEBIAN_TORKA_PACKAGE_NAME torka)
set(CPACK_DEBIAN_TORKA_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TORKA_PACKAGE_DEPENDS "cups")
set(CPACK_DEBIAN_TORKA_PACKAGE_RECOMMENDS "avahi-daemon")
set(CPACK_COMPONENT_TORKA_DESCRIPTION "Tool and print filter for Torka print controllers
The filter splices job tickets into PostScript jobs of the CUPS queues whose
description names it. The tool shows and checks extended printer descriptions,
sets up queues, prints from scripts and tells what a queue lacks.")
file(STRINGS ${CMAKE_BINARY_DIR}/packaging/torka.conf folders REGEX "^d ")
list(TRANSFORM folders REPLACE "^d (.*) -$" "    make_folder \\1")
list(JOIN folders "\n" TORKA_MAKE_FOLDERS)
maintainer_script(torka postinst)
maintainer_script(torka postrm)

string(TOUPPER torka-print-dialog dialog)
set(CPACK_DEBIAN_${dialog}_PACKAGE_NAME torka-print-dialog)
set(CPACK_DEBIAN_${dialog}_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_${dialog}_PACKAGE_DEPENDS "torka (= ${TORKA_SORTED_VERSION})")
set(CPACK_DEBIAN_${dialog}_PACKAGE_RECOMMENDS "qt6-translations-l10n") # the toolkit's own dialogs and buttons
set(CPACK_DEBIAN_${dialog}_PACKAGE_SUGGESTS "qt6-wayland, xdg-desktop-portal")
set(CPACK_COMPONENT_${dialog}_DESCRIPTION "Print dialog with every feature of a Torka print controller
Adds a pane to the print dialog: all options of the printer's extended
description, their constraints, presets, watermarks, job notes and live data of
the controller. Programs of Qt 6 and the desktop portal can have it too.")
maintainer_script(torka-print-dialog postrm)

string(TOUPPER torka-dev dev)
set(CPACK_DEBIAN_${dev}_PACKAGE_NAME torka-dev)
set(CPACK_DEBIAN_${dev}_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_${dev}_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_${dev}_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_${dev}_PACKAGE_SUGGESTS "cmake, pkg-config, qt6-base-dev, torka")
set(CPACK_COMPONENT_${dev}_DESCRIPTION "Interfaces for Job Properties modules and print dialogs
The C header of Job Properties modules, the interfaces of the print dialog's
plug-in, and the source of a sample module.")
include(CPack)

# Each package carries its licence and its changes. The date is that of the release's section in CHANGELOG.md.
string(REPLACE "." "\\." pattern "## ${TORKA_VERSION} \\(")
file(STRINGS CHANGELOG.md release REGEX "^${pattern}[0-9-]+\\)$")
if(NOT release)
    message(FATAL_ERROR "CHANGELOG.md has no section \"## ${TORKA_VERSION} (YEAR-MONTH-DAY)\"")
endif()
string(REGEX REPLACE ".*\\((.*)\\)" "\\1" release "${release}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc --rfc-email --date ${release}
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/packaging/changelog @ONLY CONTENT
"torka (@TORKA_SORTED_VERSION@) unstable; urgency=medium

  * See CHANGELOG.md in /usr/share/doc/torka.

 -- @TORKA_PACKAGE_MAINTAINER@  @date@
")
find_program(GZIP gzip REQUIRED)
execute_process(COMMAND ${GZIP} -9nf -k ${CMAKE_BINARY_DIR}/packaging/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    install(FILES packaging/debian/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz
        DESTINATION ${TORKA_DOC_DIR}/${component} COMPONENT ${component})
endforeach()
install(FILES packaging/debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
    RENAME torka-print-dialog COMPONENT torka-print-dialog)
