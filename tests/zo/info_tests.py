import harness
from harness import GOOD, TROUBLE, contents, data


class Info(harness.ToolTest):
    def test_files(self):
        for file, lines in {
            "frame9.zo": ("size 17473 bytes", "version 3, release 2026", "records 213, 213 by the header", "digest none", "scrambled no",
                          "schema 12 classes, 1192 bytes",
                          "objects 212, 11141 bytes", "Girder 50 2350"),
            "scrambled.zo": ("size 884 bytes", "objects 8, 172 bytes", "scrambled 9 records", "EveryKind 1 144"),
        }.items():
            with self.subTest(file):
                self.expect_lines(self.expect(GOOD, "info", data(file)), *lines)

    def test_standard_input(self):
        result = self.expect(GOOD, "info", "-", given=contents("every-kind.zo"))
        self.assertTrue(result.out.startswith("standard input\n"), result)

    def test_a_bad_file_does_not_stop_the_others(self):
        result = self.expect(TROUBLE, "info", "none.zo", data("README.md"), self.folder, data("frame9.zo"),
                             says=("none.zo: there is no such file", "README.md: it is no object file",
                                   "it is a folder"))
        self.expect_lines(result, "Girder 50 2350")


class CommandLine(harness.ToolTest):
    def test_version_and_help(self):
        for words, says in ((["--version"], "zo 3."), (["--help"], "info"), (["info", "--help"], "Example")):
            with self.subTest(words):
                self.assertIn(says, self.expect(GOOD, *words).out)

    def test_slips(self):
        for words, says in (([], "subcommand is required"), (["inof"], "zo --help"), (["info"], "FILE"),
                            (["info", "--nope", "x"], '"zo info --help"'), (["--color", "red", "info", "x"], "always")):
            with self.subTest(words):
                self.assertEqual(self.expect(TROUBLE, *words, says=says).out, "")

    def test_names_beyond_every_code_page(self):
        path = self.file("pórtico, Σχέδιο 設計.zo", contents("every-kind.zo"))
        result = self.expect(GOOD, "info", path)
        self.assertIn("pórtico, Σχέδιο 設計.zo\n", result.out)
        self.expect_lines(result, "Leaf 7 28")

    def test_colours(self):
        for words, environment, coloured in ((["--color", "always"], {"NO_COLOR": "1"}, True), ([], {}, False),
                                             (["--color", "never"], {}, False)):
            with self.subTest(words):
                result = self.expect(GOOD, *words, "info", data("frame9.zo"), environment=environment)
                self.assertEqual("\033[" in result.out, coloured)


if __name__ == "__main__":
    harness.main()
