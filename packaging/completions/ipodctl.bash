# bash completion for ipodctl(1)

_ipodctl() {
    local cur prev words cword
    _init_completion || return

    local verbs='status info play pause stop next previous seek shuffle repeat ls cd queue devices carplay carlife
        button hub art events eap doctor fingerprint'
    local sessions='init launch write listen echo'
    local verb='' action='' word
    for word in "${words[@]:1:cword-1}"; do
        [[ $word == -* ]] && continue
        if [[ -z $verb ]]; then verb=$word; elif [[ -z $action ]]; then action=$word; fi
    done

    case $prev in
        --from | --count | --timeout | --held | --back | --protocols | --bundle) return ;;
    esac

    local options='--help --json --verbose' arguments=''
    case $verb in
        '') arguments=$verbs options+=' --version' ;;
        shuffle) [[ -n $action ]] || arguments='off songs albums' ;;
        repeat) [[ -n $action ]] || arguments='off one all' ;;
        seek) options+=' --back' ;;
        ls) options+=' --from --count --all' ;;
        cd) [[ -n $action ]] || arguments='.. /' ;;
        button) options+=' --held' ;;
        events) options+=' --count --timeout --no-progress' ;;
        art) [[ -n $action ]] || _filedir ;;
        eap)
            case $action in
                '') arguments=$sessions ;;
                write) _filedir ;;
                listen) options+=' --count --timeout' ;;
                echo) options+=' --protocols --bundle --timeout' ;;
            esac
            ;;
    esac

    [[ $cur == -* ]] && arguments=$options
    COMPREPLY+=($(compgen -W "$arguments" -- "$cur"))
} &&
    complete -F _ipodctl ipodctl
