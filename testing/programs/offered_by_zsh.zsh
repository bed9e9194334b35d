# Prints what zsh offers when the tabulator is pressed after a command line, one a line.
# usage: zsh -f offered_by_zsh.zsh DIRECTORY LINE
# DIRECTORY contains the completion functions that are tried. A shell of its own, on a terminal of its
# own, types the line; its compadd keeps what the completion hands to it, but for the calls that ask
# which words match (-O, -A, -D). The current directory gets a file .zcompdump, which makes the next
# call faster.
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PROMPT= PS2= fpath=(${(q)1} \$fpath)"
zpty -w shell 'autoload -Uz compinit; compinit -u -d ./.zcompdump
offered=()
compadd() {
  if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "$@"; return; fi
  local -a found
  builtin compadd -O found "$@"
  offered+=($found)
  builtin compadd "$@"
}
tell() { print -r -- "BE""GIN"; print -rl -- $offered; print -r -- "EN""D" }
zle -N tell
bindkey "^I" complete-word "^G" tell
setopt no_beep'
zpty -n -w shell "$2"$'\t\a'
zpty -r shell output '*BEGIN*END*'
# The terminal ends lines with a carriage return as well.
output=${${output##*BEGIN}%END*}
# What is inserted is quoted where the shell needs it.
print -rl -- ${(Q)${(f)output//$'\r'/}}
zpty -d shell
