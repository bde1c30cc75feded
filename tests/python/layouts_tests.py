"""Files do not tell how lists and maps stand in them: the records do."""
import unittest
import warnings

from support import Kind, entry, field, file_of, house, ints, text, zo

LIST, INTS, MAP, NAME = (field("l", Kind.CHILD_LIST), field("i", Kind.INT_LIST), field("m", Kind.CHILD_MAP),
                         field("n", Kind.STRING))
LEAF = entry(2, "Leaf", [field("v", Kind.INT)], [], [], [], [])


def cls(maps=(), values=(), lists=()):
    return entry(1, "A", *([list(maps)] if maps else []), list(values), [], list(lists), [], [])


NUMBERS = cls(values=[INTS, field("j", Kind.INT_LIST)])
LISTS = cls(lists=[LIST, field("k", Kind.CHILD_LIST)])
MIXED = entry(1, "A", [], [], [LIST], [field("p", Kind.REFERENCE)], [field("r", Kind.REFERENCE_LIST)])
LEAVES = cls(lists=[field("l", Kind.CHILD_LIST, 2), field("k", Kind.CHILD_LIST, 2)])


class Search(unittest.TestCase):
    def check(self, name, made, payloads, expected, undecided=()):
        """`expected`: raw values of the first object, a list with integers as (integers, items)."""
        leaf = len(payloads) + 1
        records = [(1, uid, payload) for uid, payload in enumerate(payloads, 1)] + [(2, leaf, ints(7))]
        with self.subTest(name):
            file = zo.open(file_of([made, LEAF], *records))
            with warnings.catch_warnings(record=True) as told:
                warnings.simplefilter("always")
                file.root.raw
            self.assertEqual([warning.category for warning in told], [zo.UndecidedWarning] if undecided else [])
            found = {key: (value.integers, tuple(value)) if getattr(value, "integers", ()) else value
                     for key, value in zip(file.root.cls.positions, file.root.raw)}
            self.assertEqual(found, expected)
            self.assertEqual(file.undecided().get("A", []), list(undecided))

    def test_readings(self):
        for name, made, payload, expected in (
                ("plain", cls(lists=[LIST]), ints(1, 2), {"l": (2,)}),
                ("one integer", cls(lists=[LIST]), ints(1, 99, 2), {"l": ((99,), (2,))}),
                ("two integers, of an empty list", cls(lists=[LIST]), ints(0, 98, 99), {"l": ((98, 99), ())}),
                ("before a text", cls(values=[INTS, NAME]), ints(2, 9, 7, 5) + text("text"),
                 {"i": ((9,), (7, 5)), "n": "text"}),
                ("a map of lists", cls(maps=[MAP]), ints(1, 2, 1, 2), {"m": ((2,), (2,), False)}),
                ("a map of single pointers", cls(maps=[MAP]), ints(2, 1), {"m": ((2,), (1,), True)}),
                ("the plainer one", NUMBERS, ints(1, 8, 1, 0), {"i": (8,), "j": (0,)}),
                ("objects that exist", LISTS, ints(1, 99, 1, 0), {"l": ((99,), (1,)), "k": ()}),
                ("a pointer that is wrong", MIXED, ints(1, 99, 99, 2, 1, 1), {"l": ((99,), (99,)), "p": 2, "r": (1,)}),
                ("objects of the class", LEAVES, ints(1, 1, 2, 1, 2), {"l": ((1,), (2,)), "k": (2,)})):
            self.check(name, made, [payload], expected)

    def test_further_records_decide(self):
        either, first, both = ints(1, 9, 1, 1, 5), ints(0, 9, 2, 5, 6), ints(1, 8, 1, 0)
        self.check("one of two", NUMBERS, [either, first], {"i": ((9,), (1,)), "j": (5,)})
        self.check("the plain one is refuted", NUMBERS, [both, first], {"i": ((8,), (1,)), "j": ()})
        self.check("neither", NUMBERS, [either], {"i": (9,), "j": ((1,), (5,))}, ["i", "j"])

    def test_undecided_files_are_not_loaded_unless_told(self):
        data = file_of([NUMBERS], (1, 1, ints(1, 9, 1, 1, 5)))
        with self.assertRaisesRegex(zo.UndecidedError, 'records of "A" do not tell how "i", "j" stand.*layouts='):
            zo.load(data)
        model = zo.load(data, layouts={"A.i": (1,), "A.j": (0,)})
        self.assertEqual((model.root.i, model.root.i.integers, model.root.j), ([1], (9,), [5]))
        self.assertEqual(model.to_bytes()[40:], data[28:])
        for wrong in ({"A.i": (3,)}, {"A.x": (1,)}):
            with self.assertRaisesRegex(ValueError, "no way for this field"):
                zo.open(data, layouts=wrong)

    def test_much_that_fits_ends_soon(self):
        many = cls(lists=[field(f"l{i}", Kind.CHILD_LIST) for i in range(300)])
        file = zo.open(file_of([many], (1, 1, bytes(4 * 400))))
        self.assertEqual(len(file.undecided()["A"]), 300)
        with self.assertRaisesRegex(zo.UndecidedError, "too many ways"), self.assertWarns(zo.UndecidedWarning):
            file.root.l0

    def test_what_is_written_is_read(self):
        for integers in ((), (7,), (7, 8)):
            model = house(4)
            model.root.rooms.integers = integers
            with self.subTest(integers):
                file = zo.open(model.to_bytes(), check=True)
                self.assertEqual((file.root.rooms.integers, len(file.root.rooms)), (integers, 4))
                self.assertEqual(file.undecided(), {})


if __name__ == "__main__":
    unittest.main()
