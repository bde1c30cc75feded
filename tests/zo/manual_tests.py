"""The manual page and bash's completion tell what the tool can be asked: neither less nor more than --help."""
import os
import re
import shutil
import subprocess
import unittest

import harness
from harness import GOOD, data

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "zo")
COMMON = {"-h", "--help", "--version", "--color", "--language"}


def source(name):
    with open(os.path.join(TOOL, name), encoding="utf-8") as file:
        return file.read()


def options(text):
    return set(re.findall(r"(?<![\w-])--?[a-z][a-z-]*", text)) - COMMON


class InStep(harness.ToolTest):
    def asked(self):
        """Of each command, the options that --help names."""
        commands = re.findall(r"^  (\w+)  ", self.expect(GOOD, "--help").out.split("Subcommands:")[1], re.M)
        self.assertIn("sql", commands)
        for command in commands:
            words = self.expect(GOOD, command, "--help").out.split("\nOptions:", 1)[-1]
            yield command, {word for line in re.findall(r"^ +(-[^ ]*)", words, re.M) for word in line.split(",")} - COMMON

    def test_manual(self):
        page = source("zo.1").replace("\\-", "-")
        sections = dict(re.findall(r"^\.SS (\w+)[^\n]*\n(.*?)(?=^\.S[SH] )", page, re.M | re.S))
        told = {command: {word for line in re.findall(r"^\.BR? ?I? (-.*)|^\.BI (-.*)", text, re.M) for word in options(" ".join(line))}
                for command, text in sections.items()}
        self.assertEqual(told, dict(self.asked()))

    def test_completion(self):
        completed = re.findall(r'^        \[(\w+)\]="(.*)"$', source("zo.bash"), re.M)
        self.assertEqual({command: set(words.split()) for command, words in completed}, dict(self.asked()))

    @unittest.skipUnless(shutil.which("bash") and os.name == "posix", "there is no bash")
    def test_completing(self):
        for words, expected in ((["zo", "sc"], ["schema"]), (["zo", "dump", "--js"], ["--json", "--jsonl"]), (["zo", "--color", "al"], ["always"]), (["zo", "--language", "e"], ["en-US", "es-MX"]),
                                (["zo", "info", "--"], ["--color", "--help", "--language"])):
            with self.subTest(words):
                script = (f'. "{os.path.join(TOOL, "zo.bash")}"; COMP_WORDS=({" ".join(words)}); COMP_CWORD={len(words) - 1}; _zo; '
                          'printf "%s\\n" "${COMPREPLY[@]}"')
                done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
                self.assertEqual(sorted(done.stdout.split()), expected)


if __name__ == "__main__":
    harness.main()
