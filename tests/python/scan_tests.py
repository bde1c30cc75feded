import unittest
from pathlib import Path
from unittest import mock

from support import FolderTest, Kind, house, zo


def write(folder, number):
    paths = []
    for i in range(number):
        path = folder / f"{i % 3}" / f"house{i:03}.zo"
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(house(3, name=f"H{i}").to_bytes())
        paths.append(str(path))
    return sorted(paths)


class Scan(FolderTest):
    def test_files_in_their_order(self):
        paths = write(self.folder, 30)
        columns = ("uid", "class", "name", "area", "place.x", "place.y", "beside", "place", "stoves")
        expected = [{"file": path, **{name: row.get(name) for name in columns}}
                    for path in paths for row in zo.open(path).rows("Room")]
        for processes in (1, 3):
            for where in (self.folder, paths):
                with self.subTest(processes, where=type(where)):
                    self.assertEqual(list(zo.scan(where, "Room", processes=processes)), expected)
        self.assertEqual(len({row["name"] for row in expected}), 61)
        self.assertEqual(list(zo.scan(paths[:1], "Kitchen", ["stoves", "name"], processes=1)),
                         [{"file": paths[0], "uid": 6, "class": "Kitchen", "stoves": 4, "name": "Küche"}])

    def test_versions_differ(self):
        write(self.folder, 2)
        schema = zo.Schema()
        schema.add("Room", [("name", Kind.STRING), ("floor", Kind.INT)])
        newer = zo.Model(schema, version=2, release=2026)
        newer.root = newer.new("Room", name="Neu", floor=3)
        newer.save(self.folder / "newer.zo")
        self.assertEqual([row["floor"] for row in zo.scan(self.folder, "Room", ["floor"], processes=1)], [None] * 6 + [3])
        self.assertEqual(len(list(zo.scan(self.folder, "House", processes=1))), 2)

    def test_slips_are_told(self):
        write(self.folder, 3)
        for says, error, action in (
                ('none of the 3 files has a class "Rom"', zo.UnknownNameError, lambda: zo.scan(self.folder, "Rom")),
                ('has a field "aera" in any', zo.UnknownNameError, lambda: zo.scan(self.folder, "Room", ["area", "aera"])),
                ("no file .\\*.txt", FileNotFoundError, lambda: zo.scan(self.folder, "Room", pattern="*.txt")),
                ("is no folder", NotADirectoryError, lambda: zo.scan(self.folder / "none", "Room")),
                ("none.zo", FileNotFoundError, lambda: zo.scan([self.folder / "none.zo"], "Room")),
                ("a list of names", TypeError, lambda: zo.scan(self.folder, "Room", "area")),
                ("no way for this field", ValueError, lambda: zo.scan(self.folder, "Room", layouts={"House.rooms": (5,)}))):
            with self.subTest(says), self.assertRaisesRegex(error, says):
                list(action())

    def test_a_damaged_file(self):
        paths = write(self.folder, 12)
        data = bytearray(Path(paths[5]).read_bytes())
        data[-1] ^= 1
        Path(paths[5]).write_bytes(data)
        for processes in (1, 2):
            with self.subTest(processes):
                with self.assertRaises(zo.DamagedError) as caught:
                    list(zo.scan(self.folder, "Room", processes=processes))
                self.assertEqual((caught.exception.path, caught.exception.offset is None), (paths[5], False))
                told = mock.Mock()
                rows = list(zo.scan(self.folder, "Room", processes=processes, on_error=told))
                self.assertEqual((len(rows), told.call_count, told.call_args.args[0]), (33, 1, paths[5]))

    def test_stopping_early(self):
        write(self.folder, 40)
        rows = zo.scan(self.folder, "Room", processes=2)
        next(rows)
        rows.close()
        with self.assertRaises(StopIteration):
            next(rows)


if __name__ == "__main__":
    unittest.main()
