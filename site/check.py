"""Fails if a link within the site leads nowhere or out of it, or if a page would load anything from another host.

  check.py SITE
"""
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

# What makes a browser load something; a link that a reader follows does not.
LOADS = {("script", "src"), ("link", "href"), ("img", "src"), ("source", "src"), ("iframe", "src"), ("object", "data"),
         ("image", "href"), ("use", "href"), ("use", "xlink:href")}


class References(HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.anchors, self.links, self.loaded = set(), [], []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.anchors.update(values[key] for key in ("id", "name") if values.get(key))
        if tag == "link" and values.get("rel") == "canonical":
            return
        for key, value in attributes:
            if (tag, key) in LOADS:
                self.loaded.append(value)
            elif key == "href":
                self.links.append(value)


def main():
    site = Path(sys.argv[1]).resolve()
    found = []
    pages = {file: References(file.read_text()) for file in [*site.rglob("*.html"), *site.rglob("*.svg")]}
    for file, page in pages.items():
        where = file.relative_to(site)
        for link in page.links + page.loaded:
            parts = urlsplit(link)
            if parts.scheme or parts.netloc:
                if link in page.loaded and parts.scheme != "data":
                    found.append(f"{where} loads {link}")
                continue
            target = file
            if parts.path.startswith("/"):
                found.append(f"{where} leads to {link}, which is right only where the site lies below no path")
                continue
            if parts.path:
                target = (file.parent / unquote(parts.path)).resolve()
            if target.is_dir():
                target /= "index.html"
            if not target.exists():
                found.append(f"{where} leads to {link}, which is not there")
            elif parts.fragment and target in pages and "=" not in parts.fragment and \
                    unquote(parts.fragment) not in pages[target].anchors:
                found.append(f"{where} leads to {link}; there is no such place on that page")
    for file in site.rglob("*.css"):
        for target in re.findall(r"url\(\s*['\"]?([^'\")]+)", file.read_text()) + \
                re.findall(r"@import\s+['\"]([^'\"]+)", file.read_text()):
            if re.match(r"(https?:)?//", target):
                found.append(f"{file.relative_to(site)} loads {target}")
    for file in (site / "assets").glob("*.js"):
        for address in re.findall(r"https?://[^\s'\"`]+", file.read_text()):
            found.append(f"{file.relative_to(site)} has the address {address}")
    if len(pages) < 15:
        found.append(f"there are only {len(pages)} pages")
    print("\n".join(found), file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
