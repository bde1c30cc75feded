#!/usr/bin/env python3
"""messages.py ZO_MESSAGES: the templates of the translations hold the texts of the sources, and ZO_MESSAGES, which
compiles them, refuses what is not in order."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = sys.argv[1]

HEADER = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n\n'
TEMPLATE = HEADER + 'msgid " %s: %u de {1}\\n"\nmsgstr ""\n\nmsgid "Área"\nmsgstr ""\n'
FIRST = 'msgid " %s: %u de {1}\\n"\nmsgstr " {1}: %s of %u\\n"\n\n'
SECOND = 'msgid "Área"\nmsgstr "Area"\n'

REFUSED = {  # what is told of the translation
    "is not translated: Área": FIRST + 'msgid "Área"\nmsgstr ""\n',
    "lacks: Área": FIRST,
    "no such text: Volume": FIRST + SECOND + '\nmsgid "Volume"\nmsgstr "Volume"\n',
    "is there twice: Área": FIRST + SECOND + "\n" + SECOND,
    "is marked as fuzzy: Área": FIRST + "#, fuzzy\n" + SECOND,
    "take out what is obsolete": FIRST + SECOND + '\n#~ msgid "x"\n#~ msgstr "y"\n',
    "Windows-1252 lacks \"⁴\" of: cm⁴": FIRST + 'msgid "Área"\nmsgstr "cm⁴"\n',
    "has other placeholders": FIRST.replace("%s of %u", "%u of %s") + SECOND,
    "has other placeholders than its source:  {2}": FIRST.replace('" {1}', '" {2}') + SECOND,
    "begins or ends with other blanks": FIRST.replace('" {1}', '"{1}') + SECOND,
    "begins or ends with other blanks than its source: Area ": FIRST + SECOND.replace('Area"', 'Area "'),
    "there is an unknown escape": FIRST + SECOND.replace("Area", "\\Area"),
    "is not understood": FIRST + SECOND + '\nmsgctxt "menu"\n',
    "a text in quotes is expected": FIRST + SECOND + "\nmsgid Volume\n",
}


class Messages(unittest.TestCase):
    def compile(self, translation, template=TEMPLATE):
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            (folder / "t.pot").write_text(template, encoding="utf-8")
            (folder / "en.po").write_text(translation, encoding="utf-8")
            done = subprocess.run([PROGRAM, folder / "t.h", "Texts::ALL", folder / "t.pot", "-", folder / "en.po", "-"],
                                  capture_output=True, encoding="utf-8")
            self.assertEqual((folder / "t.h").exists(), done.returncode == 0)
            return done.returncode, done.stderr if done.returncode else (folder / "t.h").read_text(encoding="ascii")

    def test_templates_hold_the_texts_of_the_sources(self):
        templates = [path for folder in ("po", "examples", "tools") for path in (ROOT / folder).rglob("*.pot")]
        self.assertGreater(len(templates), 0)
        for path in templates:
            made = subprocess.run([ROOT / "cmake/messages/extract", path.relative_to(ROOT)], capture_output=True, check=True)
            self.assertEqual(made.stdout.decode(), path.read_text(encoding="utf-8"), "./dev messages writes it anew")

    def test_compiles(self):
        code, table = self.compile(HEADER + "# a remark\n" + FIRST.replace('"\nmsgstr', '"\n""\nmsgstr') + SECOND)
        self.assertEqual(code, 0, table)
        self.assertIn('{" %s: %u de {1}\\012", {" %s: %u de {1}\\012", " {1}: %s of %u\\012", " %s: %u de {1}\\012"}},\n'
                      '    {"\\301rea", {"\\301rea", "Area", "\\301rea"}},', table)

    def test_refuses(self):
        for told, translation in REFUSED.items():
            with self.subTest(told):
                code, errors = self.compile(HEADER + translation)
                self.assertEqual(code, 1)
                self.assertIn(told, errors)
        self.assertIn("charset must be UTF-8", self.compile(FIRST + SECOND)[1])
        self.assertIn("holds no text", self.compile(HEADER, HEADER)[1])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
