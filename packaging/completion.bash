# Completion of corvo and its companions in bash. The options of a companion are taken from its
# --help: two blanks, the option, the name of its value in capitals.

_corvo_files() { # EXTENSIONS, as cvi|cbi; none for any file
  local wanted=${1:-} name
  local -A seen=()
  compopt -o filenames 2> /dev/null
  while IFS= read -r name; do
    [[ -z $wanted || -d $name || $name =~ \.($wanted)$ ]] || continue
    [[ -n ${seen[$name]:-} ]] || COMPREPLY+=("$name")
    seen[$name]=1
  done < <(compgen -f -- "$2")
}

_corvo() {
  local program=$1 word=$2 before=$3 name=${1##*/} help options value
  local descriptions='cvi|cbi|dta' words=''
  COMPREPLY=()
  if [[ $name == corvo ]]; then
    options=$'/file DESCRIPTION\n/length METRES\n/increment METRES\n/steps N'
  else
    help=$("$program" --help 2> /dev/null)
    options=$(sed -n 's/^  \([-\/][^ ]*\) *\([A-Z][A-Z=:,.]*\)\? .*/\1 \2/p' <<< "$help")
    [[ ${help%%$'\n'*} != *DESCRIPTION* ]] || words="$descriptions|cvo|cbo"
  fi
  value=$(awk -v option="$before" '$1 == option { print $2 }' <<< "$options")
  case $value in
    DESCRIPTION) _corvo_files "$descriptions" "$word" ;;
    FOLDER)
      compopt -o filenames 2> /dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      ;;
    PAGE | PROGRAM | *FILE*) _corvo_files '' "$word" ;;
    ?*) ;; # numbers and the like
    *)
      mapfile -t COMPREPLY < <(compgen -W "$(awk '{ print $1 }' <<< "$options")" -- "$word")
      [[ $name == corvo ]] || _corvo_files "$words" "$word"
      ;;
  esac
}

# Registers the programs under whose names this file is installed.
complete -F _corvo corvo
for _corvo_name in "${BASH_SOURCE[0]%/*}"/corvo-*; do
  complete -F _corvo "${_corvo_name##*/}"
done
unset _corvo_name
