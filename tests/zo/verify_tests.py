"""zo verify: what is wrong with files."""
import os
import unittest

import harness
from harness import GOOD, NEGATIVE, TROUBLE, contents, data

FRAME = contents("frame9.zo")
SECOND = FRAME.index(b"\xca\xab\xca\xab", 60)  # the first object's record


def changed(at, by=1):
    return FRAME[:at] + bytes([(FRAME[at] + by) % 256]) + FRAME[at + 1:]


# name, contents, a part of what is said (None: ok)
DAMAGES = (
    ("sound", FRAME, None),
    ("payload", changed(SECOND + 25), f"offset {SECOND}, record 2, uid 1 (Building): the checksum 0x"),
    ("size", changed(SECOND + 4), "the size "),
    ("marker", changed(SECOND), "the marker is 0x"),
    ("garbage", FRAME[:SECOND] + b"x" * 70_000 + FRAME[SECOND:], f"offset {SECOND}: 70000 bytes belong to no record"),
    ("torn", FRAME[:-3], "the file ends after "),
    ("no schema", FRAME[:50] + FRAME[SECOND:], "no schema can be read"),
    ("version", FRAME[:1] + b"\xff" + FRAME[2:], "this is no header of an object file"),
    ("other", b"%PDF-1.4 and more of it, which is no object file", "this is no header of an object file"),
    ("empty", b"", "the file ends before its header does"),
)


class VerifyTests(harness.ToolTest):
    def test_tells_a_finding_a_line(self):
        for name, file, said in DAMAGES:
            with self.subTest(name):
                path = self.file("a.zo", file)
                for given in ((path,), ("--quick", path)):
                    if "--quick" in given and name == "payload":
                        continue  # heads alone do not tell
                    result = self.expect(NEGATIVE if said else GOOD, "verify", *given)
                    self.assertIn(f"{path}: {said or 'ok'}" if not said or said.startswith("offset") else said,
                                  result.out)
                    self.assertTrue(all(line.startswith(path + ": ") for line in result.out.splitlines()))

    def test_notes_change_nothing(self):
        path = self.file("a.zo", FRAME[:12] + b"\0\0\0\0" + FRAME[16:])
        result = self.expect(GOOD, "verify", path)
        self.assertIn(f"{path}: note: offset 12: the header counts 0 records", result.out)
        self.assertIn(f"{path}: ok, with 1 note\n", result.out)

    def test_many_findings_of_a_kind_are_counted(self):
        lost = FRAME.index(b"\xca\xab\xca\xab", FRAME.index(b"\xca\xab\xca\xab", SECOND + 4) + 4)  # what others refer to
        path = self.file("a.zo", FRAME[:lost] + FRAME[lost + 400:])
        every = self.expect(NEGATIVE, "verify", "-n", 0, path).out.splitlines()
        some = self.expect(NEGATIVE, "verify", "-n", 2, path).out.splitlines()
        self.assertGreater(len(every), len(some))
        self.assertTrue(any("more of this kind; -n 0 shows all" in line for line in some), some)

    def test_files_and_folders_at_once(self):
        os.mkdir(os.path.join(self.folder, "in"))
        good = self.file("a.zo", FRAME)
        torn = self.file(os.path.join("in", "b.zo"), FRAME[:-3])
        result = self.expect(NEGATIVE, "verify", self.folder)
        self.assertEqual(result.out.splitlines()[0], f"{good}: ok")
        self.assertIn(f"{torn}: offset ", result.out)
        missing = os.path.join(self.folder, "none.zo")
        result = self.expect(TROUBLE, "verify", good, missing, good, says="none.zo")
        self.assertEqual(result.out, f"{good}: ok\n" * 2)

    def test_standard_input(self):
        self.assertEqual(self.expect(GOOD, "verify", "-", given=FRAME).out, "standard input: ok\n")
        self.assertEqual(self.expect(GOOD, "verify", data("frame9.zo")).out, data("frame9.zo") + ": ok\n")


if __name__ == "__main__":
    harness.main()
