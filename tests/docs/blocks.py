"""The blocks of code in the documents, and what the pages say of them.

A comment of HTML before a block says what the block itself does not:

    <!-- example: given NAME -->            C++ that comes before it, from the file given/NAME.h
    <!-- example: file NAME -->             the block is also put into this file
    <!-- example: bytes NAME -->            the block spells the bytes of this file
    <!-- example: not run, REASON -->

Blocks of C++ without `main` are a notebook: those of a page run one after another in one function, after the
classes of the program before them. An expression that prints to std::cout, or calls Show, has behind it, as a comment,
what it prints; a program, or a block of Python, has it in a block of ```text right behind.
"""
import dataclasses
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
NOTE = re.compile(r"^<!-- example: (given|file|bytes|not run,) (.+) -->$")


@dataclasses.dataclass
class Block:
    page: str
    line: int  # of its first line of code
    language: str
    code: str
    notes: dict
    shown: str | None = None  # by the block right behind it

    @property
    def place(self):
        return f"{self.page}:{self.line}"

    @property
    def program(self):
        return re.search(r"^int main\(", self.code, re.M) is not None


def pages():
    return [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md"))]


def blocks(page):
    """The fenced blocks of a page; those that show what another prints stand with that one."""
    found, notes, begun, after = [], {}, None, None
    name = page.relative_to(ROOT).as_posix()
    for number, line in enumerate(page.read_text(encoding="utf-8").splitlines(), 1):
        fence = re.match(r"^( *)```(\S*)$", line)
        if begun is None and fence:
            begun = Block(name, number + 1, fence[2], "", notes)
            notes = {}
        elif fence:
            if begun.language == "text" and after is not None and not begun.notes:
                after.shown = begun.code
                after = None
            else:
                found.append(begun)
                after = begun
            begun = None
        elif begun is not None:
            begun.code += line + "\n"
        elif note := NOTE.match(line):
            notes[note[1].rstrip(",")] = note[2]
        elif line.startswith("<!--"):
            raise AssertionError(f"{name}:{number}: this comment says nothing of an example")
        elif line:
            after = None
            if notes:
                raise AssertionError(f"{name}:{number}: no block follows the comment")
    return found


def without_comment(line):
    """The code of a line of C++ and its comment."""
    for part in re.finditer(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'|//', line):
        if part[0] == "//":
            return line[:part.start()], line[part.end():].strip()
    return line, None


def prints(block):
    """{line: what the expression that begins there prints, by its comment} of a block of C++."""
    shown, begun = {}, None
    lines = block.code.splitlines()
    for number, line in enumerate(lines):
        code, comment = without_comment(line)
        if begun is None and re.search(r"\bstd::cout\b|\bShow\(", code):
            begun = block.line + number
        if begun is None or not re.search(r"[;}]\s*$", code):
            continue
        if comment is None and number + 1 < len(lines):
            code, below = without_comment(lines[number + 1])
            comment = below if not code.strip() else None
        if comment is not None:
            shown[begun] = comment
        begun = None
    return shown
