"""Runs the file tool as a user does, natively or under an emulator, and compares what it says.

Each script of this folder ends with `harness.main()`; its arguments are the command that runs the tool.
"""
import os
import struct
import subprocess
import sys
import tempfile
import unittest

import objectfile

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")
GOOD, NEGATIVE, TROUBLE = 0, 1, 2
_command = []


def data(name):
    """The path of a file of tests/data, relative to where the tool runs."""
    return os.path.relpath(os.path.join(DATA, name))


def contents(name):
    with open(os.path.join(DATA, name), "rb") as file:
        return file.read()


def patched(whole, form, before, after):
    """The file with one value of a record exchanged for another of the same size, all checksums right."""
    before, after = (struct.pack(form, *(value if isinstance(value, tuple) else (value,))) for value in (before, after))
    for at, size, class_id, uid in objectfile.frames(whole):
        payload = whole[at + 24:at + size]
        if uid != 0 and before in payload:
            return whole[:at] + objectfile.record(class_id, uid, payload.replace(before, after, 1)) + whole[at + size:]
    raise ValueError(f"no record has {before}")


def shortened(whole, wanted, count):
    """The file with so many bytes less at the end of an object's record, all checksums right."""
    for at, size, class_id, uid in objectfile.frames(whole):
        if uid == wanted:
            return whole[:at] + objectfile.record(class_id, uid, whole[at + 24:at + size - count]) + whole[at + size:]
    raise ValueError(f"there is no object {wanted}")


def made(classes, objects):
    """A file. Classes, whose ids count from 1: (name, abstract, ids of parents, fields as `objectfile.Schema` has them);
    objects, whose uids count from 1: (id of the class, the bytes of its values)."""
    schema = objectfile.Schema()
    for name, abstract, parents, fields in classes:
        schema.add(name, parents, fields, abstract)
    return objectfile.whole(schema, [(class_id, uid, values) for uid, (class_id, values) in enumerate(objects, 1)])


class Result:
    def __init__(self, done):
        self.code = done.returncode
        self.raw = done.stdout
        self.out = done.stdout.decode("utf-8")
        self.err = done.stderr.decode("utf-8")

    def __repr__(self):
        return f"code {self.code}\n--- out\n{self.out}\n--- err\n{self.err}"


def run(*words, given=b"", environment=None):
    variables = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "COLUMNS")}
    variables.update(environment or {})
    return Result(subprocess.run(_command + [str(w) for w in words], input=given, capture_output=True,
                                 env=variables, timeout=120))


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="zo-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, contents):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(contents)
        return path

    def expect(self, code, *words, says=(), silent=True, **how):
        """Runs the tool; `says` are texts of its messages. With none, a good end is a silent one."""
        result = run(*words, **how)
        self.assertEqual(result.code, code, result)
        for text in [says] if isinstance(says, str) else says:
            self.assertIn(text, result.err)
        if silent and not says:
            self.assertEqual(result.err, "")
        return result

    def expect_lines(self, result, *lines):
        """Each of these is a line of the data; runs of blanks count as one."""
        printed = [" ".join(line.split()) for line in result.out.splitlines()]
        for line in lines:
            self.assertIn(line, printed)


def main():
    _command.extend(sys.argv[1:])
    unittest.main(argv=sys.argv[:1])
