"""zo salvage: a new file of all that can be had of a damaged one."""
import os
import unittest

import harness
from harness import GOOD, NEGATIVE, TROUBLE, contents, data

FRAME = contents("frame9.zo")
MARKER = b"\xca\xab\xca\xab"
RECORDS = [at for at in range(len(FRAME)) if FRAME.startswith(MARKER, at)]


def changed(at, by=1):
    return FRAME[:at] + bytes([(FRAME[at] + by) % 256]) + FRAME[at + 1:]


LAST = RECORDS[-1]
OBJECTS = len(RECORDS) - 1
# name, contents, objects that are left, parts of what is said
DAMAGES = (
    ("garbage", FRAME[:LAST] + b"x" * 70_000 + FRAME[LAST:], OBJECTS, [f"offset {LAST}: 70000 bytes belong to no record"]),
    ("a size that lies", changed(RECORDS[5] + 6), OBJECTS, ["its payload is whole", "nothing lost"]),
    ("a torn record before others", FRAME[:RECORDS[5] + 30] + FRAME[RECORDS[6]:], OBJECTS - 1, ["its payload is lost"]),
    ("a payload", changed(LAST + 26), OBJECTS - 1, [f"offset {LAST}, record {OBJECTS + 1}, uid {OBJECTS} ("]),
    ("the end", FRAME[:-1], OBJECTS - 1, ["the file ends after"]),
    ("a reference to another class", contents("damaged/wrong-reference.zo"), 482,
     ["its field 'start' becomes null: it wants a 'Node' and refers to uid 192, which is a 'Storey'", "2 losses"]),
    ("the version", changed(1, 100), OBJECTS, ["the header is damaged; version and release become 0"]),
)


class SalvageTests(harness.ToolTest):
    def salvage(self, code, file, *more, **how):
        path = self.file("damaged.zo", file)
        self.target = os.path.join(self.folder, "new.zo")
        result = self.expect(code, "salvage", path, "-o", self.target, *more, **how)
        with open(path, "rb") as kept:
            self.assertEqual(kept.read(), file, "the source has changed")
        return result

    def saved(self):
        with open(self.target, "rb") as file:
            return file.read()

    def test_a_sound_file_stays_as_it_is(self):
        result = self.salvage(GOOD, FRAME)
        self.assertEqual(result.out, f"{self.target}: {OBJECTS} objects, nothing lost\n")
        self.assertEqual(self.saved()[40:], FRAME[28:], "but for the digest")

    def test_saves_what_can_be_had_and_tells_the_rest(self):
        for name, file, left, said in DAMAGES:
            with self.subTest(name):
                result = self.salvage(GOOD if "nothing lost" in said else NEGATIVE, file)
                for text in said:
                    self.assertIn(text, result.out)
                self.assertIn(f"{self.target}: {left} objects, ", result.out.splitlines()[-1])
                self.assertEqual(self.expect(GOOD, "verify", self.target).out.splitlines()[-1][:len(self.target) + 4],
                                 f"{self.target}: ok")

    def test_a_lost_schema_comes_from_a_good_file(self):
        lost = FRAME[:RECORDS[0] + 30] + FRAME[RECORDS[1]:]
        self.salvage(TROUBLE, lost, says="--schema-from")
        self.assertFalse(os.path.exists(self.target))
        self.salvage(NEGATIVE, lost, "--schema-from", data("frame9.zo"))
        self.assertEqual(self.saved()[40:], FRAME[28:])

    def test_refuses_to_write_over_what_it_reads(self):
        path = self.file("a.zo", FRAME)
        for words in ((path, "-o", path), (data("frame9-version4.zo"), "--schema-from", path, "-o", path)):
            self.expect(TROUBLE, "salvage", *words, says="would replace a file that is read")
        with open(path, "rb") as file:
            self.assertEqual(file.read(), FRAME)

    def test_replaces_the_target_only_when_all_is_written(self):
        target = self.file("new.zo", b"what was there")
        self.salvage(TROUBLE, b"no object file at all, and much too short for one", says="its schema is lost")
        with open(target, "rb") as file:
            self.assertEqual(file.read(), b"what was there")
        self.salvage(GOOD, FRAME)
        self.assertEqual(self.saved()[40:], FRAME[28:])
        self.assertEqual(sorted(os.listdir(self.folder)), ["damaged.zo", "new.zo"])


if __name__ == "__main__":
    harness.main()
