# fish completion for ipodctl(1)

complete -c ipodctl -f
complete -c ipodctl -s h -l help -d 'Show help'
complete -c ipodctl -l json -d 'Answer with JSON'
complete -c ipodctl -l verbose -d 'Show what the library logs'
complete -c ipodctl -n __fish_use_subcommand -l version -d 'Show the version'

function __ipodctl_verb -a verb description
    complete -c ipodctl -n __fish_use_subcommand -a $verb -d $description
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
__ipodctl_verb queue 'Show the playing list, or jump to one of its entries'
__ipodctl_verb devices 'Show the attached devices, or choose the one to browse'
__ipodctl_verb carplay 'Show whether a CarPlay device is detected'
__ipodctl_verb carlife 'Show whether a CarLife device is detected'
__ipodctl_verb button 'Press and release a button of the accessory remote control'
__ipodctl_verb hub 'Set the electrical test mode of the USB hub'
__ipodctl_verb art 'Write the picture of the playing track to a file'
__ipodctl_verb events 'Follow all events'
__ipodctl_verb eap 'Accessory sessions'
__ipodctl_verb doctor 'Say what is wrong, and what to do'
__ipodctl_verb fingerprint 'Describe the layout of the shared segments'
functions -e __ipodctl_verb

complete -c ipodctl -n '__fish_seen_subcommand_from shuffle' -a 'off songs albums'
complete -c ipodctl -n '__fish_seen_subcommand_from repeat' -a 'off one all'
complete -c ipodctl -n '__fish_seen_subcommand_from seek' -l back -x -d 'Move back'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l from -x -d 'First index'
complete -c ipodctl -n '__fish_seen_subcommand_from ls events listen' -l count -x -d 'How many'
complete -c ipodctl -n '__fish_seen_subcommand_from ls' -l all -d 'The whole level'
complete -c ipodctl -n '__fish_seen_subcommand_from cd' -a '.. /'
complete -c ipodctl -n '__fish_seen_subcommand_from button' -l held -x -d 'Time held, in milliseconds'
complete -c ipodctl -n '__fish_seen_subcommand_from art write' -F
complete -c ipodctl -n '__fish_seen_subcommand_from events listen echo' -l timeout -x -d 'Seconds'
complete -c ipodctl -n '__fish_seen_subcommand_from events' -l no-progress -d 'Leave out the progress of playback'
complete -c ipodctl -n '__fish_seen_subcommand_from eap; and not __fish_seen_subcommand_from init launch write listen echo' \
    -a 'init launch write listen echo'
complete -c ipodctl -n '__fish_seen_subcommand_from echo' -l protocols -x -d 'Protocols to announce'
complete -c ipodctl -n '__fish_seen_subcommand_from echo' -l bundle -x -d 'App to launch'
