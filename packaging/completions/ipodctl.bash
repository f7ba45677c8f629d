# bash completion for ipodctl(1): the program knows its words, "ipodctl complete" prints them.

_ipodctl() {
    local cur prev words cword line word typed known
    _init_completion -n := || return

    typed=${cur#[\"\']}
    [[ $cur == [\"\']* ]] || typed=${typed//\\/}
    # The shell keeps what comes before the last "=" or ":".
    known=${typed%"${typed##*[=:]}"}
    while IFS= read -r line; do
        case $line in
            $'\tfiles'*) _filedir ${line#$'\tfiles'} ;;
            $'\tcommands') COMPREPLY=($(compgen -c -- "$cur")) ;;
            "$typed"*)
                word=${line%%$'\t'*}
                [[ $word != *= ]] || compopt -o nospace
                word=${word#"$known"}
                [[ $cur == [\"\']* ]] || word=$(printf %q "$word")
                COMPREPLY+=("$word")
                ;;
        esac
    done < <(ipodctl complete "${words[@]:1:cword-1}" "$typed" 2>/dev/null)
} &&
    complete -F _ipodctl ipodctl
