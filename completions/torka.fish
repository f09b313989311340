# SPDX-License-Identifier: Apache-2.0
# Completion of torka for fish. The tool itself tells what can follow; nothing of its answer is evaluated.

function __torka_complete
    set -l words (commandline -opc)
    # An open quote belongs to the token.
    set -l word (string replace -r '^["\']' '' -- (commandline -ct))
    for line in ($words[1] complete words $words "$word" 2>/dev/null)
        switch $line
            case \tfiles
                __fish_complete_path "$word"
            case \tfolders
                __fish_complete_directories "$word"
            case '*'
                printf '%s\n' $line
        end
    end
end

complete -c torka -f -a '(__torka_complete)'
