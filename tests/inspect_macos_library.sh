#!/bin/sh
# LIBRARY NM OTOOL LIPO: fails unless the library is for both processors and, for each of them, is a dynamic library for
# macOS 11 that defines exactly one symbol for others, REALPluginMain, needs nothing but the system, and is signed.
set -eu
library=$1
nm=$2
otool=$3
lipo=$4
failed=0

# expect WHAT WANTED FOUND
expect() {
  if [ "$2" != "$3" ]; then
    printf '%s, %s: expected\n%s\nfound\n%s\n\n' "$library" "$1" "$2" "$3"
    failed=1
  fi
}

expect 'processors' 'arm64 x86_64' "$("$lipo" -archs "$library" | tr ' ' '\n' | sort | xargs)"

slice=$(mktemp)
trap 'rm -f "$slice"' EXIT
for processor in x86_64 arm64; do
  "$lipo" "$library" -thin "$processor" -output "$slice"
  expect "$processor, exported symbols" _REALPluginMain "$("$nm" -g -U -j "$slice" | grep . | xargs)"

  header=$("$otool" -hv "$slice" | tail -n 1 | tr A-Z a-z)
  for word in mh_magic_64 "$processor" dylib twolevel noundefs; do
    case " $header " in
      *" $word "*) ;;
      *) expect "$processor, header" "$word" "$header" ;;
    esac
  done

  commands=$("$otool" -l "$slice")
  # field KIND KEY: what stands behind the key in the load commands of that kind.
  field() {
    printf '%s\n' "$commands" |
      awk -v kind="$1" -v key="$2" '$1 == "cmd" { wanted = $2 == kind } wanted && $1 == key { print $2 }'
  }
  expect "$processor, install name" @rpath/libqtx.dylib "$(field LC_ID_DYLIB name)"
  expect "$processor, platform" macos "$(field LC_BUILD_VERSION platform | sed 's/^1$/macos/' | tr A-Z a-z)"
  expect "$processor, oldest system" 11.0 "$(field LC_BUILD_VERSION minos)"
  expect "$processor, number of signatures" 1 "$(field LC_CODE_SIGNATURE dataoff | grep -c .)"
  # Code that has to be changed where it lies is not position-independent.
  expect "$processor, relocations in the code" '' "$("$otool" -rv "$slice" | grep __TEXT || true)"

  expect "$processor, needed libraries that are not the system's" '' \
    "$(field LC_LOAD_DYLIB name | grep -v -e '^/usr/lib/lib' -e '^/System/Library/Frameworks/' || true)"
  # Each symbol of a framework is looked for where it lies.
  for pair in NSLog:Foundation __CFConstantStringClassReference:CoreFoundation dtox80:CoreServices x80tod:CoreServices; do
    expect "$processor, where ${pair%:*} comes from" "(from ${pair#*:})" \
      "$("$nm" -m "$slice" | sed -n "s/.*(undefined) external _${pair%:*} //p")"
  done
  # Compilers like to call it for a power of ten, but it does not round like pow.
  expect "$processor, use of exp10" '' "$("$nm" -u -j "$slice" | grep exp10 || true)"
done
exit $failed
