"""FOLDER: whether the texts of an unpacked package make sense where it is: their links lead to files in it, they speak of no
command that it does not have, and README and license are there."""
import re
import sys
from pathlib import Path


def main():
    folder = Path(sys.argv[1])
    found = []
    pages = list(folder.rglob("*.md"))
    for name in ("README.md", "CHANGELOG.md", "spline.md", "tour.bas"):
        if not any(folder.rglob(name)):
            found.append(f"there is no {name}")
    if not any("Permission is hereby granted" in each.read_text()
               for name in ("LICENSE", "copyright") for each in folder.rglob(name)):
        found.append("no file has the license")
    for file in [*pages, *folder.rglob("*.bas")]:
        text = file.read_text()
        if "./qtx" in text:
            found.append(f"{file.name} speaks of ./qtx, which is not there")
        if re.search(r"@\w+@", text):
            found.append(f"{file.name} has a place that was not filled in")
    for file in pages:
        in_code = False
        for line in file.read_text().split("\n"):
            if line.startswith("```"):
                in_code = not in_code
            for link in [] if in_code else re.findall(r"\]\(([^)\s#]+)", line):
                if not re.match(r"[a-z]+:", link) and not (file.parent / link).exists():
                    found.append(f"{file.name} leads to {link}, which is not there")
    print("\n".join(found), file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
