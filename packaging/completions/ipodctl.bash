# bash completion for ipodctl(1)

_ipodctl() {
    local cur prev words cword
    _init_completion || return

    local verbs='status info play pause stop next previous seek shuffle repeat ls cd browse queue devices carplay carlife
        button hub art events eap sim doctor'
    local sessions='init launch write listen echo'
    local happenings='call battery carplay carlife wireless pairing location source app attach detach button eap-open
        eap-close eap-data calls fault clear-faults scenario'
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
        sim)
            case $action in
                '') arguments=$happenings ;;
                call) options+=' --number --name --status --direction --sequence' ;;
                battery) options+=' --level --disabled --charging --charged --discharging' ;;
                carplay) arguments='on off unsupported' options+=' --serial' ;;
                carlife) arguments='on off unsupported' ;;
                wireless) arguments='on off' options+=' --address' ;;
                location | source) arguments='on off' ;;
                pairing) options+=' --hex' ;;
                button) arguments='play pause stop next previous' ;;
                eap-open) options+=' --protocol' ;;
                eap-data) options+=' --text --hex --file' ;;
                calls) options+=' --clear' ;;
                fault)
                    arguments='delay no-reply error wrong-type short-record long-record half-filled unterminated
                        bad-message out-of-range crash crash-locked restart-storm'
                    ;;
                scenario) _filedir json ;;
            esac
            ;;
    esac

    [[ $cur == -* ]] && arguments=$options
    COMPREPLY+=($(compgen -W "$arguments" -- "$cur"))
} &&
    complete -F _ipodctl ipodctl
