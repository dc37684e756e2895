"""Makes the pages of the site: those of docs/ as they are, with links that lead to pages of the site; the README as the
first one; an index of all names; a playground with the examples.

  pages.py SOURCES PAGES [RUNNER]    RUNNER: the folder with what runs programs in a browser
"""
import html
import json
import re
import shutil
import sys
from pathlib import Path

from markdown.extensions.toc import slugify, unique

REFERENCE = ("functions", "int128", "atomic", "queue", "spline")
PROJECT = {"CONTRIBUTING.md": "contributing.md", "CHANGELOG.md": "changelog.md", "SECURITY.md": "security.md"}
TEXTS = {"LICENSE": "LICENSE.txt", "NOTICES": "NOTICES.txt"}
# Where the members stand that programs use by a sign.
SIGNS = {
    "atomic": {"Convert": ("Value, assignment, conversion", "Operators"), "Compare": ("Comparison", "Operators"),
               "": ("Operators",)},
    "queue": {"Convert": ("Values",), "Compare": ("Comparison",), "": ("queue + value",)},
    "int128": {"Convert": ("Assignment",), "Compare": ("= <> < <= > >=",), "Negate": ("Unary minus",),
               "": ("+ - * / Mod",), "Constructor": ("Making numbers",)},
}


def rewritten(text):
    """Links from where a page lies in the sources to where its target lies in the site."""

    def target(match):
        link = match.group(2)
        path, hash_sign, anchor = link.partition("#")
        name = path.rsplit("/", 1)[-1]
        if re.match(r"[a-z]+:", link) or not path:
            return match.group(0)
        if name == "README.md":
            path = "index.md"
        elif name in PROJECT:
            path = PROJECT[name]
        elif name in TEXTS:
            path = TEXTS[name]
        elif name.endswith(".bas"):
            path, hash_sign, anchor = "playground.md", "#", "example=" + name[: -len(".bas")]
        elif path.startswith("docs/"):
            path = path[len("docs/"):]
        return match.group(1) + path + hash_sign + anchor + ")"

    in_code = False
    lines = []
    for line in text.split("\n"):
        if line.startswith("```"):
            in_code = not in_code
        lines.append(line if in_code else re.sub(r"(\]\()([^)\s]+)\)", target, line))
    return "\n".join(lines)


class Page:
    """Headings with their anchors, what is said in code below each, and the declarations of each class."""

    def __init__(self, name, text):
        self.name, self.sections, self.owners = name, [], {}
        used, owner, language = set(), None, None
        for line in text.split("\n"):
            if line.startswith("```"):
                language = None if language is not None else line[3:]
            elif language == "declarations":
                if line.startswith(" "):
                    self.owners[owner].append(line.strip())
                else:
                    owner = line.split()[1]
                    self.owners[owner] = []
            elif language is None and (heading := re.match(r"#+ (.*)", line)):
                title = heading.group(1).replace("`", "")
                self.sections.append((title, unique(slugify(title, "-"), used), []))
            elif language is None and self.sections:
                self.sections[-1][2].extend(re.findall(r"`([^`]+)`", line))

    def anchor(self, owner, name):
        """Of the section that tells of a member: in its heading, else in code."""
        if name.startswith("Operator_") or name == "Constructor":
            sign = name.removeprefix("Operator_")
            of_page = SIGNS.get(self.name, {})
            wanted = of_page.get(sign) or of_page.get("", ())
            # A page about two classes has the second one's sections behind the first one's.
            order = list(self.sections)
            if list(self.owners).index(owner) > 0:
                order.reverse()
            for title in wanted:
                for heading, anchor, _ in order:
                    if heading == title:
                        return anchor
        word = re.compile(r"(?<!\w)" + re.escape(name) + r"(?!\w)")
        started = owner not in [title for title, _, _ in self.sections]
        for where in (0, 2):
            inside = started
            for section in self.sections[1:]:  # the first only leads to the others
                inside = inside or section[0] == owner
                texts = [section[0]] if where == 0 else section[2]
                if inside and section[0] != "Declarations" and any(word.search(text) for text in texts):
                    return section[1]
        return "declarations"


def name_of(declaration):
    return re.match(r"(?:Shared )?(?:Property )?(\w+)", declaration).group(1)


def names_page(pages):
    """Every name that is registered, in alphabetical order, with its declarations and where it is told."""
    entries = {}
    for page in pages:
        for owner, declarations in page.owners.items():
            for declaration in declarations:
                name = name_of(declaration)
                entries.setdefault((name.lower(), name, owner), (page, []))[1].append(declaration)
    lines = ["# Index of all names", "",
             "Every function and every member of every class, as declared. Each leads to where it is told.", ""]
    letter = None
    for (_, name, owner), (page, declarations) in sorted(entries.items(), key=lambda entry: entry[0]):
        if name[0].upper() != letter:
            letter = name[0].upper()
            lines += ["", f"## {letter}", "", "| Name | Of | Declared |", "|---|---|---|"]
        link = f"{page.name}.md#{page.anchor(owner, name)}"
        of = "" if owner.startswith("Math") else f"`{owner}`"
        declared = "<br>".join(f"<code>{html.escape(each)}</code>" for each in declarations)
        lines.append(f"| [`{name}`]({link}) | {of} | {declared} |")
    return "\n".join(lines) + "\n"


def examples(sources):
    """The programs of examples/: what each is about, and what it prints where that is always the same."""
    for file in sorted((sources / "examples").glob("*.bas")):
        text = file.read_text()
        about = " ".join(line[2:] for line in text.split("\n\n")[0].split("'\n")[0].splitlines()
                         if not re.match(r"' \w+: ", line))
        prints = re.search(r"^' prints: (.*)", text)
        output = sources / (prints.group(1) if prints else f"tests/examples/{file.stem}.out")
        yield {"name": file.stem, "about": about, "program": text,
               "output": output.read_text() if output.exists() else None}


PLAYGROUND = """# Playground

Programs run here, in this page; nothing is sent anywhere. **Share** makes a link that holds the program.

<div id="qtx-playground"><noscript>This page needs JavaScript.</noscript></div>

## The examples

"""


def main():
    sources, pages = Path(sys.argv[1]), Path(sys.argv[2])
    shutil.rmtree(pages, ignore_errors=True)
    shutil.copytree(sources / "docs", pages)
    reference = []
    for file in pages.glob("*.md"):
        text = file.read_text()
        if file.stem in REFERENCE:
            reference.append(Page(file.stem, text))
        file.write_text(rewritten(text))
    (pages / "index.md").write_text(rewritten((sources / "README.md").read_text()))
    for source, name in PROJECT.items():
        (pages / name).write_text(rewritten((sources / source).read_text()))
    for source, name in TEXTS.items():
        shutil.copy(sources / source, pages / name)
    (pages / "names.md").write_text(names_page(reference))
    shutil.copytree(sources / "site/assets", pages / "assets")
    programs = list(examples(sources))
    (pages / "assets/examples.json").write_text(json.dumps(programs))
    (pages / "playground.md").write_text(
        PLAYGROUND + "".join(f"- [{each['name']}](#example={each['name']}): {each['about']}\n" for each in programs))
    if len(sys.argv) > 3:
        shutil.copytree(sys.argv[3], pages / "run")


if __name__ == "__main__":
    main()
