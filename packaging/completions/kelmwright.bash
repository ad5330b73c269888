# Completes the command line of kelmwright in bash.
_kelmwright() {
  local current=${COMP_WORDS[COMP_CWORD]} word
  COMPREPLY=()
  case ${COMP_WORDS[COMP_CWORD - 1]} in
  --line) return ;;
  esac
  for word in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do
    if [[ $word == -- ]]; then
      return
    fi
  done
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--line --wait --new-file --open-folder --help --version' -- "$current")
  fi
}
complete -o default -F _kelmwright kelmwright
