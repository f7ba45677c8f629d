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

# The actions of the simulator, or what can be typed behind one.
_ipodctl_actions() {
    ipodctl sim actions "$@" 2>/dev/null | cut -d' ' -f1
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
        status) options+=' --art --no-art --listen --watch --format' ;;
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
                '') arguments="$(_ipodctl_actions) actions calls scenario" ;;
                calls) options+=' --clear' ;;
                actions) arguments=$(_ipodctl_actions) ;;
                scenario) _filedir json ;;
                *)
                    arguments=$(_ipodctl_actions "$action")
                    # The shell splits words at "=".
                    local field=''
                    [[ $prev != = ]] || field=${words[cword - 2]}
                    [[ $cur != = ]] || field=$prev cur=''
                    [[ -z $field ]] || arguments=$(grep "^$field=" <<<"$arguments" | cut -d= -f2)
                    compopt -o nospace
                    ;;
            esac
            ;;
    esac

    [[ $cur == -* ]] && arguments=$options
    COMPREPLY+=($(compgen -W "$arguments" -- "$cur"))
} &&
    complete -F _ipodctl ipodctl
