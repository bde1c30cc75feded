"""gdb shows the types of the installed library as a user thinks of them, by the printers that it loads with it."""
import os
import re
import subprocess
import unittest

from harness import SOURCE, fresh, installed, run

EVERY_ADDRESS = re.compile(r"0x[0-9a-f]+")

# Expression in debugged.cpp, and what gdb prints.
SHOWN = [
    ("text", '"a "quoted" text"'),
    ("blob", "2 bytes: 7a 6f"),
    ("*house", 'House = {name = "Casa do João", area = 0, storeys = TIVector<Storey> of 1 = {[1] = Storey, 1 reference = '
               '{name = "Térreo", area = 12.5}}, highest = Storey at 0x}'),
    ("house", 'House, 1 reference = {name = "Casa do João", area = 0, storeys = TIVector<Storey> of 1 = {[1] = Storey, '
              '1 reference = {name = "Térreo", area = 12.5}}, highest = Storey at 0x}'),
    # By a reference to its base, an object is still what it is.
    ("storey", 'House = {name = "Casa do João", area = 0, storeys = TIVector<Storey> of 1 = {[1] = Storey, 1 reference = '
               '{name = "Térreo", area = 12.5}}, highest = Storey at 0x}'),
    ("none", "null"),
    ("reference", "House at 0x"),
    ("numbers", "TDVector<int> of 2 = {[1] = 17, [2] = 4}"),
    ("map", 'TIMap<ZoString, ZoInteger> of 1 = {["one"] = ZoInteger, 1 reference = {value = 1}}'),
    ("length", "200 cm"),
    ("load", "3 kgf/cm²"),
    ("point", "(1, 2.5)"),
    ("point3", "(1, 2, 3)"),
    ("vector", "(0, 0, -1)"),
    ("plain", "(3, 4)"),
    ("start", "2014-12-11 10:34:05.4999999 UTC"),
    ("before", "1969-12-31 23:59:59 UTC"),
    ("colour", "rgba(1, 2, 3, 255)"),
    ("message", '"Arquivo corrompido"'),
    ("*houseClass", 'TZoClass "House", id 2 = {parents = "Storey", storeys = ftChildPointerList, highest = ftPointer}'),
    ("*field", 'TZoClassFieldPointerList "storeys", ftChildPointerList'),
]


class Printers(unittest.TestCase):
    def test_show(self):
        tree, folder = installed(), fresh("gdb")
        program = folder / "debugged"
        run("g++", "-std=c++17", "-O0", "-g", "-I", tree / "include", SOURCE / "tests/package/debugged.cpp", "-L",
            tree / "lib", "-lZoPrimitives", f"-Wl,-rpath,{tree / 'lib'}", "-o", program)
        commands = ["break Look", "run", "up"]
        for number, (expression, _) in enumerate(SHOWN):
            commands += [f"echo <{number}>", f"output {expression}", "echo <end>\\n"]
        done = subprocess.run(["gdb", "-nx", "-batch", "-iex", f"add-auto-load-safe-path {tree}"] +
                              [word for command in commands for word in ("-ex", command)] + [str(program)],
                              env=os.environ | {"LC_ALL": "C.UTF-8"}, stdin=subprocess.DEVNULL, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        for number, (expression, wanted) in enumerate(SHOWN):
            with self.subTest(expression):
                found = re.search(rf"<{number}>(.*?)<end>", done.stdout, re.S)
                self.assertIsNotNone(found, done.stdout)
                self.assertEqual(EVERY_ADDRESS.sub("0x", found[1]), wanted)


if __name__ == "__main__":
    unittest.main()
