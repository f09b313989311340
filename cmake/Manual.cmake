# SPDX-License-Identifier: Apache-2.0
# Manual pages and completions. The pages of the tool come from the tool itself; docs/man holds the others. They are
# installed compressed, as Debian wants them.
set(man_dir ${CMAKE_BINARY_DIR}/share/man)
set(own_pages)
foreach(page torka-print-dialog.1 torka-print-portal.1 torka-keys.5 torkafilter.8)
    string(REGEX MATCH "[0-9]$" section ${page})
    configure_file(docs/man/${page} ${man_dir}/man${section}/${page} @ONLY)
    list(APPEND own_pages ${man_dir}/man${section}/${page})
endforeach()
add_custom_command(OUTPUT ${man_dir}/man1/torka.1.gz
    COMMAND torka manual ${man_dir}/man1
    COMMAND find ${man_dir} -name "*.[1-8]" -exec gzip -9nfk {} +
    DEPENDS torka ${own_pages} COMMENT "Writing the manual pages" VERBATIM)
add_custom_target(manual ALL DEPENDS ${man_dir}/man1/torka.1.gz)

install(DIRECTORY ${man_dir}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT torka
    FILES_MATCHING PATTERN "*.gz" PATTERN "torka-print-*.gz" EXCLUDE)
install(FILES ${man_dir}/man1/torka-print-dialog.1.gz ${man_dir}/man1/torka-print-portal.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT torka-print-dialog)

# The folders that bash-completion, zsh and fish search.
install(FILES completions/torka.bash
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions RENAME torka COMPONENT torka)
install(FILES completions/_torka DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions COMPONENT torka)
install(FILES completions/torka.fish
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d COMPONENT torka)
