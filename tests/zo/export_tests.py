"""zo export."""
import json
import os
import sqlite3

import harness
from harness import GOOD, TROUBLE, contents, data, made
from objectfile import text

FRAME, KINDS = data("frame9.zo"), data("every-kind.zo")


class Export(harness.ToolTest):
    def out(self, name):
        return os.path.join(self.folder, name)

    def query(self, name, query):
        database = sqlite3.connect(self.out(name))
        self.addCleanup(database.close)
        return database.execute(query).fetchall()

    def test_database(self):
        self.expect(GOOD, "export", FRAME, "--sqlite", self.out("one.db"))
        self.assertEqual(self.query("one.db", "SELECT count(*), count(DISTINCT uid) FROM objects"), [(212, 212)])
        self.assertEqual(self.query("one.db", "SELECT class, count(*) FROM Member GROUP BY class"), [("Column", 60), ("Girder", 50)])
        self.assertEqual(self.query("one.db", "PRAGMA integrity_check"), [("ok",)])
        self.expect(GOOD, "export", FRAME, KINDS, "--sqlite", self.out("two.db"))
        self.assertEqual(self.query("two.db", "SELECT file, count(*) FROM objects GROUP BY file ORDER BY 2"), [(KINDS, 8), (FRAME, 212)])
        self.assertEqual(sorted(os.listdir(self.folder)), ["one.db", "two.db"])

    def test_lines(self):
        self.expect(GOOD, "export", KINDS, "--jsonl", self.out("one.jsonl"))
        with open(self.out("one.jsonl"), "rb") as file:
            self.assertEqual(file.read(), self.expect(GOOD, "dump", "--jsonl", KINDS).raw)
        self.expect(GOOD, "export", KINDS, FRAME, "--jsonl", self.out("two.jsonl"))
        with open(self.out("two.jsonl"), encoding="utf-8") as file:
            lines = [json.loads(line) for line in file]
        self.assertEqual([(line["file"], line["uid"]) for line in (lines[0], lines[-1])], [(KINDS, 1), (FRAME, 212)])

    def test_names_that_clash(self):
        """Two parents with a field of one name, names of SQL and of the tables themselves."""
        file = made([("A", True, [], [("name", -4)]), ("B", True, [], [("Name", -4)]),
                     ("objects", False, [1, 2], [("uid", -1), ("select", -11)]), ("sqlite_x\"y", False, [3], [])],
                    [(3, text("a") + text("b") + b"\7\0\0\0" + b"\1\0\0\0\5\0\0\0"), (4, text("c") + text("d") + b"\1\0\0\0" + b"\0\0\0\0")])
        self.expect(GOOD, "export", self.file("odd.zo", file), "--sqlite", self.out("odd.db"))
        self.assertEqual(self.query("odd.db", "SELECT * FROM objects_2"), [(1, "a", "b", 7)])
        self.assertEqual(self.query("odd.db", 'SELECT uid, class, name, "B.Name", "objects.uid" FROM objects_all'),
                         [(1, "objects", "a", "b", 7), (2, 'sqlite_x"y', "c", "d", 1)])
        self.assertEqual(self.query("odd.db", "SELECT uid, Name FROM B"), [(1, "b"), (2, "d")])
        self.assertEqual(self.query("odd.db", "SELECT * FROM objects_select"), [(1, 1, 5)])

    def test_nothing_is_replaced_unasked(self):
        there = self.file("there.db", b"mine")
        for words, says in ((["--sqlite", there], "--force replaces it"), (["--jsonl", there], "--force replaces it"), ([], "Exactly 1 option"),
                            (["--sqlite", self.out("x"), "--jsonl", self.out("y")], "Exactly 1 option"),
                            (["--jsonl", self.out("no/folder")], "cannot be")):
            with self.subTest(words):
                self.expect(TROUBLE, "export", FRAME, *words, says=says)
        own = self.file("own.zo", contents("every-kind.zo"))
        self.expect(TROUBLE, "export", own, "--force", "--sqlite", own, says="would replace a file that is read")
        self.expect(TROUBLE, "export", self.file("bad.zo", b"bad"), "--sqlite", self.out("bad.db"), says="bad.zo: ")
        with open(there, "rb") as file:
            self.assertEqual(file.read(), b"mine")
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.zo", "own.zo", "there.db"])
        self.expect(GOOD, "export", FRAME, "--force", "--sqlite", there)
        self.assertEqual(self.query("there.db", "SELECT count(*) FROM Girder"), [(50,)])


if __name__ == "__main__":
    harness.main()
