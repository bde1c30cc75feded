"""Every link in a document of the project leads to a file, and to a heading of it, that is there."""
import re
import sys
import unittest

from blocks import ROOT

sys.path.append(str(ROOT / "tools/site"))
from page import anchor


def lines(path):
    """Without the blocks of code; numbered."""
    code = False
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.lstrip().startswith("```"):
            code = not code
        elif not code:
            yield number, line


def headings(path):
    return {anchor(line.lstrip("#")) for _, line in lines(path) if line.startswith("#")}


class Links(unittest.TestCase):
    def test_links(self):
        pages = [path for path in ROOT.rglob("*.md") if "build" not in path.relative_to(ROOT).parts]
        wrong, count = [], 0
        for path in pages:
            for number, line in lines(path):
                for target in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "", line)):
                    if re.match(r"\w+:", target):
                        continue
                    count += 1
                    name, _, heading = target.partition("#")
                    to = path.parent / name if name else path
                    if not to.exists() or heading and heading not in headings(to):
                        wrong.append(f"{path.relative_to(ROOT)}:{number}: {target}")
        self.assertEqual(wrong, [])
        self.assertGreater(count, 30)

    def test_the_readme_leads_to_every_page(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        self.assertEqual([path.name for path in sorted((ROOT / "docs").glob("*.md")) if f"](docs/{path.name}" not in readme], [])


if __name__ == "__main__":
    unittest.main()
