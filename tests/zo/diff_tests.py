"""zo diff."""
import os
import struct

import harness
from harness import GOOD, NEGATIVE, TROUBLE, contents, data, made, patched, shortened
from objectfile import text

KINDS = data("every-kind.zo")


def model(*beams, fields=(("load", -3), ("mark", -4), ("holes", -7, 2))):
    """Beams (mark, load, depths of its holes) in a storey."""
    classes = [("Storey", False, [], [("beams", -7, 3)]), ("Hole", False, [], [("depth", -3)]), ("Beam", False, [], list(fields))]
    objects, uids = [], []
    for mark, load, holes in beams:
        uids.append(len(objects) + 2)
        first = len(objects) + 3
        numbers = range(first, first + len(holes))
        objects.append((3, struct.pack("<d", load) + text(mark) + struct.pack(f"<{len(holes) + 1}i", len(holes), *numbers)))
        objects += [(2, struct.pack("<d", depth)) for depth in holes]
    return made(classes, [(1, struct.pack(f"<{len(uids) + 1}i", len(uids), *uids))] + objects)


class Diff(harness.ToolTest):
    def diff(self, code, a, b, *words, **how):
        return self.expect(code, "diff", *words, self.file("a.zo", a), self.file("b.zo", b), silent=False, **how)

    def test_equal_files_say_nothing(self):
        for words in ([], ["--by", "name"], ["--schema"], ["-q"]):
            self.assertEqual(self.expect(GOOD, "diff", *words, data("frame9.zo"), data("frame9.zo")).out, "")
        self.assertEqual(self.expect(GOOD, "diff", KINDS, data("scrambled.zo")).out, "")

    def test_values(self):
        whole = contents("every-kind.zo")
        for form, before, after, line in (("<d", -0.25, 7.5, "aDouble: -0.25 -> 7.5"), ("4s", b"text", b"t\xe9xt", 'aString: "text" -> "téxt"'),
                                          ("<iii", (2, 7, -8), (2, 7, 9), "ints[2]: -8 -> 9"), ("<I", 4000000000, 1, "anUnsigned: 4000000000 -> 1"),
                                          ("<i", 99, -1, "number: 99 -> -1"), ("<ii", (1, 8), (1, 5), "externals[1]: #8 Leaf -> #5 Leaf")):
            with self.subTest(line):
                result = self.diff(NEGATIVE, whole, patched(whole, form, before, after), says="1 changed")
                self.expect_lines(result, line)
                self.assertEqual(len(result.out.splitlines()), 2)

    def test_tolerances(self):
        a, b = model(("V1", 1000.0, [])), model(("V1", 1000.5, []))
        for words, code in (([], NEGATIVE), (["--abs", "0.5"], GOOD), (["--abs", "0.4"], NEGATIVE), (["--rel", "1e-3"], GOOD), (["--rel", "1e-4"], NEGATIVE)):
            with self.subTest(words):
                self.diff(code, a, b, *words)
        nan = model(("V1", float("nan"), []))
        self.diff(GOOD, nan, nan)
        self.diff(NEGATIVE, a, nan, "--abs", "1e9")

    def test_objects_by_uid_and_by_a_field(self):
        a = model(("V1", 1, [5.0]), ("V2", 2, []), ("V4", 4, [6.0, 7.0]))
        b = model(("V1", 1, [5.0]), ("V3", 3, []), ("V2", 2.5, []), ("V4", 4, [6.0, 8.0]))
        by_uid = self.diff(NEGATIVE, a, b)
        self.expect_lines(by_uid, '~ #4 Beam "V2"', 'mark: "V2" -> "V3"', "+ #8 Hole")
        by_mark = self.diff(NEGATIVE, a, b, "--by", "mark", says="1 object added, 0 removed, 3 changed")
        self.assertEqual(by_mark.out, '~ #1 Storey\n    + beams[2]: #4 Beam\n~ #4 Beam "V2" -> #5\n      load: 2 -> 2.5\n'
                                      '~ #7 Hole -> #8\n      depth: 7 -> 8\n+ #4 Beam "V3"\n')
        fewer = self.diff(NEGATIVE, b, a, "--by", "mark", "-n", "1", says="the first 1 are shown")
        self.assertEqual(fewer.out, "~ #1 Storey\n    - beams[2]: #4 Beam\n")
        self.assertEqual(self.diff(NEGATIVE, a, b, "-q").err, "")

    def test_schemas(self):
        older = model(("V1", 1, []))
        newer = made([("Storey", False, [], [("beams", -7, 3)]), ("Hole", False, [4], [("depth", -3)]),
                      ("Beam", False, [4], [("load", -4), ("mark", -4), ("holes", -7, 2), ("steel", -10)]),
                      ("Part", True, [], []), ("Brace", False, [3], [("bolts", -1)]), ("Slab", False, [], [("depth", -3)])], [])
        result = self.diff(NEGATIVE, older, newer, "--schema")
        a, b = (os.path.join(self.folder, name) for name in ("a.zo", "b.zo"))
        self.assertEqual(result.out, f"""~ class Hole: parents none -> Part
~ class Beam: parents none -> Part
~ Beam.load: double -> string
+ Beam.steel: bool
+ class Part, abstract (no fields)
+ class Brace: Beam (bolts int)
+ class Slab (depth double)

An application with the classes of {a} loses of {b}:
  objects of Brace: read as Beam
  objects of Slab: none is made, and references to them become null
  values of Beam.load (string) in objects of Beam, Brace
  values of Beam.steel (bool) in objects of Beam, Brace
  values of Brace.bolts (int) in objects of Brace

An application with the classes of {b} loses of {a}:
  values of Beam.load (double) in objects of Beam
""")
        self.expect_lines(self.diff(NEGATIVE, older, newer), "+ Beam.steel: bool", "- #1 Storey")

    def test_no_file_and_bad_files(self):
        self.assertEqual(len(self.expect(NEGATIVE, "diff", "/dev/null", KINDS, says="8 objects added").out.splitlines()), 8 + 2)
        torn = self.file("torn.zo", contents("every-kind.zo")[:-1])
        self.expect(TROUBLE, "diff", KINDS, torn, says=("1 removed", "1 record damaged"))
        short = self.file("short.zo", shortened(contents("every-kind.zo"), 8, 1))
        for files in ((KINDS, short), (short, KINDS)):
            self.expect(TROUBLE, "diff", *files, says="1 object not as the class says")
        for words, says in (([KINDS, "none.zo"], "none.zo: there is no such file"), ([KINDS], "B is required"),
                            ([KINDS, KINDS, "--by", "nope"], 'field "nope"'), ([KINDS, KINDS, "--abs", "-1"], "--abs")):
            with self.subTest(words):
                self.expect(TROUBLE, "diff", *words, says=says)


if __name__ == "__main__":
    harness.main()
