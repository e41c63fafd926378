# SPDX-License-Identifier: MIT
"""Usage: links.py html|markdown FOLDER

Prints each link to a file or a place in a file that is not there, and fails if there is one. In html the pages of a
built site are looked through, in markdown those of FOLDER itself and of FOLDER/docs."""

import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

MARKDOWN_LINK = re.compile(r"\]\(([^)\s]+)\)")
CODE = re.compile(r"^```.*?^```$|`[^`\n]*`", re.MULTILINE | re.DOTALL)


class Page(HTMLParser):
    """The links of a page, and the places in it that links may name."""

    def __init__(self, text: str):
        super().__init__()
        self.links: list[str] = []
        self.places: set[str] = set()
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src", "data") and value:
                self.links.append(value)
            elif name == "id" or (tag == "a" and name == "name"):
                self.places.add(value)


def is_local(link: str) -> bool:
    parts = urlsplit(link)
    return not parts.scheme and not parts.netloc


def faults_of_site(site: Path) -> tuple[int, list[str]]:
    pages = {path: Page(path.read_text(encoding="utf-8")) for path in sorted(site.rglob("*.html"))}
    count, faults = 0, []
    for path, page in pages.items():
        for link in filter(is_local, page.links):
            parts = urlsplit(link)
            target = (path.parent / unquote(parts.path)).resolve() if parts.path else path
            count += 1
            if not target.is_file():
                faults.append(f"{path.name}: there is no {link}")
            elif parts.fragment and "=" not in parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].places:
                faults.append(f"{path.name}: there is no place {link}")
    return count, faults


def faults_of_markdown(root: Path) -> tuple[int, list[str]]:
    count, faults = 0, []
    for path in sorted([*root.glob("*.md"), *(root / "docs").glob("*.md")]):
        text = CODE.sub("", path.read_text(encoding="utf-8"))
        for link in filter(is_local, MARKDOWN_LINK.findall(text)):
            count += 1
            file = urlsplit(link).path
            if file and not (path.parent / unquote(file)).exists():
                faults.append(f"{path.relative_to(root)}: there is no {link}")
    return count, faults


def main() -> int:
    kind, folder = sys.argv[1], Path(sys.argv[2]).resolve()
    count, faults = {"html": faults_of_site, "markdown": faults_of_markdown}[kind](folder)
    for fault in faults:
        print(fault)
    print(f"{count} links, {len(faults)} broken")
    return 1 if faults or not count else 0


if __name__ == "__main__":
    sys.exit(main())
