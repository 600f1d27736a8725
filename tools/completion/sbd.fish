# Completion of sbd for fish. The program itself knows what may follow; see `sbd __complete`.

function __sbd_complete
    set -l words (commandline --cut-at-cursor --tokenize --current-process)
    set -l current (commandline --cut-at-cursor --current-token)
    # Without quoting, and with the home folder spelled out.
    set -l word (string unescape -- $current; or echo -- $current)
    set -l program (string replace -r '^~/' "$HOME/" -- $words[1])
    set -l before
    for typed in $words[2..-1]
        set -a before (string replace -r '^~/' "$HOME/" -- $typed)
    end
    set -l answer ($program __complete $before "$word" 2>/dev/null)
    switch "$answer[1]"
        case 'files any'
            __fish_complete_path "$current"
        case 'files descriptors'
            __fish_complete_path "$current" | string match -re '(/|\.sbd)(\t|$)'
    end
    for line in $answer[2..-1]
        echo -- $line
    end
end

complete --command sbd --no-files --arguments '(__sbd_complete)'
