#!/bin/sh
# LIBRARY NM READELF: fails unless the library defines exactly one symbol for others, REALPluginMain, and needs only
# the runtime of C and C++.
set -eu
library=$1
nm=$2
readelf=$3

exported=$("$nm" -D --defined-only "$library" | awk '{print $3}' | sort)
if [ "$exported" != REALPluginMain ]; then
  printf 'exported from %s:\n%s\nexpected: REALPluginMain alone\n' "$library" "$exported"
  exit 1
fi

for needed in $("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
  case $needed in
    libstdc++.so.* | libc++.so.* | libc++abi.so.* | libunwind.so.* | libm.so.* | libgcc_s.so.* | libc.so.* | ld-linux*) ;;
    libasan.so.* | libubsan.so.* | libtsan.so.*) ;; # in sanitizer builds
    *)
      echo "$library needs $needed, which is no part of the runtime of C and C++"
      exit 1
      ;;
  esac
done
