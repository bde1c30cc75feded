"""The package as others use it: installed, checked by a type checker, handed to pandas and Dask."""
import ast
import doctest
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

from support import DATA, ROOT, FolderTest, house, zo

PACKAGE = ROOT / "bindings" / "python"


def run(*command, **how):
    done = subprocess.run([os.fspath(word) for word in command], capture_output=True, encoding="utf-8", timeout=300, **how)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.stdout}{done.stderr}")
    return done.stdout


class Package(FolderTest):
    def test_a_wheel_is_built_and_installed_without_network(self):
        source = self.folder / "source"
        shutil.copytree(PACKAGE, source, ignore=shutil.ignore_patterns("__pycache__"))
        run(sys.executable, "-m", "venv", "--system-site-packages", self.folder / "venv")
        python = self.folder / "venv" / "bin" / "python"
        run(python, "-m", "pip", "wheel", "--no-build-isolation", "--no-index", "--no-deps", "-w", self.folder, source)
        wheel, = self.folder.glob("zoprimitives-*-none-any.whl")
        run(python, "-m", "pip", "install", "--no-index", wheel)
        house().save(self.folder / "house.zo")
        said = run(python, "-c", "import zoprimitives as z; print(z.__version__, z.open('house.zo').root.name, z.__file__)",
                   cwd=self.folder)
        self.assertRegex(said, r"3\.\d+\.\d+ Casa .*venv")
        self.assertTrue(list((self.folder / "venv").rglob("zoprimitives/py.typed")))

    def test_version_is_that_of_the_library(self):
        header = (ROOT / "public/include/ZoPrimitives/ZoVersion.h").read_text()
        self.assertEqual(zo.__version__.split("."), re.findall(r"^#define ZO_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$", header, re.M))

    def test_types(self):
        run("mypy", "--strict", "--cache-dir", self.folder, "-p", "zoprimitives", cwd=PACKAGE)

    def test_only_the_standard_library_is_needed(self):
        for path in (PACKAGE / "zoprimitives").glob("*.py"):
            for node in ast.walk(ast.parse(path.read_text())):
                names = [alias.name for alias in node.names] if isinstance(node, ast.Import) else \
                    [node.module] if isinstance(node, ast.ImportFrom) and not node.level else []
                for name in names:
                    self.assertTrue(name == "pandas" or name.partition(".")[0] in sys.stdlib_module_names, (path, name))

    def test_without_pandas(self):
        code = "import sys; sys.modules['pandas'] = None; import zoprimitives as z; z.open(sys.argv[1]).dataframe('Leaf')"
        done = subprocess.run([sys.executable, "-c", code, DATA / "every-kind.zo"], capture_output=True, encoding="utf-8",
                              env={**os.environ, "PYTHONPATH": os.fspath(PACKAGE)}, timeout=60)
        self.assertIn("ImportError: a data frame needs pandas", done.stderr)


class Tables(FolderTest):
    def test_types_do_not_depend_on_values(self):
        (self.folder / "a.zo").write_bytes(house(1).to_bytes())
        (self.folder / "b.zo").write_bytes(house(4).to_bytes())
        names = ["name", "area", "beside", "stoves"]
        frames = [zo.dataframe(self.folder / f"{name}.zo", "Room", names) for name in "ab"]
        self.assertEqual([str(dtype) for dtype in frames[0].dtypes],
                         ["object", "int64", "object", "object", "float64", "Int64", "Int64"])
        self.assertTrue((frames[0].dtypes == frames[1].dtypes).all())
        self.assertEqual(list(frames[1]["stoves"].isna()), [True, True, True, False])
        self.assertEqual(len(zo.open(self.folder / "b.zo").dataframe("House")), 1)


class Documents(FolderTest):
    def test_every_example(self):
        """The blocks of the manual, one after another, in a folder that holds the example's model."""
        shutil.copy(DATA / "frame9-version4.zo", self.folder / "frame9.zo")
        text = (ROOT / "docs" / "python.md").read_text(encoding="utf-8")
        blocks = re.findall(r"^```pycon\n(.*?)^```$", text, re.M | re.S)
        self.assertGreater(len(blocks), 5)
        self.assertNotIn("```python\n", text)
        test = doctest.DocTestParser().get_doctest("\n".join(blocks), {}, "docs/python.md", None, 0)
        said = []
        before = Path.cwd()
        os.chdir(self.folder)
        try:
            doctest.DocTestRunner(optionflags=doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE).run(test, out=said.append)
        finally:
            os.chdir(before)
        self.assertEqual("".join(said), "")


if __name__ == "__main__":
    unittest.main()
