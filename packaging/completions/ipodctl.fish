# fish completion for ipodctl(1)

complete -c ipodctl -f

# Whether no command has been given yet. __fish_use_subcommand would count the value of --deadline as one.
function __ipodctl_needs_command
    set -l is_value 0
    for word in (commandline -opc)[2..-1]
        if test $is_value = 1
            set is_value 0
            continue
        end
        switch $word
            case --deadline
                set is_value 1
            case '-*'
                continue
            case '*'
                return 1
        end
    end
    return 0
end

# Names in the current level; one of digits only would be an index without its "./".
function __ipodctl_names
    ipodctl --deadline 1 $argv --names 2>/dev/null | string replace -r '^(\d+)$' './$1'
end

complete -c ipodctl -s h -l help -d 'Show help'
complete -c ipodctl -l json -d 'Answer with JSON'
complete -c ipodctl -l verbose -d 'Show every request and what the library logs'
complete -c ipodctl -l deadline -x -d 'Seconds that the service may take'
complete -c ipodctl -n __ipodctl_needs_command -l version -d 'Show the version'

function __ipodctl_verb -a verb description
    complete -c ipodctl -n __ipodctl_needs_command -a $verb -d $description
end
__ipodctl_verb status 'Show what plays, the modes, the queue and the devices'
__ipodctl_verb info 'Show all details of the playing track'
__ipodctl_verb play 'Go on playing, or play a song of the current level'
__ipodctl_verb pause 'Pause playback'
__ipodctl_verb stop 'Stop playback'
__ipodctl_verb next 'Go to the next track'
__ipodctl_verb previous 'Go to the previous track'
__ipodctl_verb seek 'Move within the playing track'
__ipodctl_verb shuffle 'Show or set the shuffle mode'
__ipodctl_verb repeat 'Show or set the repeat mode'
__ipodctl_verb ls 'List the current level of the music database'
__ipodctl_verb cd 'Change the current level'
__ipodctl_verb browse 'Walk through the music database on the whole screen'
__ipodctl_verb queue 'Show the playing list, or jump to one of its entries'
__ipodctl_verb devices 'Show the attached devices, or choose the one to browse'
__ipodctl_verb carplay 'Show whether a CarPlay device is detected'
__ipodctl_verb carlife 'Show whether a CarLife device is detected'
__ipodctl_verb button 'Press and release a button of the accessory remote control'
__ipodctl_verb hub 'Set the electrical test mode of the USB hub'
__ipodctl_verb art 'Write the picture of the playing track to a file'
__ipodctl_verb events 'Follow all events'
__ipodctl_verb eap 'Accessory sessions'
__ipodctl_verb sim 'Let something happen on the simulator'
__ipodctl_verb shm 'Show what lies in the shared memory now'
__ipodctl_verb bench 'Measure how long the commands take'
__ipodctl_verb doctor 'Say what is wrong, and what to do'
__ipodctl_verb fingerprint 'Describe the layout of the shared segments'
functions -e __ipodctl_verb

set -g __ipodctl_events device play-status progress repeat shuffle track queue-size source artwork carplay battery location \
    carlife phone-call eap-start eap-stop eap-data pairing wireless-carplay foreground-app
set -g __ipodctl_vectors VecPlayingListShareMemory VecDBListShareMemory VecDBListPinyinShareMemory VecUpdateListShareMemory \
    VecUpdateListPinyinShareMemory VecDeviceListShareMemory VecArtworkBufferShareMemory \
    VecArtworkChangeBufferShareMemory VecEapWriteBufferShareMemory VecEapReadBufferShareMemory

complete -c ipodctl -n '__fish_seen_subcommand_from status info' -l art -d 'Draw the picture always'
complete -c ipodctl -n '__fish_seen_subcommand_from status info' -l no-art -d 'Draw no picture'
complete -c ipodctl -n '__fish_seen_subcommand_from status' -l listen -x -d 'Listen for battery and calls first'
complete -c ipodctl -n '__fish_seen_subcommand_from status' -l watch -d 'Show every change'
complete -c ipodctl -n '__fish_seen_subcommand_from play cd' -a '(__ipodctl_names ls --all)'
complete -c ipodctl -n '__fish_seen_subcommand_from devices' -a '(__ipodctl_names devices)'
complete -c ipodctl -n '__fish_seen_subcommand_from ls queue devices' -l names -d 'Names only'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l pinyin -d 'For every name'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l no-pinyin -d 'For none'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l index -d 'Where each letter begins'
complete -c ipodctl -n '__fish_seen_subcommand_from art' -l out -r -F -d 'File'
complete -c ipodctl -n '__fish_seen_subcommand_from events' -a "$__ipodctl_events"
complete -c ipodctl -n '__fish_seen_subcommand_from events' -l until -x -a "$__ipodctl_events" -d 'The last event'
complete -c ipodctl -n '__fish_seen_subcommand_from events' -l wait -d 'Wait for the service'
complete -c ipodctl -n '__fish_seen_subcommand_from events status' -l format -x -d 'Show by a template'
complete -c ipodctl -n '__fish_seen_subcommand_from events' -l exec -x -d 'Run for each event'
complete -c ipodctl -n '__fish_seen_subcommand_from shm' -l dump -x -a "$__ipodctl_vectors" -d 'Show what a vector holds'
complete -c ipodctl -n '__fish_seen_subcommand_from bench' -l count -x -d 'Calls of each command'
complete -c ipodctl -n '__fish_seen_subcommand_from bench' -l pages -d 'Also those that fill the vectors'
complete -c ipodctl -n '__fish_seen_subcommand_from bridge' -l no-launch -d 'The device opens the session'
complete -c ipodctl -n '__fish_seen_subcommand_from bridge' -l socket -r -F -d 'Serve a socket'
complete -c ipodctl -n '__fish_seen_subcommand_from bridge' -l linger -x -d 'Seconds of silence that end it'
complete -c ipodctl -n '__fish_seen_subcommand_from shuffle' -a 'off songs albums'
complete -c ipodctl -n '__fish_seen_subcommand_from repeat' -a 'off one all'
complete -c ipodctl -n '__fish_seen_subcommand_from seek' -l back -x -d 'Move back'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l from -x -d 'First index'
complete -c ipodctl -n '__fish_seen_subcommand_from ls events listen' -l count -x -d 'How many'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l all -d 'The whole level'
complete -c ipodctl -n '__fish_seen_subcommand_from cd' -a '.. /'
complete -c ipodctl -n '__fish_seen_subcommand_from button' -l held -x -d 'Time held, in milliseconds'
complete -c ipodctl -n '__fish_seen_subcommand_from art write' -F
complete -c ipodctl -n '__fish_seen_subcommand_from events listen echo bridge' -l timeout -x -d 'Seconds'
complete -c ipodctl -n '__fish_seen_subcommand_from events' -l no-progress -d 'Leave out the progress of playback'
complete -c ipodctl -n '__fish_seen_subcommand_from eap; and not __fish_seen_subcommand_from init launch write listen echo bridge' \
    -a 'init launch write listen echo bridge'
complete -c ipodctl -n '__fish_seen_subcommand_from echo bridge' -l protocols -x -d 'Protocols to announce'
complete -c ipodctl -n '__fish_seen_subcommand_from echo bridge' -l bundle -x -d 'App to launch'

# The actions of the simulator, and what can be typed behind each, come from the program.
function __ipodctl_sim
    set -l words (commandline -opc)
    set -l next (math (contains -i sim $words) + 1)
    if set -q words[$next]
        ipodctl sim actions $words[$next] 2>/dev/null
    else
        ipodctl sim actions 2>/dev/null | string replace -r '  +' \t
        printf '%s\n' calls\t'List the calls that the simulator received' actions\t'List the actions' scenario\t'Play a scenario file'
    end
end
complete -c ipodctl -n '__fish_seen_subcommand_from sim' -a '(__ipodctl_sim)'
complete -c ipodctl -n '__fish_seen_subcommand_from sim; and __fish_seen_subcommand_from scenario' -F
complete -c ipodctl -n '__fish_seen_subcommand_from sim; and __fish_seen_subcommand_from calls' -l clear -d 'Forget all calls'
