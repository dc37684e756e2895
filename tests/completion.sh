#!/usr/bin/env bash
# QTXHOST: what its scripts propose. Those for zsh and fish are asked where these shells are there.
set -eu
qtxhost=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failed=0
# expect WHAT FOUND EXPECTED
expect() {
  [ "$2" = "$3" ] && return 0
  echo "$1: proposes \"$2\" instead of \"$3\""
  failed=1
}
"$qtxhost" completion bash >"$folder/bash"
# shellcheck disable=SC1091
source "$folder/bash"
# proposed WORD …: of the last one.
proposed() {
  COMP_WORDS=(qtxhost "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _qtxhost
  echo "${COMPREPLY[*]}"
}
cd "$folder"
touch a.bas
expect 'a subcommand' "$(proposed ru)" run
expect 'an option' "$(proposed run --le)" --leaks
expect 'no option of another subcommand' "$(proposed list --le)" ''
expect 'an option before any subcommand' "$(proposed --v)" --version
expect 'the values of an option' "$(proposed run --array-shape '')" 'published other'
expect 'the words of a subcommand' "$(proposed completion z)" zsh
expect 'a file' "$(proposed run --leaks a)" a.bas

"$qtxhost" completion fish >"$folder/fish"
if command -v fish >/dev/null; then
  # asked LINE
  asked() { HOME=$folder fish --no-config -c "source $folder/fish; complete -C '$1'" | cut -f1 | tr '\n' ' '; }
  expect 'fish: a subcommand' "$(asked 'qtxhost ru')" 'run '
  expect 'fish: an option' "$(asked 'qtxhost run --le')" '--leaks '
  expect 'fish: the values of an option' "$(asked 'qtxhost run --array-shape p')" 'published '
fi
"$qtxhost" completion zsh >"$folder/zsh"
expect 'zsh: first line' "$(head -n 1 "$folder/zsh")" '#compdef qtxhost'
if command -v zsh >/dev/null; then zsh -n "$folder/zsh"; fi
exit $failed
