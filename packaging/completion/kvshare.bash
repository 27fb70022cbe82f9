# Bash completion of the kvshare command.

_kvshare_modes() {
  kvshare round --list 2>/dev/null | cut -f2
}

_kvshare_options() { # _kvshare_options COMMAND
  case $1 in
    words) echo --english --currency ;;
    round) echo --price --list ;;
    qty) echo --sku ;;
    encode | decode) echo --key --key-file ;;
    message) echo --language --list ;;
    receipts)
      echo --round --vat-round --vat --discount --cash-step --price-includes-vat --width ;;
  esac
  echo --json --help
}

_kvshare_languages() {
  local file
  echo th
  for file in "${KVSHARE_LANGUAGE_PATH:-/usr/share/kvshare/languages}"/*.lang; do
    [[ -e $file ]] && basename "$file" .lang
  done
}

_kvshare() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local words=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    words="words round share qty format mask encode decode key message receipts --help --version"
  else
    case $before in
      --round | --vat-round | --cash-step) words=$(_kvshare_modes) ;;
      --vat | --discount) words="line document" ;;
      --language) words=$(_kvshare_languages) ;;
      --key-file)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return ;;
      --key | --currency | --sku | --width) return ;;
      *)
        if [[ $word == -* ]]; then
          words=$(_kvshare_options "$command")
        elif [[ $command == receipts ]]; then
          mapfile -t COMPREPLY < <(compgen -f -- "$word")
          return
        elif [[ $command == round && $COMP_CWORD -eq 2 ]]; then
          words=$(_kvshare_modes)
        elif [[ $command == message ]]; then
          words=$(kvshare message --list 2>/dev/null | cut -f2)
        fi ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -o filenames -o bashdefault -F _kvshare kvshare
