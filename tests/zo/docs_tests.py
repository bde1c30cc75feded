"""The commands in docs/zo.md answer as the page says."""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import unittest

import harness

ROOT = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
sys.path.append(os.path.join(ROOT, "tests", "docs"))
import blocks


def examples():
    """(words, answer) of each command; "..." in an answer stands for any lines."""
    for block in blocks.blocks(pathlib.Path(ROOT, "docs", "zo.md")):
        if "not run" in block.notes:
            continue
        for example in re.split(r"^\$ zo ", block.code, flags=re.M)[1:]:
            lines = example.splitlines()
            count = 1
            while "\n".join(lines[:count]).count("'") % 2:
                count += 1
            yield shlex.split("\n".join(lines[:count])), lines[count:]


class Examples(harness.ToolTest):
    def test_examples(self):
        files = os.path.relpath(os.path.join(ROOT, "tests", "data"), self.folder).replace(os.sep, "/")
        told = 0
        for words, answer in examples():
            with self.subTest(" ".join(words)[:100]):
                done = subprocess.run(harness._command + [word.replace("tests/data", files) for word in words], cwd=self.folder,
                                      capture_output=True, timeout=120)
                said = (done.stdout + done.stderr).decode("utf-8").replace("\r\n", "\n").replace(files, "tests/data")
                wanted = "".join(".*" if line == "..." else re.escape(line) + "\n" for line in answer)
                self.assertTrue(re.fullmatch(wanted, said, re.S), f"\n{said}\n--- instead of\n" + "\n".join(answer))
                told += 1
        self.assertGreater(told, 12)

    def test_damaged_files_are_those_of_the_program(self):
        script = os.path.join(ROOT, "tests", "data", "damage.py")
        subprocess.run([sys.executable, "-B", script, self.folder], check=True)
        for name in os.listdir(os.path.join(ROOT, "tests", "data", "damaged")):
            with open(os.path.join(self.folder, name), "rb") as made:
                self.assertEqual(made.read(), harness.contents(f"damaged/{name}"), name)


if __name__ == "__main__":
    harness.main()
