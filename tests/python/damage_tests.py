"""Whatever the bytes are: a documented exception or a right answer, soon and with little memory."""
import struct
import time
import tracemalloc
import unittest
import warnings
import zlib

from support import DATA, Kind, entry, field, file_of, frame, house, ints, simple, text, zo


def setUpModule():
    unittest.enterModuleContext(warnings.catch_warnings())
    warnings.simplefilter("ignore", zo.UndecidedWarning)


def contents(data, check):
    """All that a file says."""
    with zo.open(data, check=check) as file:
        return file.version, file.release, [(record.uid, record.cls.name, tuple(record.raw)) for record in file]


class EveryByte(unittest.TestCase):
    files = {"with a digest": house().to_bytes(), "every kind": (DATA / "every-kind.zo").read_bytes()}

    def test_truncations(self):
        for name, data in self.files.items():
            for size in range(len(data)):
                # Between records, the digest or the number of records tells.
                with self.subTest(name, size=size), self.assertRaises((zo.TruncatedError, zo.WrongDigestError)):
                    contents(data[:size], check=True)
                try:
                    contents(data[:size], check=False)
                except zo.ZoError:
                    pass

    def test_flipped_bytes(self):
        for name, data in self.files.items():
            right = contents(data, check=True)
            for place in range(len(data)):
                for bits in (1, 0x80, 0xFF):
                    flipped = data[:place] + bytes([data[place] ^ bits]) + data[place + 1:]
                    with self.subTest(name, place=place, bits=bits):
                        try:
                            answer = contents(flipped, check=True)
                        except zo.ZoError:
                            continue
                        # Without a digest, the numbers of the header and of heads are believed.
                        if name == "with a digest":
                            self.assertEqual(answer, right)

    def test_flipped_bytes_under_a_right_checksum(self):
        data = self.files["every kind"]
        at = 28
        while at < len(data):
            size = int.from_bytes(data[at + 4:at + 8], "little")
            for place in range(at + 24, at + 24 + size):
                for bits in (1, 0x80, 0xFF):
                    forged = bytearray(data)
                    forged[place] ^= bits
                    struct.pack_into("<I", forged, at + 8, zlib.crc32(forged[at + 24:at + 24 + size]))
                    try:
                        contents(bytes(forged), check=True)
                        for name in ("EveryKind", "Leaf"):
                            list(zo.open(bytes(forged)).rows(name))
                    except zo.ZoError:
                        pass
            at += 24 + size


class Forged(unittest.TestCase):
    def test_what_is_wrong_is_told(self):
        a = simple(field("n", Kind.INT))
        good = file_of([a], (1, 1, ints(5)))
        cases = [
            ("empty", b"", zo.TruncatedError, "ends within its header"),
            ("another file", b"%PDF-1.4 and more that is no header of ours", zo.WrongFileError, "no object file"),
            ("no schema", good[:28], zo.TruncatedError, "no schema"),
            ("no object", file_of([a]), zo.MissingObjectError, "no object"),
            ("objects first", good[:28] + frame(1, 1, ints(5)), zo.DamagedError, "byte 28: the first record is not"),
            ("stray bytes", good + b"??" + frame(1, 2, ints(5)), zo.DamagedError, "no record begins"),
            ("a huge size", good[:28] + struct.pack("<IIIiiI", 0xABCAABCA, 1 << 31, 0, 0, 0, 0), zo.DamagedError, "larger"),
            ("wrong sum", good[:-1] + b"\1", zo.DamagedError, "do not agree with their checksum"),
            ("an unknown class", file_of([a], (7, 1, ints(5))), zo.DamagedError, "uid 1 and the class 7"),
            ("a negative uid", file_of([a], (1, -1, ints(5))), zo.DamagedError, "uid -1"),
            ("one uid twice", file_of([a], (1, 1, ints(5)), (1, 1, ints(6))), zo.DamagedError, "same uid"),
            ("a short record", file_of([a], (1, 1, b"\0")), zo.DamagedError, "<A 1> does not hold the fields"),
            ("a long record", file_of([a], (1, 1, ints(1, 2))), zo.DamagedError, "<A 1> does not hold the fields"),
            ("a text too long", file_of([simple(field("t", Kind.STRING))], (1, 1, ints(9) + b"x")), zo.DamagedError, "fields"),
            ("a negative text", file_of([simple(field("t", Kind.STRING))], (1, 1, ints(-4))), zo.DamagedError, "fields"),
            ("a count", file_of([simple(field("l", Kind.DOUBLE_LIST))], (1, 1, ints(1 << 30))), zo.DamagedError, "fields"),
            ("a lost object", file_of([entry(1, "A", [], [field("c", Kind.CHILD)], [], [], [])], (1, 1, ints(2))),
             zo.MissingObjectError, "<A 1>.c leads to the object 2"),
            ("lost records", good[:12] + ints(9) + good[16:], zo.TruncatedError, "of 9 records only 2"),
            ("a kind of the future", file_of([simple(field("f", -20))], (1, 1, ints(5))), zo.UnreadableError, "kind -20"),
            ("two ids", file_of([a, a]), zo.SchemaError, "another class has it"),
            ("two names", file_of([a, entry(2, "A", [], [], [], [], [])]), zo.SchemaError, 'two classes "A"'),
            ("two fields", file_of([simple(field("n", -1), field("n", -2))]), zo.SchemaError, "share a name"),
            ("an id of 0", file_of([entry(0, "A", [], [], [], [], [])]), zo.SchemaError, "not positive"),
            ("no such parent", file_of([simple(parents=[3])]), zo.SchemaError, "names a class 3"),
            ("its own parent", file_of([simple(parents=[1])]), zo.SchemaError, "its own ancestor"),
            ("a short schema", file_of([a[:-1]]), zo.SchemaError, "the schema"),
            ("a map of unequal halves", file_of([entry(1, "A", [field("m", -19)], [], [], [], [], [])],
                                                (1, 1, ints(1, 0, 0)), (1, 2, ints(0, 0))), zo.DamagedError, "1 keys and 0"),
            ("no version of ours", good[:0] + ints(10_000) + good[4:], zo.WrongFileError, "no object file"),
            ("no release of ours", good[:16] + ints(1_000_000) + good[20:], zo.WrongFileError, "no object file"),
            ("a vast extra block", good[:24] + ints(65_536) + good[28:], zo.WrongFileError, "no object file"),
        ]
        for name, data, error, says in cases:
            with self.subTest(name), self.assertRaises(error) as caught:
                zo.open(data, check=True).root
            self.assertIn(says, str(caught.exception), name)

    def test_what_multiplies(self):
        level = entry(1, "C1", [field(f"f{i}", Kind.INT) for i in range(1000)], [], [], [], [])
        chain = [entry(i, f"C{i}", [], [], [], [], [], parents=[i - 1] if i > 1 else []) for i in range(1, 3000)]
        twice = [entry(i, f"C{i}", [], [], [], [], [], parents=[i - 1] * 2 if i > 1 else []) for i in range(1, 40)]
        wide = [level, *(entry(i, f"C{i}", [], [], [], [], [], parents=[1] * 900) for i in range(2, 100))]
        nested = entry(1, "A", [], [field("m", Kind.MEMBER)], [], [], [])
        own = [field(f"m{i}", Kind.MEMBER) for i in range(50)]
        integers = entry(1, "A", [field(f"s{i}", Kind.STRING_LIST) for i in range(60)], [], [], [], [])
        cases = {
            "a chain of classes": (file_of(chain), "C1"),
            "parents that double": (file_of(twice), "C1"),
            "fields that are inherited again and again": (file_of(wide, (99, 1, ints(1))), "C1"),
            "parts of parts": (file_of([nested], *((1, i, ints(i + 1)) for i in range(1, 3000)), (1, 3000, ints(0))), "A"),
            "its own part": (file_of([nested], (1, 1, ints(1))), "A"),
            "parts of everything": (file_of([entry(1, "A", [], own, [], [], [])],
                                            *((1, i, ints(*range(50))) for i in range(1, 50))), "A"),
            "lists that can be anything": (file_of([integers], (1, 1, bytes(200_000))), "A"),
        }
        for name, (data, class_name) in cases.items():
            with self.subTest(name):
                tracemalloc.start()
                begin = time.process_time()
                with self.assertRaises(zo.ZoError):
                    with zo.open(data) as file:
                        list(file.rows(class_name))
                        file.check()
                seconds = time.process_time() - begin
                _, peak = tracemalloc.get_traced_memory()
                tracemalloc.stop()
                self.assertLess(seconds, 20)
                self.assertLess(peak, 60 << 20)


if __name__ == "__main__":
    unittest.main()
