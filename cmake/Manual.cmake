# SPDX-License-Identifier: Apache-2.0
# Manual pages and completions. The pages of the tool come from the tool itself; docs/man holds the others.
set(man_dir ${CMAKE_BINARY_DIR}/share/man)
add_custom_command(OUTPUT ${man_dir}/man1/torka.1
    COMMAND ${CMAKE_COMMAND} -E make_directory ${man_dir}/man1
    COMMAND torka manual ${man_dir}/man1
    DEPENDS torka COMMENT "Writing the manual pages" VERBATIM)
add_custom_target(manual ALL DEPENDS ${man_dir}/man1/torka.1)

foreach(page torka-print-dialog.1 torka-keys.5 torkafilter.8)
    string(REGEX MATCH "[0-9]$" section ${page})
    configure_file(docs/man/${page} ${man_dir}/man${section}/${page} @ONLY)
endforeach()

install(DIRECTORY ${man_dir}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT torka
    PATTERN torka-print-dialog.1 EXCLUDE)
install(FILES ${man_dir}/man1/torka-print-dialog.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT torka-print-dialog)

# The folders that bash-completion, zsh and fish search.
set(completion_dir ${CMAKE_INSTALL_DATAROOTDIR})
install(FILES completions/torka.bash
    DESTINATION ${completion_dir}/bash-completion/completions RENAME torka COMPONENT torka)
install(FILES completions/_torka DESTINATION ${completion_dir}/zsh/vendor-completions COMPONENT torka)
install(FILES completions/torka.fish DESTINATION ${completion_dir}/fish/vendor_completions.d COMPONENT torka)
