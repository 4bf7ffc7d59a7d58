# Completion of lanvoss for fish.

set -l named ip ping keep watch disconnect unpair
set -l commands $named devices run shell scenario timeline doctor report help

# The names in the device cache of each radio, or in that of --dir.
function __lanvoss_names
    set -l words (commandline -opc)
    set -l state $HOME/.local/state
    set -q XDG_STATE_HOME; and set state $XDG_STATE_HOME
    set -l caches $state/lanvoss/*/deviceinfo.bin
    if set -l at (contains -i -- --dir $words)
        set caches $words[(math $at + 1)]/deviceinfo.bin
    end
    test -n "$caches"; and cut -d '|' -f 4 $caches 2>/dev/null | sort -u
end

complete -c lanvoss -f
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a ip -d 'Find a device, pair with it and connect'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a ping -d 'Send a device echo requests'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a keep -d 'Keep a device connected'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a watch -d 'Show the devices in range'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a disconnect -d 'Close the link to a device'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a unpair -d 'Remove a pairing from the system'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a devices -d 'Show the cache as a table'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a run -d 'Run several operations'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a shell -d 'Run operations as you type them'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a scenario -d 'Show the scenario files of the program'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a timeline -d 'Draw a saved log as a picture'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a doctor -d 'Say what this machine lacks'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a help -d 'Show the help of a command'
complete -c lanvoss -n '__fish_seen_subcommand_from help' -a "$commands"
complete -c lanvoss -n '__fish_seen_subcommand_from scenario' -a list -d 'Show the scenarios of the program'
complete -c lanvoss -n "not __fish_seen_subcommand_from $commands" -a report -d 'Pack what a bug report needs'
complete -c lanvoss -n "__fish_seen_subcommand_from $named" -a '(__lanvoss_names)'
complete -c lanvoss -n '__fish_seen_subcommand_from timeline report' -F

complete -c lanvoss -l dir -x -a '(__fish_complete_directories)' -d 'Folder of the device cache'
complete -c lanvoss -l radio -x -a 'auto wpa simulated windows' -d 'Radio to use'
complete -c lanvoss -l scenario -r -F -a '(lanvoss scenario list 2>/dev/null | cut -d " " -f 1)' -d 'Use these simulated devices'
complete -c lanvoss -l json -d 'Write JSON objects, one per line'
complete -c lanvoss -l verbose -d 'Show the log too'
complete -c lanvoss -l quiet -d 'Write only the result'
complete -c lanvoss -l log -r -F -d 'Append the log to this file'
complete -c lanvoss -l timeline -r -F -d 'Draw what happened into this file'
complete -c lanvoss -l help -d 'Show the help'
complete -c lanvoss -s V -l version -d 'Show the version'
complete -c lanvoss -n '__fish_seen_subcommand_from ip' -l gap -x -d 'Least time in ms since the last disconnect'
complete -c lanvoss -n '__fish_seen_subcommand_from ip' -l direct -d 'Connect at once, with the id in the cache'
complete -c lanvoss -n '__fish_seen_subcommand_from ip ping keep watch unpair' -l timeout -x -d 'Give up after so many seconds'
complete -c lanvoss -n '__fish_seen_subcommand_from ping' -l recover -d 'Pair and connect a silent device again'
complete -c lanvoss -n '__fish_seen_subcommand_from keep' -l once -d 'Connect and check once'
complete -c lanvoss -n '__fish_seen_subcommand_from keep' -l every -x -d 'Check every so many seconds'
complete -c lanvoss -n '__fish_seen_subcommand_from watch' -l keep -d 'Continue until it is gone'
