# Completion of fernwick-lab for bash. It needs no helper of any other package.

declare -gA _fernwick_lab_options=(
  [replay]="--host --help"
  [explain]="--host -p --payload --bypassVersion --type --controller --nearest --format --json --set --personality --board-revision --help"
  [lint]="--format --fail-level --ignore --severity --baseline --update-baseline --explain --list --help"
  [survey]="-p --payload --bypassVersion --format --wide --max-size --expect --update --fail-on --shard -j --jobs --help"
  [coverage]="-p --payload --bypassVersion --threshold --format --json --shard -j --jobs --help"
  [settle]="-p --payload --bypassVersion --each --format --json --fail-on --set --personality --board-revision --shard -j --jobs --help"
  [merge]="--format --wide --expect --update --fail-on -p --payload --threshold --help"
  [diff]="-p --payload --bypassVersion --each --format --json -j --jobs --help"
  [sample]="-p --payload --personality --all -o --output --to --force --help"
  [draft]="--image --version --type --except -j --jobs --help"
  [report]="-p --payload --old -o --output --force --title -j --jobs --help"
  [show]="--host --plane --json --help"
  [convert]="--to --force --help"
  [redact]="--key --keep --keep-all --force --help"
  [record]="--root --to --all --force --help"
  [import]="--plane --name-key --children-key --class-key --id-key --classes --force --help"
)

# The tool's own, after the recording of "replay".
_fernwick_lab_tool_options="-v --verbose -p --payload -X --preflight -s --subupdater --bypassVersion"

_fernwick_lab_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_fernwick_lab_directories() {
  mapfile -t COMPREPLY < <(compgen -d -- "$1")
}

_fernwick_lab_recordings() {
  mapfile -t COMPREPLY < <(compgen -f -X '!*.plist' -- "$1"; compgen -d -- "$1")
}

# Recordings, and archives of them.
_fernwick_lab_many_recordings() {
  local suffix
  mapfile -t COMPREPLY < <(
    for suffix in registry.plist tar tar.gz tgz tar.xz txz tar.zst tzst zip; do
      compgen -f -X "!*.$suffix" -- "$1"
    done
    compgen -d -- "$1"
  )
}

# The boards of a payload.
_fernwick_lab_boards() {
  mapfile -t COMPREPLY < <(cd -- "$1/Fernwick" 2>/dev/null && compgen -d -- "$2")
}

# The payload of -p in the command line.
_fernwick_lab_payload() {
  local index
  for ((index = 2; index < COMP_CWORD; ++index)); do
    [[ ${COMP_WORDS[index - 1]} == @(-p|--payload) ]] && printf '%s' "${COMP_WORDS[index]}"
  done
}

# Completes the value of the option $2. Fails where the option has no value.
_fernwick_lab_value() {
  case "$1 $2" in
    *' -p' | *' --payload' | 'report --old') _fernwick_lab_directories "$3" ;;
    'explain --type' | 'draft --type') _fernwick_lab_words 'LegacyThunderbolt Thunderbolt LegacyUSBC USBC' "$3" ;;
    'explain --format' | 'coverage --format') _fernwick_lab_words 'text json' "$3" ;;
    'lint --format') _fernwick_lab_words 'text json sarif' "$3" ;;
    'survey --format') _fernwick_lab_words 'table ndjson csv junit' "$3" ;;
    'survey --fail-on') _fernwick_lab_words 'planned current blocked unmatched no-controllers unknown-board no-configuration bypassed fault refused abnormal no-plan' "$3" ;;
    'merge --format') _fernwick_lab_words 'table ndjson csv junit text json' "$3" ;;
    'settle --format') _fernwick_lab_words 'text ndjson' "$3" ;;
    'settle --fail-on') _fernwick_lab_words 'stuck refused abnormal no-plan bypassed' "$3" ;;
    'diff --format') _fernwick_lab_words 'text json csv junit' "$3" ;;
    'lint --fail-level') _fernwick_lab_words 'error warning note' "$3" ;;
    'lint --explain' | 'lint --ignore' | 'lint --severity') _fernwick_lab_words "$(fernwick-lab lint --list 2>/dev/null | cut -d' ' -f1)" "$3" ;;
    'convert --to' | 'record --to' | 'sample --to') _fernwick_lab_words 'xml binary' "$3" ;;
    'show --plane') _fernwick_lab_words 'IODeviceTree IOService' "$3" ;;
    'draft --except') _fernwick_lab_many_recordings "$3" ;;
    'draft --image' | 'survey --expect' | 'merge --expect' | 'lint --baseline' | 'sample -o' | 'sample --output' | 'import --classes' | 'report -o' | 'report --output') mapfile -t COMPREPLY < <(compgen -f -- "$3") ;;
    'record --root' | 'sample --all') _fernwick_lab_directories "$3" ;;
    'import --plane') _fernwick_lab_words 'IODeviceTree= IOService=' "$3" ;;
    'import --name-key' | 'import --children-key' | 'import --class-key' | 'import --id-key') COMPREPLY=() ;;
    'explain --controller' | 'explain --nearest' | 'redact --key' | 'redact --keep' | 'survey -j' | 'survey --jobs' | 'survey --max-size' | 'merge --threshold' | 'merge --fail-on' | *' --shard' | 'coverage -j' | 'coverage --jobs' | 'coverage --threshold' | *' --set' | *' --personality' | 'draft --version' | 'draft -j' | 'draft --jobs' | *' --board-revision' | 'settle -j' | 'settle --jobs' | 'diff -j' | 'diff --jobs' | 'report -j' | 'report --jobs' | 'report --title') COMPREPLY=() ;;
    *) return 1 ;;
  esac
}

_fernwick_lab() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local verb=${COMP_WORDS[1]}
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    local first="${!_fernwick_lab_options[*]} help"
    [[ $current == -* ]] && first='--help --version'
    _fernwick_lab_words "$first" "$current"
    return
  fi
  # bash splits "--format=csv" at the "=".
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  _fernwick_lab_value "$verb" "$previous" "$current" && return
  if [[ $current == -* ]]; then
    local options=${_fernwick_lab_options[$verb]-}
    [[ $verb == replay ]] && ((COMP_CWORD > 2)) && options=$_fernwick_lab_tool_options
    _fernwick_lab_words "$options" "$current"
    return
  fi
  case $verb in
    help) ((COMP_CWORD == 2)) && _fernwick_lab_words "${!_fernwick_lab_options[*]}" "$current" ;;
    lint)
      if ((COMP_CWORD == 2)); then
        _fernwick_lab_directories "$current"
      else
        _fernwick_lab_boards "${COMP_WORDS[2]}" "$current"
      fi
      ;;
    sample) _fernwick_lab_boards "$(_fernwick_lab_payload)" "$current" ;;
    merge) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    survey | coverage | settle | diff | draft | report) _fernwick_lab_many_recordings "$current" ;;
    *) _fernwick_lab_recordings "$current" ;;
  esac
}

complete -o filenames -F _fernwick_lab fernwick-lab
