# Adds up what gcovr counts per file into folders, and fails where plugin/ or host/ is below what it has to reach.
BEGIN {
  FS = ","
  lines["plugin"] = 100
  branches["plugin"] = 100
  lines["host"] = 95
  branches["host"] = 85
  row = "%-20s %17s %17s\n"
  printf row, "", "lines", "branches"
}

function share(reached, all) { return sprintf("%d of %d %6.2f %%", reached, all, all ? 100 * reached / all : 100) }

function add(folder) {
  allLines[folder] += $2
  someLines[folder] += $3
  allBranches[folder] += $5
  someBranches[folder] += $6
}

FNR > 1 {
  folder = $1
  sub("/[^/]*$", "", folder)
  if (!(folder in allLines)) order[++count] = folder
  add(folder)
  top = folder
  if (sub("/.*$", "", top)) add(top)
}

function show(folder) {
  printf "%-18s %24s %24s\n", folder, share(someLines[folder], allLines[folder]),
    share(someBranches[folder], allBranches[folder])
}

END {
  for (i = 1; i <= count; ++i) if (!(order[i] in lines)) show(order[i])
  for (top in lines) {
    show(top)
    if (!allLines[top] || 100 * someLines[top] < lines[top] * allLines[top] ||
        100 * someBranches[top] < branches[top] * allBranches[top]) {
      printf "%s/: at least %d %% of the lines and %d %% of the branches are to be reached\n", top, lines[top], branches[top]
      failed = 1
    }
  }
  exit failed
}
