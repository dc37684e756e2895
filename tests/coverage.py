#!/usr/bin/env python3
"""Says which lines and branches of plugin/ and host/ the tests have reached, and fails where these are too few.

usage: coverage.py SOURCE_DIRECTORY BUILD_DIRECTORY [HTML_DIRECTORY]

Reads what the compiler's gcov says of each object file, and prints the folders and what has to be reached but is not.
gcovr, which would do so too, cannot tell an exception's way on from others where a function has not run in all object
files; it writes the pages that show each line, where a folder for them is named.

A branch is one way on from a condition. Those do not count that nobody has written:

- the two ways on from a call, back and by an exception;
- whether a static variable is there already;
- what the compiler puts on a line of mere brackets, such as the destructors at the end of a block.

Nor do those that coverage_exceptions.txt names, each with its reason.

The instances of a template are one function: what one of them reaches is reached.
"""
import collections
import json
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

STATIC_VARIABLE = re.compile(r"static [^(?]*=")
REQUIRED = {"host": (95, 85), "plugin": (100, 100)}  # percent of lines, of branches


def written(branches):
    """The branches without the ways on from calls: an exception's, and the one beside it."""
    kept = []
    for branch in branches:
        if not branch["throw"]:
            kept.append(branch)
        elif kept and kept[-1]["fallthrough"]:
            kept.pop()
    return [branch["count"] for branch in kept]


def files_of(notes):
    told = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", str(notes)],
                          check=True, capture_output=True, cwd=notes.parent).stdout
    return json.loads(told)["files"]


class File:
    def __init__(self):
        self.lines = collections.Counter()
        # By line, then by where its function starts, then by how many there are: a template's instances differ.
        self.branches = collections.defaultdict(lambda: collections.defaultdict(dict))

    def add(self, told):
        starts = {each["name"]: (each["start_line"], each["start_column"]) for each in told["functions"]}
        for line in told["lines"]:
            number = line["line_number"]
            self.lines[number] += line["count"]
            counts = written(line["branches"])
            alike = self.branches[number][starts.get(line.get("function_name"))]
            sums = alike.setdefault(len(counts), [0] * len(counts))
            alike[len(counts)] = [one + other for one, other in zip(sums, counts)]

    def branches_of(self, number):
        """Of each function on the line, the instances with the most branches among those that have run."""
        return [count for alike in self.branches[number].values()
                for count in max(alike.values(), key=lambda counts: (any(counts), len(counts)))]


def read_exceptions(file):
    """Lines such as "plugin/a.cpp | 2 | the line's text | why": how many branches of it need not be reached, or
    that "line", the line itself, need not."""
    exceptions = {}
    for line in file.read_text().splitlines():
        if line and not line.startswith("#"):
            path, number, text, _ = line.split(" | ", 3)
            exceptions[path, text] = int(number) if number != "line" else None
    return exceptions


def count(source, build):
    files = collections.defaultdict(File)
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for told in pool.map(files_of, sorted(build.rglob("*.gcno"))):
            for each in told:
                path = os.path.relpath(os.path.join(source, each["file"]), source)
                if path.split("/")[0] in REQUIRED:
                    files[path].add(each)
    return files


def write_html(files, source, folder):
    with tempfile.TemporaryDirectory() as scratch:
        nothing = subprocess.run(["gcovr", "--root", scratch, "--json"], check=True, capture_output=True).stdout
        tracefile = Path(scratch) / "coverage.json"
        tracefile.write_text(json.dumps(json.loads(nothing) | {"files": files}))  # in the version that it reads
        folder.mkdir(parents=True, exist_ok=True)
        subprocess.run(["gcovr", "--root", source, "--add-tracefile", tracefile, "--html-details",
                        folder / "index.html", "--html-title", "Coverage"], check=True, cwd=source)


def share(reached, total):
    return f"{reached:5} of {total:5} {100 * reached / max(total, 1):7.2f} %"


def main():
    source, build, *html = (Path(each).resolve() for each in sys.argv[1:])
    exceptions = read_exceptions(Path(__file__).with_name("coverage_exceptions.txt"))
    unknown = set(exceptions)
    sums = collections.defaultdict(lambda: [0, 0, 0, 0])
    missing = collections.defaultdict(list)
    trace = []
    for path, file in sorted(count(source, build).items()):
        text = (source / path).read_text().splitlines()
        lines = []
        for number, times in sorted(file.lines.items()):
            content = text[number - 1].strip()
            if not content.strip("{}();, "):
                continue
            branches = [] if STATIC_VARIABLE.match(content) else file.branches_of(number)
            here = path, content
            if here in exceptions:
                unknown.discard(here)
                allowed = exceptions[here]
                if not times and allowed is None:
                    continue
                if times and allowed is not None and branches.count(0) <= allowed:
                    branches = [each for each in branches if each]
            found = [times > 0, 1, sum(each > 0 for each in branches), len(branches)]
            for folder in {str(Path(path).parent), path.split("/")[0]}:
                sums[folder] = [one + other for one, other in zip(sums[folder], found)]
            if not times or 0 in branches:
                what = f"{branches.count(0)} of {len(branches)} branches" if times else "never"
                missing[path.split("/")[0]].append(f"{path}:{number}: {what}: {content}")
            lines.append({"line_number": number, "count": times, "gcovr/noncode": False,
                          "gcovr/excluded": False,
                          "branches": [{"count": each, "fallthrough": False, "throw": False} for each in branches]})
        trace.append({"file": path, "lines": lines, "functions": []})
    if html:
        write_html(trace, source, html[0])

    failed = False
    print(f"{'':<16}{'lines':>25}{'branches':>25}")
    for folder in sorted(sums, key=lambda name: (name in REQUIRED, name)):
        reached, total, ways, all_ways = sums[folder]
        print(f"{folder:<16}{share(reached, total):>25}{share(ways, all_ways):>25}")
    for top, (lines, ways) in REQUIRED.items():
        reached, total, taken, all_ways = sums[top]
        if total == 0 or 100 * reached < lines * total or 100 * taken < ways * all_ways:
            failed = True
            print(f"\nOf {top}/, {lines} % of the lines and {ways} % of the branches have to be reached. Not reached:")
            print("\n".join(missing[top]))
    for path, content in sorted(unknown):
        failed = True
        print(f"\ncoverage_exceptions.txt: {path} has no such line: {content}")
    sys.exit(failed)


main()
