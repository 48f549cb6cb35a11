# Completion of ostrelctl in bash: source this file, or install it as
# /usr/share/bash-completion/completions/ostrelctl.

# Bash splits a line at "=" and ":", so the program gets the line itself and the text that bash
# is about to replace.
_ostrelctl() {
  local kind=
  { IFS= read -r kind && mapfile -t COMPREPLY; } < <(
    "$1" complete line "${COMP_LINE:0:COMP_POINT}" "$2" 2>/dev/null
  )
  case $kind in
    files) compopt -o default ;;
    open) compopt -o nospace ;;
  esac
}
# Names in their order, words in that of the help.
complete -o nosort -F _ostrelctl ostrelctl
