# fish completion for ipod-simulator(1)

complete -c ipod-simulator -s h -l help -d 'Show help'
complete -c ipod-simulator -l version -d 'Show the version'
complete -c ipod-simulator -l one-device -d 'Everything below the folder belongs to one device'
complete -c ipod-simulator -l name -x -d 'Name of the device'
complete -c ipod-simulator -l no-cache -d 'Read every file'
complete -c ipod-simulator -l speed -x -d 'Factor of the clock'
complete -c ipod-simulator -l seed -x -d 'Seed of shuffled orders'
complete -c ipod-simulator -l scenario -r -d 'File with events'
complete -c ipod-simulator -l fault -x -a 'delay no-reply error wrong-type short-record long-record half-filled unterminated bad-message out-of-range crash crash-locked restart-storm' -d 'What goes wrong'
complete -c ipod-simulator -l print-schema -d 'Print the JSON schema of scenarios'
complete -c ipod-simulator -l verbose -d 'Write a line for each request'
