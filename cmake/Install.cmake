# SPDX-License-Identifier: Apache-2.0
# The one list of what is installed, and where. The components are the packages: torka, torka-print-dialog, torka-dev.
set(TORKA_CUPS_FILTER_DIR "lib/cups/filter" CACHE STRING "Folder of the print server's filters, below the prefix")
set(TORKA_FILTER_USER "lp" CACHE STRING "User and group that the print server runs filters as")
set(TORKA_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc)

# The print server refuses a filter that somebody else than its owner may write.
set(program_mode OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(TARGETS torka RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT torka)
install(TARGETS torkafilter RUNTIME DESTINATION ${TORKA_CUPS_FILTER_DIR} PERMISSIONS ${program_mode} COMPONENT torka)
configure_file(packaging/tmpfiles.conf.in ${CMAKE_BINARY_DIR}/packaging/torka.conf @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/packaging/torka.conf DESTINATION lib/tmpfiles.d COMPONENT torka)
file(GLOB documents CONFIGURE_DEPENDS docs/*.md)
install(FILES README.md CHANGELOG.md ${documents} DESTINATION ${TORKA_DOC_DIR}/torka COMPONENT torka)
install(DIRECTORY docs/guide docs/decisions DESTINATION ${TORKA_DOC_DIR}/torka COMPONENT torka)
install(DIRECTORY docs/images DESTINATION ${TORKA_DOC_DIR}/torka COMPONENT torka OPTIONAL)
install(DIRECTORY samples/ DESTINATION ${TORKA_DOC_DIR}/torka/examples COMPONENT torka)
# Links of the pages follow what moves: docs/ is the pages' own folder there, and the module's source another package's.
install(CODE "set(pages \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${TORKA_DOC_DIR}/torka/*.md\")" COMPONENT torka)
install(CODE [[
    file(GLOB_RECURSE pages "${pages}")
    foreach(page IN LISTS pages)
        file(READ "${page}" text)
        string(REPLACE "](docs/" "](" text "${text}")
        string(REGEX REPLACE "\\]\\((\\.\\./)?jobproperties/" "](../torka-dev/examples/jobproperties/" text "${text}")
        string(REPLACE "](../../jobproperties/" "](../../torka-dev/examples/jobproperties/" text "${text}")
        string(REPLACE "](../src/bidi/Job" "](../../../include/torka/bidi/Job" text "${text}")
        file(WRITE "${page}" "${text}")
    endforeach()]] COMPONENT torka)

install(TARGETS torka-print-dialog RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT torka-print-dialog)
install(TARGETS torkaprintdialog LIBRARY DESTINATION ${TORKA_QT_PLUGIN_DIR}/generic COMPONENT torka-print-dialog)
install(TARGETS torkadialog LIBRARY DESTINATION ${TORKA_PLUGIN_DIR} COMPONENT torka-print-dialog)
set(bundle ${TORKA_PLUGIN_DIR}/TorkaFeatures.bundle/Contents)
install(TARGETS TorkaFeatures LIBRARY DESTINATION ${bundle}/Linux COMPONENT torka-print-dialog)
install(DIRECTORY ${TORKA_BUILT_BUNDLE}/Contents/ DESTINATION ${bundle} COMPONENT torka-print-dialog
    PATTERN Linux EXCLUDE PATTERN Tool.strings EXCLUDE)
# The tool has its texts without the plug-in, too.
install(DIRECTORY bundle/Resources/ DESTINATION ${bundle}/Resources COMPONENT torka FILES_MATCHING PATTERN Tool.strings)

# What a Job Properties module or another print dialog includes.
install(FILES src/bidi/JobPropertiesModule.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/torka/bidi COMPONENT torka-dev)
install(FILES src/platform/PrintDialogExtension.h src/platform/Printing.h src/platform/CoreFoundation.h
    src/platform/Bundle.h src/platform/Result.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/torka/platform COMPONENT torka-dev)
set(pc_dir ${CMAKE_INSTALL_DATAROOTDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_DATAROOTDIR}/pkgconfig
    OUTPUT_VARIABLE TORKA_PREFIX_FROM_PC)
configure_file(packaging/torka.pc.in ${CMAKE_BINARY_DIR}/packaging/torka.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/packaging/torka.pc DESTINATION ${pc_dir} COMPONENT torka-dev)
set(module_source ${TORKA_DOC_DIR}/torka-dev/examples/jobproperties)
install(DIRECTORY jobproperties/ DESTINATION ${module_source} COMPONENT torka-dev PATTERN CMakeLists.txt EXCLUDE)
install(FILES packaging/sample-module/CMakeLists.txt DESTINATION ${module_source} COMPONENT torka-dev)

# The desktop: the print portal, and an entry that prints files. The service's files name the program by its full path,
# so they are made when the prefix is known.
set(desktop_folder ${CMAKE_BINARY_DIR}/packaging)
install(TARGETS torka-print-portal RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT torka-print-dialog)
install(CODE "
    set(TORKA_PORTAL \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/torka-print-portal\")
    foreach(kind dbus systemd)
        configure_file(\"${CMAKE_SOURCE_DIR}/packaging/portal.service.\${kind}.in\"
            \"${desktop_folder}/portal.service.\${kind}\" @ONLY)
    endforeach()" COMPONENT torka-print-dialog)
install(FILES ${desktop_folder}/portal.service.dbus DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/dbus-1/services
    RENAME org.freedesktop.impl.portal.desktop.torka.service COMPONENT torka-print-dialog)
install(FILES ${desktop_folder}/portal.service.systemd DESTINATION lib/systemd/user
    RENAME torka-print-portal.service COMPONENT torka-print-dialog)
install(FILES packaging/00-torka.portal DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/xdg-desktop-portal/portals
    COMPONENT torka-print-dialog)
install(FILES packaging/org.torka.print.desktop DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/applications
    COMPONENT torka-print-dialog)
install(FILES packaging/icons/org.torka.print.svg DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/icons/hicolor/scalable/apps
    COMPONENT torka-print-dialog)
install(FILES packaging/org.torka.print.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/metainfo
    COMPONENT torka-print-dialog)
