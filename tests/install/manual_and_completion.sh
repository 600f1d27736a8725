#!/usr/bin/env bash
# Manual pages and completions are where the programs that show them look.
set -euo pipefail
prefix=$1

fail() {
  printf '%s\n' "$1" >&2
  exit 1
}

for page in man1/sbd.1 man1/sbd-check.1 man1/sbd-fmt.1 man5/sbd-descriptor.5; do
  [ -s "$prefix/share/man/$page" ] || fail "no $page"
done
# One page for each command, and the tool's own.
commands=$("$prefix/bin/sbd" __complete '' | tail -n +2 | wc -l)
pages=$(find "$prefix/share/man/man1" -type f | wc -l)
[ "$pages" -eq $((commands + 1)) ] || fail "$pages pages for $commands commands"
for file in bash-completion/completions/sbd zsh/site-functions/_sbd \
  fish/vendor_completions.d/sbd.fish; do
  [ -s "$prefix/share/$file" ] || fail "no $file"
done
bash -n "$prefix/share/bash-completion/completions/sbd"

command -v man >/dev/null || exit 0
# Of what man writes, the first word that is not of the page's head.
MANPATH=$prefix/share/man man sbd-check 2>/dev/null | grep -q 'FILE-OR-FOLDER' ||
  fail "man does not find sbd-check"
