# bash completion for ipodctl(1)

# Adds those lines of a command's output that begin with what was typed, quoted for the shell. A name of digits only would
# be an index without its "./".
_ipodctl_names() {
    local name typed=${cur#[\"\']}
    while IFS= read -r name; do
        [[ $name == *[!0-9]* ]] || name=./$name
        [[ $name == "$typed"* ]] || continue
        if [[ $cur == [\"\']* ]]; then COMPREPLY+=("$name"); else COMPREPLY+=("$(printf %q "$name")"); fi
    done < <(ipodctl --deadline 1 "$@" --names 2>/dev/null)
}

_ipodctl() {
    local cur prev words cword
    _init_completion || return

    local verbs='status info play pause stop next previous seek shuffle repeat ls cd browse queue devices carplay
        carlife button hub art events eap sim shm bench doctor fingerprint'
    local sessions='init launch write listen echo bridge'
    local events='device play-status progress repeat shuffle track queue-size source artwork carplay battery location
        carlife phone-call eap-start eap-stop eap-data pairing wireless-carplay foreground-app'
    local vectors='VecPlayingListShareMemory VecDBListShareMemory VecDBListPinyinShareMemory VecUpdateListShareMemory
        VecUpdateListPinyinShareMemory VecDeviceListShareMemory VecArtworkBufferShareMemory
        VecArtworkChangeBufferShareMemory VecEapWriteBufferShareMemory VecEapReadBufferShareMemory'
    local happenings='call battery carplay carlife wireless pairing location source app attach detach button eap-open
        eap-close eap-data calls fault clear-faults scenario'
    local verb='' action='' word before=''
    for word in "${words[@]:1:cword-1}"; do
        if [[ $word == -* || $before == --deadline ]]; then before=$word; continue; fi
        before=$word
        if [[ -z $verb ]]; then verb=$word; elif [[ -z $action ]]; then action=$word; fi
    done

    case $prev in
        --until) COMPREPLY=($(compgen -W "$events" -- "$cur")); return ;;
        --dump) COMPREPLY=($(compgen -W "$vectors" -- "$cur")); return ;;
        --out | --socket) _filedir; return ;;
        --exec) COMPREPLY=($(compgen -c -- "$cur")); return ;;
        --from | --count | --timeout | --held | --back | --protocols | --bundle | --deadline | --format | --listen | --linger) return ;;
    esac

    local options='--help --json --verbose --deadline' arguments=''
    case $verb in
        '') arguments=$verbs options+=' --version' ;;
        status) options+=' --art --no-art --listen --watch' ;;
        info) options+=' --art --no-art' ;;
        shuffle) [[ -n $action ]] || arguments='off songs albums' ;;
        repeat) [[ -n $action ]] || arguments='off one all' ;;
        seek) options+=' --back' ;;
        ls) options+=' --from --count --all --pinyin --no-pinyin --names --index' ;;
        play) [[ -n $action || $cur == -* ]] || _ipodctl_names ls --all ;;
        cd)
            [[ -n $action ]] || arguments='.. /'
            [[ -n $action || $cur == -* ]] || _ipodctl_names ls --all
            ;;
        queue) options+=' --names' ;;
        devices)
            options+=' --names'
            [[ -n $action || $cur == -* ]] || _ipodctl_names devices
            ;;
        button) options+=' --held' ;;
        events) arguments=$events options+=' --count --until --timeout --no-progress --wait --format --exec' ;;
        art)
            options+=' --out'
            [[ -n $action ]] || _filedir
            ;;
        shm) options+=' --dump' ;;
        bench) options+=' --count --pages' ;;
        eap)
            case $action in
                '') arguments=$sessions ;;
                write) _filedir ;;
                listen) options+=' --count --timeout' ;;
                echo) options+=' --protocols --bundle --timeout' ;;
                bridge) options+=' --protocols --bundle --timeout --no-launch --socket --linger' ;;
            esac
            ;;
        sim)
            case $action in
                '') arguments=$happenings ;;
                call)
                    options+=' --number --name --uuid --book-id --label --status --direction --service --reason --group
                        --conferenced --not-conferenced --start --sequence'
                    ;;
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
