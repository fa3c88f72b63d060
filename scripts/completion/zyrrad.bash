# Completion of zyrrad for bash. Options and types come from the program itself.
_zyrrad() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} words
  case $prev in
    -inp) words="auto nids lev2 lev2z nowrad kavrad rrwds rcmsite mdr rcm" ;;
    -de) words="d p, q, h, m, w" ;;
    --list) words="products regions colours fonts stations projections variables options" ;;
    -pd) words=$(zyrrad --list regions 2>/dev/null | awk '{print $1}') ;;
    *)
      if [[ $cur == -* ]]; then
        words="--version --list --info --json --files-from --report --resume --stop --keep-going $(zyrrad -h 2>/dev/null | grep -oE '^ *-[a-z_]+' | tr -d ' ')"
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
        return
      fi ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}
complete -o filenames -F _zyrrad zyrrad
