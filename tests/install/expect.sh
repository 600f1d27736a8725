# Included by the tests of this folder: what the outside programs print, and how to compare.
with_host_output='AHB1 200000000
ESBD_SBD_SYNTAX_ERROR'
own_host_output='module SBD
data width 32
own message 1'
plain_c_output='data width 32'

# expect_output TEXT COMMAND...
expect_output() {
  local expected=$1 output
  shift
  output=$("$@") || { printf '%s: exit status %d\n' "$1" $? >&2 && exit 1; }
  [ "$output" = "$expected" ] && return
  printf '%s printed:\n%s\nexpected:\n%s\n' "$1" "$output" "$expected" >&2
  exit 1
}
