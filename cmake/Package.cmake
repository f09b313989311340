# SPDX-License-Identifier: Apache-2.0
# Debian packages of the installed files, one for each component: scripts/package builds them.
set(TORKA_PACKAGE_MAINTAINER "The Torka print maintainers <maintainers@example.org>" CACHE STRING "Field of the packages")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME torka)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
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

set(CPACK_DEBIAN_TORKA_PACKAGE_NAME torka)
set(CPACK_DEBIAN_TORKA_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TORKA_PACKAGE_DEPENDS "cups")
set(CPACK_DEBIAN_TORKA_PACKAGE_RECOMMENDS "cups-client")
set(CPACK_COMPONENT_TORKA_DESCRIPTION "Tool and print filter for Torka print controllers
 The filter splices job tickets into PostScript jobs of CUPS queues whose description
 names it. The tool shows and checks extended printer descriptions, sets up queues,
 prints from scripts and tells what a queue lacks.")
set(CPACK_DEBIAN_TORKA_PACKAGE_CONTROL_EXTRA
    "${CMAKE_BINARY_DIR}/packaging/postinst;${CMAKE_SOURCE_DIR}/packaging/debian/postrm")
file(STRINGS ${CMAKE_BINARY_DIR}/packaging/torka.conf folders REGEX "^d ")
list(TRANSFORM folders REPLACE "^d (.*) -$" "    make_folder \\1")
list(JOIN folders "\n" TORKA_MAKE_FOLDERS)
configure_file(packaging/debian/postinst.in ${CMAKE_BINARY_DIR}/packaging/postinst @ONLY)
file(CHMOD ${CMAKE_BINARY_DIR}/packaging/postinst ${CMAKE_SOURCE_DIR}/packaging/debian/postrm ${CMAKE_SOURCE_DIR}/packaging/debian/prerm
    PERMISSIONS ${program_mode})

string(TOUPPER torka-print-dialog dialog)
set(CPACK_DEBIAN_${dialog}_PACKAGE_NAME torka-print-dialog)
set(CPACK_DEBIAN_${dialog}_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_${dialog}_PACKAGE_DEPENDS "torka (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_${dialog}_PACKAGE_CONTROL_EXTRA "${CMAKE_SOURCE_DIR}/packaging/debian/prerm")
set(CPACK_DEBIAN_${dialog}_PACKAGE_SUGGESTS "xdg-desktop-portal")
set(CPACK_COMPONENT_${dialog}_DESCRIPTION "Print dialog with every feature of a Torka print controller
 Adds a pane to the print dialog: all options of the printer's extended description,
 their constraints, presets, watermarks, job notes and live data of the controller.")

string(TOUPPER torka-dev dev)
set(CPACK_DEBIAN_${dev}_PACKAGE_NAME torka-dev)
set(CPACK_DEBIAN_${dev}_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_${dev}_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_${dev}_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_${dev}_DESCRIPTION "Interfaces for Job Properties modules and print dialogs
 The C header of Job Properties modules, the interfaces of the print dialog's plug-in,
 and the source of a sample module.")
include(CPack)

# Each package carries its licence and its changes.
string(TIMESTAMP date "%a, %d %b %Y 00:00:00 +0000" UTC)
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/packaging/changelog @ONLY CONTENT
"torka (@PROJECT_VERSION@) unstable; urgency=medium

  * See CHANGELOG.md in /usr/share/doc/torka.

 -- @TORKA_PACKAGE_MAINTAINER@  @date@
")
find_program(GZIP gzip REQUIRED)
execute_process(COMMAND ${GZIP} -9nf -k ${CMAKE_BINARY_DIR}/packaging/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    install(FILES packaging/debian/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz
        DESTINATION ${TORKA_DOC_DIR}/${component} COMPONENT ${component})
endforeach()
