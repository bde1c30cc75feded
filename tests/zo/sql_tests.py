"""zo sql."""
import json
import os

import harness
from harness import GOOD, TROUBLE, contents, data, patched

FRAME, KINDS = data("frame9.zo"), data("every-kind.zo")


class Sql(harness.ToolTest):
    def ask(self, query, *files, code=GOOD, **how):
        result = self.expect(code, "sql", "--jsonl", *(files or [FRAME]), query, **how)
        return [list(json.loads(line).values()) for line in result.out.splitlines()]

    def test_tables(self):
        result = self.expect(GOOD, "sql", FRAME)
        self.expect_lines(result, "Girder uid, name, section, start, \"end\" class Girder",
                          "Member uid, class, name, section, start, \"end\" Member and what derives from it",
                          "Girder_loads uid, position, item list loads of Girder")
        self.assertIn("file, uid, name, edition", self.expect(GOOD, "sql", FRAME, KINDS).out)

    def test_questions(self):
        for query, rows in (
                ("SELECT count(*) FROM Girder", [[50]]),
                ("SELECT class, count(*) FROM Member GROUP BY class", [["Column", 60], ["Girder", 50]]),
                ("SELECT name, density FROM Material", [["Aço estrutural", 7850.0]]),
                ("SELECT s.name, count(*) FROM Member m JOIN Section s ON s.uid = m.section GROUP BY s.uid ORDER BY 2 DESC, 1 LIMIT 2",
                 [["W36x135", 20], ["W14x370", 16]]),
                ("SELECT uid, count(*) FROM Girder_loads GROUP BY uid HAVING count(*) <> 3 LIMIT 1", []),
                ("SELECT class, count(*) FROM objects GROUP BY class HAVING count(*) > 55", [["Column", 60], ["Node", 66]]),
                ("SELECT class FROM objects WHERE uid NOT IN (SELECT target FROM links WHERE owned)", [["Building"], ["Catalogue"]]),
                ("SELECT m.name FROM Storey_members s JOIN Member m ON m.uid = s.item WHERE s.position = 1 LIMIT 1", [["AB"]])):
            with self.subTest(query):
                self.assertEqual(self.ask(query), rows)

    def test_every_kind(self):
        names = [name for name in "anInt aFloat aDouble aString aBlob aBool anUnsigned child member reference external".split()]
        self.assertEqual(self.ask(f"SELECT {', '.join(names)} FROM EveryKind", KINDS),
                         [[-2, 1.5, -0.25, "text", "AQI=", 1, 4000000000, 4, 5, 7, 8]])
        for name, items in {"ints": [7, -8], "floats": [2.5], "doubles": [3.25], "strings": ["a", ""], "children": [6, 7],
                            "references": [4, 5], "externals": [8]}.items():
            self.assertEqual(self.ask(f"SELECT item FROM EveryKind_{name} ORDER BY position", KINDS), [[item] for item in items])
        self.assertEqual(self.ask("SELECT * FROM EveryKind_map", KINDS), [[1, 1, 2, 3]])
        self.assertEqual(self.ask("SELECT field, position, target, owned FROM links WHERE target IN (5, 6, 8)", KINDS),
                         [["member", None, 5, 1], ["children", 1, 6, 1], ["external", None, 8, 0], ["references", 2, 5, 0],
                          ["externals", 1, 8, 0]])

    def test_several_files(self):
        os.mkdir(os.path.join(self.folder, "models"))
        for name in ("models/a.zo", "models/b.zo", "models/c.bin"):
            self.file(name, contents("frame9.zo"))
        self.file("models/notes.txt", b"no object file")
        folder = os.path.join(self.folder, "models")
        names = [os.path.join(folder, name) for name in ("a.zo", "b.zo", "c.bin")]
        rows = self.ask("SELECT file, count(*) FROM Girder GROUP BY file", folder)
        self.assertEqual([[os.path.basename(name), count] for name, count in rows], [["a.zo", 50], ["b.zo", 50], ["c.bin", 50]])
        self.assertEqual(self.ask("SELECT count(*) FROM Member m JOIN Section s USING (file) WHERE s.uid = m.section", folder), [[330]])
        # Versions of one application: the columns of both.
        self.assertEqual(self.ask("SELECT count(*), count(area), count(DISTINCT file) FROM Section", FRAME, data("frame9-version4.zo")),
                         [[22, 22, 2]])
        self.assertEqual(self.ask("SELECT count(*) FROM objects", "-", names[0], given=contents("every-kind.zo")), [[220]])

    def test_forms(self):
        query = "SELECT name, NULL AS none, 1e999 AS much, depth FROM Section WHERE depth < 41.6 UNION SELECT 'a \"b\"', 1, 2, 3"
        for form, expected in (("--csv", 'name,none,much,depth\nW14x233,,Infinity,40.64\n"a ""b""",1,2,3\n'),
                               ("--json", '[\n{"name":"W14x233","none":null,"much":"Infinity","depth":40.64},\n'
                                          '{"name":"a \\"b\\"","none":1,"much":2,"depth":3}\n]\n')):
            self.assertEqual(self.expect(GOOD, "sql", form, FRAME, query).out, expected)
        self.assertEqual(self.expect(GOOD, "sql", FRAME, query).out,
                         "name     none      much  depth\nW14x233        Infinity  40.64\na \"b\"       1         2      3\n")

    def test_damage_is_told(self):
        whole = contents("frame9.zo")
        for name, bytes_, query, says in (
                ("torn", whole[:9000], "SELECT count(*) FROM Girder", "1 record damaged"),
                ("uid twice", whole + whole[whole.rindex(b"\xca\xab\xca\xab"):], "SELECT count(*) FROM Catalogue", "a uid that an object before has")):
            with self.subTest(name):
                self.ask(query, self.file("damaged.zo", bytes_), code=TROUBLE, says=says)

    def test_slips(self):
        for query, says in (("SELECT nope FROM Girder", "no such column: nope"), ("SELECT * FROM Nope", "no such table"),
                            ("SELECT 1; SELECT 2", "one query at a time"), ("WITH x AS (SELECT 1) DELETE FROM Girder", "only reads"),
                            ("SELECT", "incomplete"), ("ATTACH 'x' AS y", "only reads"), ("PRAGMA table_list", "only reads")):
            with self.subTest(query):
                self.expect(TROUBLE, "sql", FRAME, query, says=says)
        self.expect(TROUBLE, "sql", "SELECT 1", says="name a file")


if __name__ == "__main__":
    harness.main()
