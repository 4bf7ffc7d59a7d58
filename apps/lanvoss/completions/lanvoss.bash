# Completion of lanvoss for bash.

# The choices for the word after `$1`; none for a free text.
_lanvoss_values() {
  case $1 in
    --dir) compgen -d -- "$2" ;;
    --scenario)
      compgen -f -X '!*.json' -- "$2"
      compgen -W "$(lanvoss scenario list 2>/dev/null | cut -d ' ' -f 1)" -- "$2"
      ;;
    --log) compgen -f -- "$2" ;;
    --timeline) compgen -f -X '!*.@(svg|json)' -- "$2" ;;
    --radio) compgen -W "auto wpa simulated windows" -- "$2" ;;
  esac
}

# The names in the device caches, or in that of `--dir`, as words for the command line.
_lanvoss_names() {
  local i dir=${XDG_STATE_HOME:-$HOME/.local/state}/lanvoss/*
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == --dir ]] && dir=${COMP_WORDS[i + 1]}
  done
  cut -d '|' -f 4 $dir/deviceinfo.bin 2>/dev/null | sort -u
}

_lanvoss() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' i
  local commands="ip ping keep watch disconnect unpair devices run shell scenario timeline doctor report help"
  local options="--dir --radio --scenario --json --verbose --quiet --log --timeline --help"
  COMPREPLY=()
  case $previous in
    --dir | --scenario | --log | --timeline | --radio)
      mapfile -t COMPREPLY < <(_lanvoss_values "$previous" "$word")
      compopt -o filenames
      return
      ;;
    --gap | --every | --timeout) return ;;
  esac
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ " $commands " == *" ${COMP_WORDS[i]} "* ]] && command=${COMP_WORDS[i]} && break
  done
  case $command in
    ip) options+=" --gap --direct --timeout" ;;
    ping) options+=" --recover --timeout" ;;
    keep) options+=" --every --once --timeout" ;;
    watch) options+=" --keep --timeout" ;;
    unpair) options+=" --timeout" ;;
    '') options+=" -V --version" ;;
  esac
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    return
  fi
  case $command in
    '' | help) mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word") ;;
    scenario) mapfile -t COMPREPLY < <(compgen -W list -- "$word") ;;
    ip | ping | keep | watch | disconnect | unpair)
      local name
      while read -r name; do
        [[ $name == "$word"* ]] && COMPREPLY+=("$(printf %q "$name")")
      done < <(_lanvoss_names)
      ;;
    timeline | report)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      compopt -o filenames
      ;;
  esac
}

complete -F _lanvoss lanvoss
