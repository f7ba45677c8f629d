# fish completion for ipodctl(1): the program knows its words, "ipodctl complete" prints them.

function __ipodctl_complete
    set -l typed (commandline -ct)
    set -l words (commandline -opc)[2..-1]
    set -l lines (ipodctl complete $words "$typed" 2>/dev/null)
    switch "$lines[1]"
        case \t'files*'
            __fish_complete_path "$typed"
        case \tcommands
            __fish_complete_command
        case '*'
            printf '%s\n' $lines
    end
end

complete -c ipodctl -f -a '(__ipodctl_complete)'
