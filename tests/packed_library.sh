#!/bin/sh
# ARCHIVE QTXHOST [LOADER]: unpacks what users download, a zip or tar.gz, reads its texts, and runs its example with its
# library in the given host; one for macOS on Linux by means of the loader, libmacho_preload.so.
set -eu
archive=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
host=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
tests=$(cd "$(dirname "$0")" && pwd)
loader=${3:+$(cd "$(dirname "$3")" && pwd)/$(basename "$3")}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cmake -E tar xf "$archive"
python3 "$tests/packed_texts.py" .
library=$(find . -name 'libqtx.*')
tour=$(find . -name tour.bas)
${loader:+env LD_PRELOAD="$loader"} "$host" run --library "$library" "$tour" >tour.out
diff "$tests/examples/tour.out" tour.out
echo "$(basename "$archive"): the tour runs with $(basename "$library")"
