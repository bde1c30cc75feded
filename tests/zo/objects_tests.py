"""zo ls, schema and dump."""
import json

import harness
from harness import GOOD, TROUBLE, contents, data, patched, shortened

FRAME, KINDS = data("frame9.zo"), data("every-kind.zo")
LEAF = {"uid": 2, "class": "Leaf"}


class Ls(harness.ToolTest):
    def test_a_line_for_each_object(self):
        lines = self.expect(GOOD, "ls", FRAME).out.splitlines()
        self.assertEqual(len(lines), 212)
        self.assertIn('#25 Material name="Aço estrutural" density=7850', lines)
        self.assertTrue(lines[0].startswith('#1 Building name="Pórtico de aço de nove andares" legend=[11] '
                                            "thumbnail=(3661 bytes) lines=[6] site=#24 "), lines[0])

    def test_conditions(self):
        for words, count in ((["--class", "Girder"], 50), (["--class", "Member"], 110), (["--class", "Entity"], 212),
                             (["--where", "name=AB"], 1), (["--where", "name~Aço"], 1), (["--where", "seismic=true"], 1),
                             (["--where", "density>=7850"], 1), (["--where", "density>7850"], 0),
                             (["--where", "y<0"], 6), (["--where", "y<=0", "--where", "support!=true"], 6),
                             (["--where", "material=25"], 11), (["--where", "catalogue=null"], 0),
                             (["--where", "members=93"], 1), (["--where", "grey<19"], 2),
                             (["--class", "Column", "--where", "end=40"], 1)):
            with self.subTest(words):
                self.assertEqual(len(self.expect(GOOD, "ls", *words, FRAME).out.splitlines()), count)

    def test_slips(self):
        for words, says in ((["--class", "Nope"], 'no class "Nope"'), (["--where", "nope=1"], 'field "nope"'),
                            (["--where", "name"], "no condition"), (["--where", "density=dense"], "kind double"),
                            (["--class", "Column", "--where", "grey=1"], 'field "grey"')):
            with self.subTest(words):
                self.assertEqual(self.expect(TROUBLE, "ls", *words, FRAME, says=says).out, "")


class Schema(harness.ToolTest):
    def test_tree(self):
        result = self.expect(GOOD, "schema", FRAME)
        self.assertTrue(result.out.startswith("Entity (abstract)\n│   name  string\n├── Catalogue\n│       edition  unsigned\n"))
        self.assertIn("├── Member (abstract)\n│   │   section  reference to Section\n", result.out)
        self.expect_lines(result, "│ └── Girder", "│ loads list of double", "materials owned list of Material")

    def test_json(self):
        schema = json.loads(self.expect(GOOD, "schema", "--json", KINDS).out)
        self.assertEqual((schema["layout"], schema["version"]), ("zo schema", 1))
        leaf, every = schema["classes"]
        self.assertEqual(leaf, {"id": 1, "name": "Leaf", "abstract": False, "parents": [],
                                "fields": [{"name": "number", "kind": "int", "code": -1}]})
        self.assertEqual(sorted(f["code"] for f in every["fields"]), list(range(-19, 0)))
        self.assertIn({"name": "map", "kind": "owned map", "code": -19, "class": "Leaf"}, every["fields"])


class Dump(harness.ToolTest):
    def test_every_kind(self):
        for file in (KINDS, data("scrambled.zo")):
            document = json.loads(self.expect(GOOD, "dump", "--json", file).out)
            self.assertEqual((document["layout"], document["version"], len(document["objects"])), ("zo objects", 1, 8))
            self.assertEqual(document["objects"][0], {"uid": 1, "class": "EveryKind", "fields": {
                "map": {"keys": [LEAF], "values": [dict(LEAF, uid=3)]}, "anInt": -2, "aFloat": 1.5, "aDouble": -0.25,
                "aString": "text", "aBlob": "AQI=", "aBool": True, "ints": [7, -8], "floats": [2.5], "doubles": [3.25],
                "strings": ["a", ""], "anUnsigned": 4000000000, "child": dict(LEAF, uid=4), "member": dict(LEAF, uid=5),
                "children": [dict(LEAF, uid=6), dict(LEAF, uid=7)], "reference": dict(LEAF, uid=7),
                "external": dict(LEAF, uid=8), "references": [dict(LEAF, uid=4), dict(LEAF, uid=5)],
                "externals": [dict(LEAF, uid=8)]}})
            lines = self.expect(GOOD, "dump", "--jsonl", file).out.splitlines()
            self.assertEqual([json.loads(line) for line in lines], document["objects"])

    def test_values_out_of_the_ordinary(self):
        whole = contents("every-kind.zo")
        for before, after, field, value in (("<d", (-0.25, float("nan")), "aDouble", "NaN"),
                                            ("<d", (-0.25, float("-inf")), "aDouble", "-Infinity"),
                                            ("<f", (1.5, 0.1), "aFloat", 0.1), ("4s", (b"text", b"\x80\x00\x1b\""), "aString", "€\0\x1b\"")):
            with self.subTest(value):
                file = self.file("odd.zo", patched(whole, before, *after))
                self.assertEqual(json.loads(self.expect(GOOD, "dump", "--uid", 1, "--jsonl", file).out)["fields"][field], value)
        self.assertIn('"€\\x00\\x1B\\""', self.expect(GOOD, "dump", "--uid", 1, file).out)

    def test_text(self):
        result = self.expect(GOOD, "dump", FRAME)
        self.assertIn('\n\n#25 Material\n  name     "Aço estrutural"\n  density  7850\n\n', result.out)
        self.expect_lines(self.expect(GOOD, "dump", KINDS), "map [#2 Leaf] -> [#3 Leaf]", "aBlob 2 bytes: AQI=",
                          'strings ["a", ""]', "external #8 Leaf")

    def test_following_pointers(self):
        def uids(*words):
            return [json.loads(line)["uid"] for line in self.expect(GOOD, "dump", "--jsonl", *words, FRAME).out.splitlines()]

        self.assertEqual(uids("--uid", 2), [2])
        self.assertEqual(uids("--uid", 2, "--follow", 1), [2, 25, 212])
        self.assertEqual(uids("--uid", 93, "--follow", 2), [93, 2, 26, 32, 25, 212])
        self.assertEqual(len(uids("--class", "Member")), 110)

    def test_what_is_missing_is_told(self):
        whole = contents("every-kind.zo")
        lost = bytearray(whole)
        lost[-1] ^= 1  # in the record of object 8
        for name, bytes_, words, says, holds in (
                ("torn", whole[:-1], [], "1 record damaged", '"external":{"uid":8,"class":null}'),
                ("lost", bytes(lost), [], "1 record damaged", '"external":{"uid":8,"class":"Leaf"}'),
                ("stray", whole + b"abcd", [], "4 bytes between records", '"number":99'),
                ("short", shortened(whole, 8, 1), ["--uid", 8], "1 object not as the class says", '"uid":8'),
                ("lost, following", bytes(lost), ["--uid", 1, "--follow", 1], "leads to #8, which is damaged", '"number":10')):
            with self.subTest(name):
                result = self.expect(TROUBLE, "dump", "--jsonl", *words, self.file("damaged.zo", bytes_), says=says)
                self.assertIn(holds, result.out)

    def test_slips(self):
        for words, says in ((["--uid", 999], "no object #999"), (["--follow", 1], "--uid"), (["--uid", "x"], "--uid"),
                            (["--json", "--jsonl"], "excludes"), (["--uid", 1, "--class", "Leaf"], "excludes")):
            with self.subTest(words):
                self.expect(TROUBLE, "dump", *words, KINDS, says=says)


if __name__ == "__main__":
    harness.main()
