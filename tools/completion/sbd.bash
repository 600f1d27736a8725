# Completion of sbd for bash. The program itself knows what may follow; see `sbd __complete`.

# The words up to the cursor as the program would get them: without quoting, and not taken apart
# at "=", as the shell does.
__sbd_read_words() {
  local word
  words=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    case $word in
      \'* | \"*) word=${word#?} word=${word%[\'\"]} ;;
      *) word=${word//\\/} ;;
    esac
    case $word in
      '~/'*) word=$HOME/${word#'~/'} ;;
    esac
    if [ ${#words[@]} -gt 0 ] && { [ "$word" = = ] || [ "${words[-1]: -1}" = = ]; }; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
  done
}

_sbd() {
  local words line candidate current=$2 files=none
  local program=${COMP_WORDS[0]/#\~\//$HOME/}
  __sbd_read_words
  COMPREPLY=()
  while IFS= read -r line; do
    candidate=${line%%$'\t'*}
    case $line in
      *$'\t'*) ;;
      'files '*) files=${line#files } && continue ;;
      *) continue ;;
    esac
    # Readline replaces what stands behind the "=" only.
    case ${words[-1]} in
      *=*) [[ $current == "${words[-1]}" ]] || candidate=${candidate#*=} ;;
    esac
    case ${COMP_WORDS[COMP_CWORD]} in
      \'* | \"*) COMPREPLY+=("$candidate") ;;
      *) COMPREPLY+=("$(printf %q "$candidate")") ;;
    esac
  done < <("$program" __complete "${words[@]}" 2>/dev/null)

  if [ ${#COMPREPLY[@]} -eq 1 ]; then
    case ${COMPREPLY[0]} in
      *. | *=) compopt -o nospace ;;
    esac
  fi
  [ "$files" = none ] && return
  compopt -o filenames
  if [ "$files" = descriptors ]; then
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X '!*.sbd' -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}

complete -F _sbd sbd
