import copy
import unittest

from support import DATA, Kind, entry, field, file_of, house, ints, simple, text, zo


def values(record):
    """The fields of a record, with uids instead of what they lead to."""
    return dict(zip(record.cls.positions, record.raw))


class Values(unittest.TestCase):
    every = {
        "map": ((2,), (3,), False), "anInt": -2, "aFloat": 1.5, "aDouble": -0.25, "aString": "text", "aBlob": b"\1\2",
        "aBool": True, "ints": (7, -8), "floats": (2.5,), "doubles": (3.25,), "strings": ("a", ""),
        "anUnsigned": 4_000_000_000, "child": 4, "member": 5, "children": (6, 7), "reference": 7, "external": 8,
        "references": (4, 5), "externals": (8,)}

    def test_every_kind(self):
        for name in ("every-kind.zo", "scrambled.zo"):
            for mapped in (False, True):
                with self.subTest(name, mapped=mapped), zo.open(DATA / name, mapped=mapped, check=True) as file:
                    self.assertEqual((file.version, file.release, len(file)), (3, 2026, 8))
                    self.assertEqual(values(file.root), self.every)
                    self.assertEqual({slot.field.kind for slot in file.root.cls.slots}, set(Kind))
                    self.assertEqual([leaf.number for leaf in file.root.children], [11, 12])
                    self.assertEqual([(key.uid, value.number) for key, value in file.root.map.items()], [(2, 15)])
                    self.assertEqual(file.root.child, file.root.references[0])

    def test_texts_are_those_of_windows_1252(self):
        every_byte = bytes(range(256))
        data = file_of([simple(field("t", Kind.STRING))], (1, 1, ints(256) + every_byte))
        found = zo.open(data).root.t
        self.assertEqual((found[0x80], found[0x81], found[0xE7]), ("€", "\x81", "ç"))
        self.assertEqual(zo.load(data).to_bytes()[-256:], every_byte)

    def test_a_whole_model(self):
        with zo.open(DATA / "frame9-version4.zo", check=True) as file:
            building = file.root
            self.assertEqual(building.name, "Pórtico de aço de nove andares")
            self.assertEqual(building["storeys"][0].members[0].section.catalogue, building.catalogue)
            self.assertEqual(building.storeys[2].building, building)
            self.assertEqual(len(list(file.objects("Member"))), 110)
            self.assertEqual(len(list(file.objects("Member", derived=False))), 0)
            self.assertEqual(file.undecided(), {})

    def test_one_class_is_read_without_the_rest(self):
        data = bytearray((DATA / "frame9.zo").read_bytes())
        before = [dict(row) for row in zo.open(bytes(data)).rows("Storey")]
        at = 28
        while at < len(data):
            size, _, class_id = (int.from_bytes(data[at + i:at + i + 4], "little") for i in (4, 8, 12))
            if class_id not in (0, 11):
                data[at + 24:at + 24 + size] = bytes(size)
            at += 24 + size
        self.assertEqual(list(zo.open(bytes(data)).rows("Storey")), before)
        with self.assertRaises(zo.DamagedError):
            zo.open(bytes(data)).root.name


    def test_uids_with_gaps_and_in_any_order(self):
        a = simple(field("n", Kind.INT))
        for uids in ((2, 3, 7), (7, 2, 3), (3, 1, 2)):
            file = zo.open(file_of([a], *((1, uid, ints(10 * uid)) for uid in uids)))
            with self.subTest(uids):
                self.assertEqual([record.uid for record in file], list(uids))
                self.assertEqual([file[uid].n for uid in uids], [10 * uid for uid in uids])
                for missing in (0, -1, 4, 8):
                    with self.assertRaises(KeyError):
                        file[missing]


class Names(unittest.TestCase):
    def test_slips_are_told(self):
        file = zo.open(house().to_bytes(), check=True)
        for action, says in ((lambda: file.root["rom"], '"House" has no field "rom"; it has "name", "rooms"'),
                             (lambda: file.root.rom, '"House" has no field "rom"'),
                             (lambda: file.objects("Hose"), 'no class "Hose"; there are "Thing", "Place"'),
                             (lambda: file[99], "no object 99"),
                             (lambda: file.rows("Room", ["areas"]), 'has a field "areas"')):
            with self.subTest(says), self.assertRaises((zo.UnknownNameError, AttributeError)) as caught:
                action()
            self.assertIn(says, str(caught.exception))

    def test_what_is_closed_is_not_read(self):
        for mapped in (False, True):
            with self.subTest(mapped), zo.open(DATA / "every-kind.zo", mapped=mapped) as file:
                read, unread = file.root, file[2]
                self.assertEqual((read.anInt, copy.copy(read).anInt), (-2, -2))
            self.assertEqual(read.anInt, -2)
            with self.assertRaisesRegex(ValueError, "every-kind.zo> is closed"):
                unread.number

    def test_fields_of_one_name(self):
        a = simple(field("n", Kind.INT), field("uid", Kind.INT))
        both = [a, entry(2, "B", [field("n", Kind.INT)], [], [], [], [], parents=[1])]
        file = zo.open(file_of(both, (2, 1, ints(1, 2, 3))))
        self.assertEqual((file.root.n, file.root["A.n"], file.root["uid"]), (3, 1, 2))
        self.assertEqual(list(file.rows("B")), [{"uid": 1, "class": "B", "n": 3, "A.n": 1, "A.uid": 2}])

    def test_a_parent_inherited_twice(self):
        schema = zo.Schema()
        schema.add("Base", [("n", Kind.INT)])
        for name in ("Left", "Right"):
            schema.add(name, [(name, Kind.INT)], parents=["Base"])
        schema.add("Both", parents=["Left", "Right"])
        model = zo.Model(schema, version=1, release=1)
        model.root = model.new("Both", n=5, Left=6, Right=7)
        file = zo.open(model.to_bytes(), check=True)
        self.assertEqual(list(file.root.raw), [5, 6, 5, 7])
        self.assertEqual(file.root.n, 5)

    def test_the_older_form_of_parents(self):
        old = [ints(1) + text("A") + b"\0" + ints(0) + ints(1) + field("n", Kind.INT) + ints(0, 0, 0, 0),
               ints(2) + text("B") + b"\0" + ints(1) + ints(0, 0, 0, 0, 0)]
        self.assertEqual(zo.open(file_of(old, (2, 1, ints(9)))).root.n, 9)
        smallest = ints(1) + text("") + b"\0" + ints(0, 0, 0, 0, 0, 0)
        self.assertEqual(list(zo.open(file_of([smallest])).schema), [""])


class Tables(unittest.TestCase):
    def test_rows(self):
        self.assertEqual([(row["map"], row["children"], row["ints"], row["member.number"])
                          for row in zo.open(DATA / "every-kind.zo").rows("EveryKind")], [([[2, 3]], [6, 7], [7, -8], 13)])
        file = zo.open(house().to_bytes(), check=True)
        self.assertEqual(list(file.rows("Room")), [
            {"uid": 2, "class": "Room", "name": "Casa 1", "area": 11.0, "place.x": 1.0, "place.y": 0.0, "beside": None},
            {"uid": 4, "class": "Kitchen", "name": "Küche", "area": 12.5, "place": None, "beside": 2, "stoves": 4}])
        self.assertEqual(file.columns("Room", ["stoves", "place.x"]),
                         {"uid": [2, 4], "class": ["Room", "Kitchen"], "stoves": [None, 4], "place.x": [1.0, None]})
        self.assertEqual(list(file.columns("Room")), ["uid", "class", "name", "area", "place.x", "place.y", "beside",
                                                      "place", "stoves"])


if __name__ == "__main__":
    unittest.main()
