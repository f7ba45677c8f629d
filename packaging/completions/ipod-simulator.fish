# fish completion for ipod-simulator(1)

complete -c ipod-simulator -s h -l help -d 'Show help'
complete -c ipod-simulator -l version -d 'Show the version'
complete -c ipod-simulator -l one-device -d 'Put everything below the folder on one device'
complete -c ipod-simulator -l name -x -d 'Name of the device'
complete -c ipod-simulator -l no-cache -d 'Scan every file and store no index'
complete -c ipod-simulator -l speed -x -d 'Speed of the clock'
complete -c ipod-simulator -l seed -x -d 'Seed for shuffling'
complete -c ipod-simulator -l scenario -r -d 'Run the timed actions in a JSON file'
complete -c ipod-simulator -l fault -x -a 'delay no-reply error wrong-type short-record long-record half-filled unterminated bad-message out-of-range crash crash-locked restart-storm' -d 'Inject a fault'
complete -c ipod-simulator -l print-schema -d 'Print the JSON schema of scenarios'
complete -c ipod-simulator -l verbose -d 'Log each request and its reply'
