#!/bin/sh
# FILE ENTRY PROCESSOR READELF OBJDUMP [unoptimised]: fails unless the program or library has what makes mistakes in
# memory hard to exploit: it lies anywhere, its addresses are resolved before it runs and then read-only, no stack is
# executable, stacks and (in optimised code) the sizes of buffers are checked, and the function ENTRY begins as one
# that is called.
set -eu
file=$1
entry=$2
processor=$3
readelf=$4
objdump=$5
optimised=${6:-yes}
failed=""

# require WHAT PATTERN TEXT
require() {
  if ! printf '%s\n' "$3" | grep -Eq "$2"; then
    echo "$file: $1"
    failed=yes
  fi
}

header=$("$readelf" -hW "$file")
segments=$("$readelf" -lW "$file")
dynamic=$("$readelf" -dW "$file")
symbols=$("$readelf" --dyn-syms -W "$file")
require 'has a fixed address' 'Type: *DYN ' "$header"
require 'has no addresses that become read-only' '^ *GNU_RELRO ' "$segments"
require 'resolves addresses while it runs' 'FLAGS.*NOW' "$dynamic"
require 'has an executable stack' '^ *GNU_STACK .* RW ' "$segments"
require 'does not check its stack' ' UND __stack_chk_fail(@|$)' "$symbols"
if [ "$optimised" != unoptimised ]; then
  require 'does not check the sizes of its buffers' ' UND __(v?snprintf|memcpy)_chk(@|$)' "$symbols"
fi

begins=$("$objdump" -d --no-show-raw-insn "$file" | awk -v label="<$entry>:" '$2 == label { getline; print; exit }')
case $processor in
  x86_64)
    require 'is not marked for shadow stacks' 'SHSTK' "$("$readelf" -nW "$file")"
    require "$entry is no landing pad" 'endbr64' "$begins"
    ;;
  aarch64)
    require "$entry neither signs where it returns to nor is a landing pad" 'paciasp|bti' "$begins"
    ;;
esac
[ -z "$failed" ]
