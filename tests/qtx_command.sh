#!/bin/sh
# What ./qtx says, in a folder of its own with programs that stand in for the real ones.
# usage: qtx_command.sh SOURCE_FOLDER
set -u
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/project" "$folder/bin" "$folder/elsewhere"
cp "$1/qtx" "$folder/project/qtx"
cd "$folder/elsewhere" || exit 1

failed=0
# expect STATUS TEXT COMMAND …: the command ends so, and says the text.
expect() {
  wanted=$1
  text=$2
  shift 2
  said=$("$@" 2>&1 </dev/null)
  status=$?
  case $said in
    *"$text"*) [ "$status" = "$wanted" ] && return 0 ;;
  esac
  printf '%s\nended with %s, expected %s and "%s":\n%s\n\n' "$*" "$status" "$wanted" "$text" "$said"
  failed=1
}

# Through links, relative ones among them.
ln -s ../project/qtx link
ln -s "$folder/elsewhere/link" "$folder/second"
expect 0 'usage: ./qtx COMMAND' ./link help
expect 2 'there is no preset "fast"; there are release' "$folder/second" build fast

# Answered before anything is built or installed.
qtx=$folder/project/qtx
expect 0 'usage: ./qtx COMMAND' "$qtx" build --help
expect 0 'usage: ./qtx COMMAND' "$qtx" test --help
expect 2 'there is no preset "fast"' "$qtx" test fast
expect 2 'there is no preset "fast"' "$qtx" soak fast 2
expect 2 'build does not take "twice"' "$qtx" build release twice
expect 2 'there is no command "sing"' "$qtx" sing
expect 2 'site takes --serve and a port alone, found "serve"' "$qtx" site serve
expect 2 '"http" is no port' "$qtx" site --serve http
expect 2 'site does not take "more"' "$qtx" site --serve 8001 more
mkdir "$folder/project/bench" "$folder/project/docs"
echo 'Int128 addition' >"$folder/project/docs/performance.md"
echo '"Int128 addition"' >"$folder/project/bench/int128_subjects.cpp"
expect 2 'there is no subject with "Cooking" in its name' "$qtx" bench Cooking
expect 2 'there is no file "first.bas"' "$qtx" run first.bas
expect 2 'there is no file "first.bas"' "$qtx" check first.bas
if [ "$(uname)" != Darwin ]; then expect 2 'needs a Mac' "$qtx" build macos; fi
if [ -e "$folder/project/build" ]; then
  echo 'something was built'
  failed=1
fi

# A machine that lacks everything, without rights or network.
for each in sh dirname basename readlink cat mkdir mktemp tail tr cut sleep grep rm env ls chmod touch; do
  ln -s "$(command -v "$each")" "$folder/bin/$each"
done
stub() {
  printf '#!/bin/sh\n%s\n' "$2" >"$folder/bin/$1"
  chmod +x "$folder/bin/$1"
}
stub uname 'echo Linux'
stub id 'echo 1000'
stub sudo 'echo "sudo: a password is required" >&2; exit 1'
stub apt-get 'exit 1'
expect 1 'please run: sudo apt-get update && sudo apt-get install -y --no-install-recommends g++ cmake ninja-build' \
  env PATH="$folder/bin" "$qtx" build
case $(cat "$folder/project/build/install.log") in
  *'a password is required'*) ;;
  *)
    echo 'the log does not say why'
    failed=1
    ;;
esac
lines=$(env PATH="$folder/bin" "$qtx" build 2>&1 | grep -c .)
if [ "$lines" != 2 ]; then
  echo "it said $lines lines instead of what it installs and what to do"
  failed=1
fi

# A folder that belongs to somebody else; root may write to every one.
if [ "$(id -u)" != 0 ]; then
  chmod a-w "$folder/project/build"
  expect 1 'which you may not write to; copy the project' env PATH="$folder/bin" "$qtx" build
  chmod u+w "$folder/project/build"
fi

# A build that takes long, with all there.
stub sudo 'exit 0'
for each in c++ ninja; do stub "$each" 'exit 0'; done
stub cmake 'mkdir -p build/release; touch build/release/build.ninja'
stub ninja 'case $* in *-n*) exit 0 ;; esac; echo "[3/9] Building x"; sleep 11'
expect 0 '[3/9] Building x' env PATH="$folder/bin" "$qtx" build
stub ninja 'case $* in *-n*) exit 0 ;; esac; echo "error: no"; exit 1'
expect 1 'error: no' env PATH="$folder/bin" "$qtx" build

# Of two runs, the second begins to build when the first has done.
if command -v flock >/dev/null; then
  ln -s "$(command -v flock)" "$folder/bin/flock"
  stub ninja "case \$* in *-n*) exit 0 ;; esac; echo begin >>'$folder/order'; sleep 4; echo end >>'$folder/order'"
  env PATH="$folder/bin" "$qtx" build >/dev/null 2>&1 &
  first=$!
  until [ -e "$folder/order" ]; do sleep 1; done
  expect 0 'Waiting for another run: build/release' env PATH="$folder/bin" "$qtx" build
  wait "$first" || failed=1
  order=$(tr '\n' ' ' <"$folder/order")
  if [ "$order" != 'begin end begin end ' ]; then
    echo "two builds at once: $order"
    failed=1
  fi
fi
exit "$failed"
