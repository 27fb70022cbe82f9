# Bash completion of the kvshare command. Modes, messages and languages are asked for when they are
# needed, so that this file cannot go out of date.

_kvshare_modes() {
  kvshare round --list 2>/dev/null | cut -f2
}

_kvshare_messages() {
  kvshare message --list 2>/dev/null | cut -f2
}

_kvshare_languages() {
  local folder=${KVSHARE_LANGUAGE_PATH:-} file
  [[ $folder ]] || folder=$(dirname "$(type -P kvshare)")/../share/kvshare/languages
  echo th
  for file in "$folder"/*.lang; do
    [[ -e $file ]] && basename "$file" .lang
  done
}

_kvshare_commands() {
  printf '%s\n' words round share qty format mask date encode decode key message receipts printers \
    settings shop version files doctor connect sql edit dataset company post reprint dialect dialog rights \
    replication log
}

# The commands of a command that has such, as `kvshare date`; nothing for the others.
_kvshare_subcommands() {
  case $1 in
    date) printf '%s\n' show parse month explain ;;
    settings) printf '%s\n' list get set delete export import ;;
    shop) printf '%s\n' set show ;;
    files) printf '%s\n' count list copy delete ;;
    log) printf '%s\n' show follow verify ;;
    connect) printf '%s\n' list test show tables ;;
    company) printf '%s\n' list add edit remove open create ;;
    dataset) printf '%s\n' show convert compare ;;
    printers) printf '%s\n' list print picture ;;
    rights) printf '%s\n' show check ;;
    replication) printf '%s\n' show take update ;;
  esac
}

# The names of the connection file.
_kvshare_connections() {
  kvshare connect list 2>/dev/null | cut -f1
}

_kvshare_printers() { # _kvshare_printers OPTIONS
  kvshare printers list "$@" 2>/dev/null | cut -f1
}

_kvshare_companies() {
  kvshare company list 2>/dev/null | cut -f1
}

_kvshare_layouts() {
  kvshare date show --help 2>/dev/null | sed -n 's/^  --layout NAME *//p' | tr ' ' '\n'
}

_kvshare_options() { # _kvshare_options COMMAND
  case $1 in
    words) printf '%s\n' --english --currency ;;
    round) printf '%s\n' --price --list ;;
    qty) echo --sku ;;
    encode | decode) printf '%s\n' --key --key-file ;;
    "date show") printf '%s\n' --era --layout --language ;;
    "date parse") printf '%s\n' --era --loose --stamp ;;
    "settings list" | "settings delete") echo --recursive ;;
    "settings set") echo --integer ;;
    "shop set") printf '%s\n' --name --address --tax-id --branch --phone --logo ;;
    "settings export") printf '%s\n' --output --regedit4 ;;
    "files count" | "files list" | "files copy") printf '%s\n' --mask --recursive ;;
    "files delete") printf '%s\n' --mask --recursive --yes ;;
    message) printf '%s\n' --language --list ;;
    dialect) printf '%s\n' --file --field --value --matchcase --date ;;
    dialog) printf '%s\n' --windows --era ;;
    sql) printf '%s\n' --connect --batch --csv ;;
    edit) printf '%s\n' --key --set --new --delete --yes --windows --era ;;
    "company create") echo --connect ;;
    "company list" | "company remove") echo --list ;;
    "company add" | "company edit")
      printf '%s\n' --list --connection --log --pos-data --pos-packing --packing --reports --documents
      [[ $1 == *edit ]] && echo --rename ;;
    "dataset show") printf '%s\n' --from --changes --fields --csv ;;
    "dataset convert") printf '%s\n' --from --to --fields ;;
    "dataset compare") printf '%s\n' --from --to --key ;;
    post)
      printf '%s\n' --connect --position --encoding --separator --decimal-comma --round --vat-round \
        --vat --cash-step --price-includes-vat --print --discount --era --width ;;
    reprint) printf '%s\n' --connect --discount --era --width --copies --pdf \
        --printer --paper --roll --png --raw --cut --drawer ;;
    "rights "* | "replication "*) echo --connect ;;
    "log show") printf '%s\n' --file --day --user --computer ;;
    "log follow") printf '%s\n' --file --lines --once ;;
    "log verify") echo --file ;;
    "printers list") echo --folders ;;
    "printers print") printf '%s\n' --printer --folders ;;
    "printers picture") printf '%s\n' --title --pdf --printer ;;
    receipts)
      printf '%s\n' --encoding --separator --decimal-comma --round --vat-round --vat --discount \
        --cash-step --era --price-includes-vat --width --copies --pdf \
        --printer --paper --roll --png --raw --cut --drawer ;;
  esac
  case $1 in
    edit | dialog | date | settings | shop | "shop set" | files | log | connect | company | dataset | rights | replication) ;;
    printers | "printers print" | "printers picture") ;;
    "company add" | "company edit" | "company remove" | "company create") ;;
    "dataset convert" | "settings set" | "settings delete" | "settings export" | "settings import") ;;
    *) echo --json ;;
  esac
  echo --help
}

# Offers the lines of standard input that begin with $1, in any letter case as the command reads them.
# That none begins so is no failure.
_kvshare_offer() {
  local line
  while IFS= read -r line; do
    [[ ${line,,} == "${1,,}"* ]] && COMPREPLY+=("$line")
  done
  return 0
}

_kvshare_offer_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# What may stand where the word $3 begins, behind the option $2 of the command $1; false when $2 is
# no option that takes a value.
_kvshare_value() {
  case "$1 $2" in
    "receipts --round" | "receipts --vat-round" | "receipts --cash-step" | \
      "post --round" | "post --vat-round" | "post --cash-step")
      _kvshare_offer "$3" < <(_kvshare_modes) ;;
    "receipts --vat" | "post --vat" | "receipts --discount" | "post --discount" | "reprint --discount")
      _kvshare_offer "$3" < <(printf '%s\n' line document) ;;
    "receipts --encoding" | "post --encoding")
      _kvshare_offer "$3" < <(printf '%s\n' utf-8 utf-16le utf-16be cp874) ;;
    "receipts --separator" | "post --separator")
      _kvshare_offer "$3" < <(printf '%s\n' comma semicolon tab) ;;
    "receipts --copies" | "reprint --copies") _kvshare_offer "$3" < <(printf '%s\n' original copy original,copy) ;;
    "receipts --paper" | "reprint --paper") _kvshare_offer "$3" < <(printf '%s\n' A4 A5) ;;
    "receipts --roll" | "reprint --roll") _kvshare_offer "$3" < <(printf '%s\n' 80 58) ;;
    "receipts --cut" | "reprint --cut") _kvshare_offer "$3" < <(printf '%s\n' full partial none) ;;
    "receipts --printer" | "reprint --printer") _kvshare_offer "$3" < <(_kvshare_printers) ;;
    "receipts --png" | "reprint --png" | "receipts --raw" | "reprint --raw" | "shop set --logo")
      _kvshare_offer_files "$3" ;;
    "shop set "*) ;;
    "message --language") _kvshare_offer "$3" < <(_kvshare_languages) ;;
    "dataset "*" --from" | "dataset "*" --to")
      _kvshare_offer "$3" < <(printf '%s\n' packet csv json) ;;
    "date show --layout") _kvshare_offer "$3" < <(_kvshare_layouts) ;;
    "date show --language") _kvshare_offer "$3" < <(printf '%s\n' th en) ;;
    "date show --era" | "date parse --era" | "receipts --era" | "post --era" | "reprint --era" | "edit --era" | \
      "dialog --era")
      _kvshare_offer "$3" < <(printf '%s\n' 543 0) ;;
    "printers "*" --printer") _kvshare_offer "$3" < <(_kvshare_printers) ;;
    *" --connect" | "company "*" --connection") _kvshare_offer "$3" < <(_kvshare_connections) ;;
    "receipts --pdf" | "reprint --pdf" | "printers picture --pdf" | "sql --batch" | "encode --key-file" | "decode --key-file" | "settings export --output" | "dialect --file" | "log "*" --file" | \
      "company "*" --list" | "company "*" --log")
      _kvshare_offer_files "$3" ;;
    "printers picture --title" | "dialect --field" | "dialect --value" | "dialect --date") ;;
    "log show --day" | "log show --user" | "log show --computer" | "log follow --lines") ;;
    "encode --key" | "decode --key" | "words --currency" | "qty --sku" | "receipts --width" | "post --width" | "reprint --width") ;;
    "company "*" --pos-data" | "company "*" --pos-packing" | "company "*" --packing") ;;
    "company "*" --reports" | "company "*" --documents" | "company "*" --rename") ;;
    "files "*" --mask" | "post --position" | "edit --key" | "edit --set") ;;
    "dataset convert --fields" | "dataset compare --key") ;;
    *) return 1 ;;
  esac
}

# Whether only options stand between the command and the word.
_kvshare_first_operand() {
  local i
  for ((i = 2; i < COMP_CWORD; ++i)); do
    [[ ${COMP_WORDS[i]} == -* ]] || return 1
  done
}

_kvshare_operand() { # _kvshare_operand COMMAND WORD
  case $1 in
    date | settings | files | log | connect | company | dataset | printers | rights | replication)
      _kvshare_offer "$2" < <(_kvshare_subcommands "$1") ;;
    receipts | post | version | "settings import" | "files "* | "dataset "* | "printers print" | \
      "printers picture")
      _kvshare_offer_files "$2" ;;
    "connect test" | "connect show" | "connect tables")
      _kvshare_offer "$2" < <(_kvshare_connections) ;;
    "company edit" | "company remove" | "company open") _kvshare_offer "$2" < <(_kvshare_companies) ;;
    edit) _kvshare_first_operand && _kvshare_offer "$2" < <(_kvshare_companies; _kvshare_connections) ;;
    dialect) _kvshare_offer "$2" < <(kvshare dialect 2>/dev/null) ;;
    dialog)
      _kvshare_first_operand &&
        _kvshare_offer "$2" < <(printf '%s\n' calculator calendar date range year sql about sysinfo) ;;
    message) _kvshare_offer "$2" < <(_kvshare_messages) ;;
    round) _kvshare_first_operand && _kvshare_offer "$2" < <(_kvshare_modes) ;;
  esac
}

_kvshare() {
  local command=${COMP_WORDS[1]} before=${COMP_WORDS[COMP_CWORD - 1]} word=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    _kvshare_offer "$word" < <(_kvshare_commands; printf '%s\n' --help --version)
    return
  fi
  ((COMP_CWORD > 2)) && [[ $(_kvshare_subcommands "$command") ]] && command+=" ${COMP_WORDS[2]}"
  # Bash takes `--vat=line` apart into three words.
  if [[ $word == "=" ]]; then
    word=
  elif [[ $before == "=" ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if _kvshare_value "$command" "$before" "$word"; then
    return
  elif [[ $word == -* ]]; then
    _kvshare_offer "$word" < <(_kvshare_options "$command")
  else
    _kvshare_operand "$command" "$word"
  fi
}

complete -F _kvshare kvshare
