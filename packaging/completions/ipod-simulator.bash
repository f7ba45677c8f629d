# bash completion for ipod-simulator(1)

_ipod_simulator() {
    local cur prev words cword
    _init_completion || return

    case $prev in
        --name | --speed | --seed) return ;;
        --scenario)
            _filedir json
            return
            ;;
        --fault)
            COMPREPLY=($(compgen -W 'delay no-reply error wrong-type short-record long-record half-filled unterminated bad-message out-of-range crash crash-locked restart-storm' -- "$cur"))
            return
            ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W '--help --version --one-device --name --no-cache --speed --seed --scenario --fault
            --print-schema --verbose' -- "$cur"))
    else
        _filedir -d
    fi
} &&
    complete -F _ipod_simulator ipod-simulator
