"""Prints a document as Doxygen wants it: page.py FILE. Headings get the names that links have for them, links lead to pages."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def anchor(heading):
    """As the sites that show a project's sources name it."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def page_name(path):
    if path == ROOT / "README.md":
        return "mainpage"
    return "page-" + "-".join(path.relative_to(ROOT).with_suffix("").parts).lower()


def heading_name(path, name):
    return f"{page_name(path)}-{name}"


def linked(path, match):
    """A link to a page, or to a heading of one; of a link to what is not in the site, its text alone; of a picture, its name."""
    picture, text, target = match.groups()
    if picture:
        return f"![{text}]({pathlib.PurePath(target).name})"
    if re.match(r"\w+:", target):
        return match[0]
    name, _, heading = target.partition("#")
    to = (path.parent / name).resolve() if name else path
    if to.suffix != ".md":
        return text
    return f"[{text}](@ref {heading_name(to, heading) if heading else page_name(to)})"


def line_of(path, line, first):
    if heading := re.match(r"(#+) (.*)", line):
        name = page_name(path) if first else heading_name(path, anchor(heading[2]))
        return f"{heading[1]} {heading[2]} {{#{name}}}"
    if line.startswith("<!--"):
        return ""
    # An apostrophe would end the code.
    line = re.sub(r"`([^`]*'[^`]*)`", lambda match: "<tt>" + re.sub("([@<>&])", r"\\\1", match[1]) + "</tt>", line)
    return re.sub(r"(!?)\[((?:[^\[\]]|\[\])*)\]\(([^)\s]+)\)", lambda match: linked(path, match), line)


def main(path):
    code, first = False, True
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.lstrip().startswith("```"):
            code = not code
            line = re.sub(r"```(console|pycon|text|ini|json|sh|cmake|proto)?$", "```" if not code else "```{.txt}", line)
        elif not code:
            line = line_of(path, line, first)
            first = first and not line.startswith("# ")
        print(line)


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    main(pathlib.Path(sys.argv[1]).resolve())
