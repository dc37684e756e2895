#!/bin/sh
# DEB: installs the package into a new, minimal system under a temporary folder, which fails where the package does not
# name all that it needs, and runs an installed example there. One for 64-bit Arm on another processor is only unpacked,
# and runs under qemu. Needs root, debootstrap and, for that, qemu-user.
set -eu
package=$1
tests=$(cd "$(dirname "$0")" && pwd)
name=$(basename "$package")
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf "$root"' EXIT

if [ "$(dpkg-deb -f "$package" Architecture)" = "$(dpkg --print-architecture)" ]; then
  needed=$(dpkg-deb -f "$package" Depends | sed 's/ *([^)]*)//g; s/ //g')
  release=$(. /etc/os-release && echo "$VERSION_CODENAME")
  debootstrap --variant=minbase --include="$needed" "$release" "$root" >"$root/log" 2>&1 || {
    cat "$root/log"
    exit 1
  }
  dpkg --root="$root" -i "$package" >/dev/null
  mount --bind /proc "$root/proc"
  qtxhost() { chroot "$root" qtxhost "$@"; }
  example=/usr/share/doc/qtx/examples/tour.bas
  how=installed
else
  dpkg-deb -x "$package" "$root"
  qtxhost() { qemu-aarch64 "$root/usr/bin/qtxhost" "$@"; }
  example=$root/usr/share/doc/qtx/examples/tour.bas
  how=unpacked
fi

for file in man/man1/qtxhost.1.gz bash-completion/completions/qtxhost doc/qtx/copyright doc/qtx/README.md; do
  if [ ! -s "$root/usr/share/$file" ]; then
    echo "$name lacks $file"
    exit 1
  fi
done
python3 "$tests/packed_texts.py" "$root/usr/share/doc/qtx"
version=$(qtxhost --version)
if [ "$version" != "qtxhost $(dpkg-deb -f "$package" Version)" ]; then
  echo "$name holds $version"
  exit 1
fi
qtxhost run "$example" >"$root/tour.out"
diff "$tests/examples/tour.out" "$root/tour.out"
echo "$name: the tour runs as $how"
