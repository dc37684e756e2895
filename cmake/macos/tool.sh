#!/bin/sh
# NAME: prints the path of LLVM's tool of that name, of the newest version that is installed. Distributions keep each
# version in a folder of its own and not every tool in each. The linker has to be of version 16 or later: older ones
# leave the exception tables of 64-bit Arm out of the library, and its first exception would end the host.
set -eu
case $1 in
  ld64.lld) oldest=16 ;;
  *) oldest=14 ;;
esac
version=$(ls -d /usr/lib/llvm-*/bin/"$1" 2>/dev/null | sed 's|/usr/lib/llvm-\([0-9]*\)/.*|\1|' | sort -n | tail -n 1)
if [ "${version:-0}" -lt "$oldest" ]; then
  echo "$1 of LLVM $oldest or later is missing: ./qtx build macos-cross installs it" >&2
  exit 1
fi
echo "/usr/lib/llvm-$version/bin/$1"
