#!/bin/sh
# SOURCE: fails unless the includes of plugin/ and host/ run downwards only, as the table of floors in docs/developing.md
# has it: within a folder to files further left in its row, to other folders only as the row allows, and those stand
# in rows further up. So there is no circle either.
set -eu
cd "$1"
find plugin host -name '*.h' -o -name '*.cpp' | LC_ALL=C sort | awk '
  function complain(message) { print message; failed = 1 }
  function withoutExtension(file) { sub(/\.[a-z]+$/, "", file); return file }
  function folderOf(file) { sub(/\/[^\/]*$/, "", file); return file }

  # | `FOLDER` | `FOLDER OR FILE` … | `FILE` … |
  function readFloors(   line, cell, allowed, files, i, count, name) {
    while ((getline line < "docs/developing.md") > 0) {
      if (line !~ /^\| `(plugin|host)[a-z\/0-9]*` \|.*\|.*\|$/) continue
      gsub(/`/, "", line)
      split(line, cell, / *\| */)
      row[cell[2]] = ++rows
      count = split(cell[3], allowed, /[ ,]+/)
      for (i = 1; i <= count; ++i) mayInclude[cell[2], allowed[i]] = 1
      count = split(cell[4], files, /[ ,]+/)
      for (i = 1; i <= count; ++i) {
        name = cell[2] "/" files[i]
        if (name in place) complain("docs/developing.md: " name " is there twice")
        place[name] = i
      }
    }
    if (rows < 2) complain("docs/developing.md: there is no table of floors")
  }

  function checkArrow(where, from, to,   fromFolder, toFolder) {
    if (from == to) return
    fromFolder = folderOf(from)
    toFolder = folderOf(to)
    if (fromFolder == toFolder) {
      if (place[to] >= place[from]) complain(where ": " to " stands above " from)
    } else if (!((fromFolder, toFolder) in mayInclude || (fromFolder, to) in mayInclude)) {
      complain(where ": " fromFolder " does not include " to)
    } else if (row[toFolder] >= row[fromFolder]) {
      complain(where ": " toFolder " stands above " fromFolder)
    }
  }

  BEGIN { readFloors() }
  { known[$0] = 1; stands[withoutExtension($0)] = 1; files[++fileCount] = $0 }
  END {
    for (name in place) if (!(name in stands)) complain("docs/developing.md: there is no " name)
    for (name in stands) if (!(name in place)) complain("docs/developing.md: " name " has no place")
    for (i = 1; i <= fileCount; ++i) {
      number = 0
      while ((getline line < files[i]) > 0) {
        ++number
        if (line !~ /^ *# *include *"/) continue
        split(line, quoted, "\"")
        where = files[i] ":" number
        if (("plugin/" quoted[2]) in known) target = "plugin/" quoted[2]
        else if (("host/" quoted[2]) in known) target = "host/" quoted[2]
        else { complain(where ": there is no " quoted[2]); continue }
        ++arrows
        checkArrow(where, withoutExtension(files[i]), withoutExtension(target))
      }
    }
    if (arrows < 100) complain("only " arrows " includes were found")
    exit failed
  }'
