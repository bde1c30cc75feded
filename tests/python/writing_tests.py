import os
import stat
import subprocess
import unittest
from unittest import mock

from support import DATA, FolderTest, Kind, house, houses, zo


class Library(FolderTest):
    """What Python wrote, the library opens."""

    def opened(self, path):
        """What the example's program, which knows the classes, says of the file."""
        program = os.environ.get("ZO_FRAME")
        self.assertTrue(program, "ZO_FRAME does not name the example's program: use ./dev test python")
        done = subprocess.run([program, os.fspath(path)], capture_output=True, encoding="utf-8", timeout=60)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def test_a_changed_file(self):
        model = zo.load(DATA / "frame9-version4.zo")
        model.root.name = "Pórtico mudado em Python"
        storey = model.root.storeys[1]
        storey.name = "Térreo"
        girders = [member for member in storey.members if member.cls.name == "Girder"]
        storey.members.remove(girders[0])
        model.save(self.folder / "changed.zo")
        said = self.opened(self.folder / "changed.zo")
        self.assertIn("Pórtico mudado em Python", said)
        self.assertRegex(said, r"1 +Térreo .* 6 +4 ")

    def test_a_model_from_nothing(self):
        source = zo.open(DATA / "frame9-version4.zo")
        schema = zo.Schema()
        for cls in source.schema.values():
            schema.add(cls.name, cls.fields, parents=[parent.name for parent in cls.parents], abstract=cls.abstract)
        model = zo.Model(schema, version=4, release=2026)

        def length(cm):
            return model.new("GComprimento", valor=cm)
        steel = model.new("Material", name="Aço", density=model.new("GPeso", valor=0.00785))
        section = model.new("Section", name="W10", depth=length(25.0), area=model.new("GArea", valor=50.0),
                            inertia=model.new("GInercia", valor=7000.0), material=steel)
        ends = [model.new("Node", name=f"N{i}", support=i == 0, place=model.new("Point3D", y=300.0 * i)) for i in (0, 1)]
        column = model.new("Column", name="C1", section=section, start=ends[0], end=ends[1], exterior=True)
        storey = model.new("Storey", name="Um só", mark="1", level=length(300.0), height=length(300.0), members=[column])
        model.root = model.new("Building", name="Feito em Python", saved="2026-11-22T09:00:00.0000000Z",
                               site=model.new("Site", name="Aqui"), materials=[steel], sections=[section], nodes=ends,
                               storeys=[storey], legend={section: model.new("LegendEntry", name="pilares")})
        storey.building = model.root
        model.save(self.folder / "new.zo")
        said = self.opened(self.folder / "new.zo")
        for line in ("Feito em Python", "Um só", "Aço, 7850 kg/m³"):
            self.assertIn(line, said)

    def test_golden_files_come_back_byte_for_byte(self):
        for name in ("frame9.zo", "frame9-version4.zo", "every-kind.zo"):
            with self.subTest(name):
                written = zo.load(DATA / name).to_bytes()
                self.assertEqual(written[40:], (DATA / name).read_bytes()[28:])
                self.assertTrue(zo.open(written, check=True).has_digest)

    def test_the_digest_is_that_of_the_library(self):
        subprocess.run([os.environ["ZO_FRAME"], "demo", "examples/frame/data", self.folder], check=True,
                       capture_output=True, cwd=DATA.parents[1], timeout=60)
        data = (self.folder / "frame9.zo").read_bytes()
        self.assertEqual(zo.load(data).to_bytes(), data)


class Models(FolderTest):
    def test_round_trip(self):
        model = house(4)
        model.root.rooms += [None, model.root.rooms[0]]
        again = zo.load(model.to_bytes())
        self.assertEqual(again.to_bytes(), model.to_bytes())
        self.assertEqual([room and room.name for room in again.root.rooms],
                         ["Casa 1", "Casa 2", "Casa 3", "Küche", None, "Casa 1"])
        self.assertIs(again.root.rooms[0], again.root.rooms[5])
        self.assertEqual([found.cls.name for found in again.objects("Thing")], ["House", "Room", "Room", "Room", "Kitchen"])

    def test_a_deep_chain(self):
        schema = zo.Schema()
        schema.add("Link", [("next", Kind.CHILD, "Link")])
        model = zo.Model(schema, version=1, release=1)
        for _ in range(20_000):
            model.root = model.new("Link", next=model.root)
        self.assertEqual(len(zo.load(model.to_bytes()).objects()), 20_000)

    def test_external_objects(self):
        schema = zo.Schema()
        schema.add("Leaf", [("n", Kind.INT), ("further", Kind.EXTERNAL, "Leaf"), ("own", Kind.CHILD, "Leaf")])
        schema.add("Root", [("outside", Kind.EXTERNAL_LIST, "Leaf"), ("any", Kind.REFERENCE, "Leaf")])
        model = zo.Model(schema, version=1, release=1)
        last = model.new("Leaf", n=3)
        first = model.new("Leaf", n=1, further=last, own=model.new("Leaf", n=2))
        kept = model.new("Leaf", n=4)
        model.root = model.new("Root", outside=[first], any=kept)
        with self.assertRaisesRegex(zo.ModelError, "Root.any: refers to a <Leaf> that nothing owns. Let a field own"):
            model.to_bytes()
        model.externals.append(kept)
        again = zo.load(model.to_bytes())
        self.assertEqual([leaf.n for leaf in again.objects("Leaf")], [1, 2, 3, 4])
        self.assertEqual(again.to_bytes(), model.to_bytes())

    def test_what_cannot_be_saved_is_told(self):
        schema = houses()
        schema.add("Empty")
        schema.add("Values", [("f", Kind.FLOAT), ("u", Kind.UNSIGNED), ("b", Kind.BLOB), ("s", Kind.BOOL),
                              ("i", Kind.INT_LIST), ("m", Kind.CHILD_MAP)])
        model = house(2, schema=schema)
        other = house(2).root.rooms[0]

        def saved(class_name="Values", **fields):
            model.root = model.new(class_name, **fields)
            model.to_bytes()
        for says, action in (
                ("Room.name: a text is a str, not bytes", lambda: saved("Room", name=b"x")),
                ("Room.name: the text has a character that Windows-1252 lacks: 'Σ'", lambda: saved("Room", name="Σ")),
                ("Room.area: '12' is no number", lambda: saved("Room", area="12")),
                ("Kitchen.stoves: 2147483648 is no whole number of 32 bits", lambda: saved("Kitchen", stoves=1 << 31)),
                ("Values.u: -1 is no whole number of 32 bits without sign", lambda: saved(u=-1)),
                ("Values.f: 1e.300 is no number of 32 bits", lambda: saved(f=1e300)),
                ("Values.s: a flag is True or False, not 1", lambda: saved(s=1)),
                ("Values.i: 2.5 is no whole number", lambda: saved(i=[1, 2.5])),
                ("Values.m: 'a' is no object of a model", lambda: saved(m={"a": "b"})),
                ("<Values> takes 10485785 bytes", lambda: saved(b=bytes(10_485_760))),
                ('Room.place: leads to a "Place", not to a "Room"', lambda: saved("Room", place=model.new("Room"))),
                ("Room.place: <Room> is an object of another schema", lambda: saved("Room", place=other)),
                ("House.rooms: <Room> is an object of another schema", lambda: saved("House", rooms=[other])),
                ('"Thing" is abstract', lambda: model.new("Thing")),
                ('"Empty" has no field', lambda: model.new("Empty")),
                ('no class "Hose"', lambda: model.new("Hose")),
                ('"Room" has no field "aera"', lambda: model.new("Room", aera=1)),
                ("a version is below 10000", lambda: zo.Model(schema, version=10_000, release=1)),
                ('a class "Room" already', lambda: schema.add("Room")),
                ("share a name", lambda: schema.add("Twice", [("a", Kind.INT), ("a", Kind.INT)])),
                ("no root", lambda: zo.Model(schema, version=1, release=1).to_bytes())):
            with self.subTest(says), self.assertRaisesRegex((zo.ModelError, zo.UnknownNameError), says):
                action()

    def test_lists_of_one_class_stand_alike(self):
        model = house()
        model.root = model.new("House", rooms=[])
        inner = model.new("House")
        inner.rooms.integers = (1,)
        model.externals.append(inner)
        with self.assertRaisesRegex(zo.ModelError, "House.rooms: stands with another number of integers"):
            model.to_bytes()


class Saving(FolderTest):
    def test_replacing(self):
        path = self.folder / "plan.zo"
        house(name="old").save(path)
        old = path.read_bytes()
        path.chmod(0o640)
        house(name="new").save(path, backup=True)
        self.assertEqual(zo.open(path).root.name, "new")
        self.assertEqual((self.folder / "plan.zo-bak").read_bytes(), old)
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o640)
        self.assertEqual(len(list(self.folder.iterdir())), 2)

    def test_links_are_followed(self):
        path = self.folder / "plan.zo"
        house(name="old").save(path)
        (self.folder / "link.zo").symlink_to(path)
        house(name="new").save(self.folder / "link.zo")
        self.assertTrue((self.folder / "link.zo").is_symlink())
        self.assertEqual(zo.open(path).root.name, "new")

    def test_what_fails_leaves_all_as_it_was(self):
        path = self.folder / "plan.zo"
        house(name="old").save(path)
        wrong = house(name="new")
        wrong.root.rooms.append("kitchen")
        with self.assertRaises(zo.ModelError):
            wrong.save(path)
        with mock.patch("os.fsync", side_effect=OSError(28, "disk full")), self.assertRaises(OSError):
            house(name="new").save(path)
        (self.folder / "plan.zo-new").touch()
        with self.assertRaisesRegex(FileExistsError, "newest version"):
            house(name="new").save(path)
        self.assertEqual(zo.open(path).root.name, "old")
        self.assertEqual(sorted(os.listdir(self.folder)), ["plan.zo", "plan.zo-new"])


if __name__ == "__main__":
    unittest.main()
