#!/bin/sh
# ARCHIVE QTXHOST: unpacks what users download, a zip or tar.gz, and runs its example with its library in the given host.
set -eu
archive=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
host=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
tests=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cmake -E tar xf "$archive"
library=$(find . -name 'libqtx.*')
tour=$(find . -name tour.bas)
"$host" run --library "$library" "$tour" >tour.out
diff "$tests/examples/tour.out" tour.out
echo "$(basename "$archive"): the tour runs with $(basename "$library")"
