"""Every block of code in README.md, CONTRIBUTING.md and docs compiles and runs, and prints what the page shows.

The environment names the installed tree (ZO_PREFIX), the compiler (CXX), the example application (ZO_FRAME) and a folder
for what is made (ZO_WORK).
"""
import concurrent.futures
import functools
import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import textwrap
import unittest

from blocks import ROOT, blocks, pages, prints

HERE = pathlib.Path(__file__).resolve().parent
PREFIX = pathlib.Path(os.environ["ZO_PREFIX"]).resolve()
FRAME = pathlib.Path(os.environ["ZO_FRAME"]).resolve()
WORK = pathlib.Path(os.environ["ZO_WORK"]).resolve()
LIBRARY = next(path.parent for path in PREFIX.glob("lib*/**/libZoPrimitives.so"))
COMPILE = [os.environ.get("CXX", "c++"), "-std=c++17", "-O0", "-Wall", "-Wextra", "-Werror", "-Wno-unused",
           "-isystem", PREFIX / "include"]
LINK = ["-L", LIBRARY, "-lZoPrimitives", f"-Wl,-rpath,{LIBRARY}", "-pthread"]
OTHERS = {"boost/": ["-lboost_serialization"]}  # libraries that programs include
# Blocks that other tests run.
ELSEWHERE = {("docs/zo.md", ""): "zo/docs_tests.py", ("docs/python.md", "pycon"): "python/package_tests.py"}


NOW = {}  # where "cd" has led in the folder of a page


def here(folder):
    return NOW.get(folder, folder)


def run(command, folder, given=None):
    return subprocess.run([str(word) for word in command], cwd=folder, env=environment(), timeout=300, input=given,
                          stdin=subprocess.DEVNULL if given is None else None, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT)


@functools.cache
def environment():
    """Commands are those of the installed tree; `./dev demo` of an example builds nothing."""
    tools = WORK / "tools"
    tools.mkdir(parents=True, exist_ok=True)
    for name, target in (("frame", FRAME), ("python3", sys.executable)):
        (tools / name).unlink(missing_ok=True)
        (tools / name).symlink_to(target)
    return os.environ | {
        "PATH": f"{tools}:{PREFIX / 'bin'}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "NO_COLOR": "1", "COLUMNS": "100",
        "PYTHONPATH": str(ROOT / "bindings/python"), "PKG_CONFIG_PATH": str(LIBRARY / "pkgconfig"),
        "LD_LIBRARY_PATH": str(LIBRARY), "PYTHONDONTWRITEBYTECODE": "1"}


def decoded(printed):
    """Texts of the library are Windows-1252, those of the documents UTF-8."""
    try:
        return printed.decode("utf-8")
    except UnicodeDecodeError:
        return printed.decode("cp1252")


def agrees(shown, printed):
    """A line "..." stands for any lines; blanks at ends and times in ms do not count."""
    shown, printed = (re.sub(r"[\d.]+ ms\b", "0 ms", text.rstrip("\n")) + "\n" for text in (shown, printed))
    wanted = "".join(r"(?:.*\n)*" if line.strip() == "..." else re.escape(line.rstrip()) + r" *\n"
                     for line in shown[:-1].split("\n"))
    return re.fullmatch(wanted, printed) is not None


def says(comment, printed):
    """Several lines are shown as "a, b and c" or "a; b"; "..." stands for anything."""
    lines = "\n".join(line.strip() for line in printed.strip().split("\n"))
    wanted = re.sub(r"(,\\ |\\ and\\ |;\\ )", r"(?:\1|\n)", re.escape(comment)).replace(r"\ \.\.\.", r"\s.*")
    wanted = wanted.replace(r"\.\.\.", ".*")
    return re.fullmatch(wanted, lines, re.S) is not None


def errors(said):
    return "\n".join([line for line in said.splitlines() if "error" in line][:12])


def differ(place, printed, shown):
    return f"{place}: this is printed:\n{printed}\n--- instead of\n{shown}"


class Program:
    """A block with `main`, alone in its file."""

    def __init__(self, block):
        self.block = block

    def source(self):
        return f'#line {self.block.line} "{self.block.page}"\n{self.block.code}'

    def build(self, folder):
        source = folder / f"example{self.block.line}.cpp"
        source.write_text(self.source(), encoding="utf-8")
        self.program = source.with_suffix("")
        libraries = [word for name, words in OTHERS.items() if name in self.block.code for word in words]
        done = run([*COMPILE, *self.options(), source, *LINK, *libraries, "-o", self.program], folder)
        return "" if done.returncode == 0 else f"{self.block.place}: this does not compile:\n{errors(decoded(done.stdout))}"

    def options(self):
        return []

    def check(self, folder):
        done = run([self.program], folder)
        printed = decoded(done.stdout)
        if done.returncode != 0:
            return [f"{self.block.place}: this ends with {done.returncode}:\n{printed}"]
        return self.faults(done.stdout)

    def faults(self, printed):
        shown = self.block.shown
        return [] if shown is None or agrees(shown, decoded(printed)) else [differ(self.block.place, decoded(printed), shown)]


class Notebook(Program):
    """Blocks without `main`, after the classes of a program."""

    def __init__(self, program, first):
        super().__init__(first)
        self.head = program
        self.blocks = []

    def source(self):
        outside, inside = ['#include "notebook.h"'], []
        if self.head:
            outside.append(f'#line {self.head.line} "{self.head.page}"\n' + re.split(r"^int main\(", self.head.code, flags=re.M)[0])
        for block in self.blocks:
            where = f'#line {block.line} "{block.page}"\n'
            if "given" in block.notes:
                given = HERE / "given" / f"{block.notes['given']}.h"
                outside.append(f'#line 1 "{given}"\n{given.read_text(encoding="utf-8")}')
            code = []
            for number, line in enumerate(block.code.splitlines(), block.line):
                if line.startswith("#include"):
                    outside.append(line)
                    line = ""
                if not line.lstrip().startswith("//"):
                    line = line.replace("std::cout", f"PrintAt({number})").replace("Show(", f"ShowAt({number}, ")
                code.append(line)
            code = "\n".join(code) + "\n"
            if code.startswith("DECLARE_"):
                name = f"Fields{block.line}"
                outside.append(f"{where}class {name} : public ZoStreamableBase {{ REGISTER_ZO_BEGIN({name})\n"
                               f"{where}{code}REGISTER_ZO_END }};")
            elif re.match(r"(class|struct|enum|void|using)\b", code.lstrip()):
                outside.append(where + code)
            else:
                inside.append(where + code)
        return "\n".join([*outside, "int main() {", *inside, "TellPrinted();\n}\n"])

    def options(self):
        return ["-I", WORK]  # where the header is precompiled

    def faults(self, printed):
        by_line, at = {}, 0
        while at < len(printed):
            end = printed.index(b"\n", at)
            line, size = map(int, printed[at:end].split())
            by_line[line] = decoded(printed[end + 1:end + 1 + size])
            at = end + 1 + size
        found = []
        for block in self.blocks:
            for line, shown in prints(block).items():
                if not says(shown, by_line.get(line, "")):
                    found.append(differ(f"{block.page}:{line}", by_line.get(line, ""), shown))
        return found


class Commands:
    """A transcript of a shell: what stands behind "$ ", and what that prints."""

    def __init__(self, block):
        self.block = block

    def check(self, folder):
        found = []
        line = self.block.line
        for part in re.split(r"^(?=\$ )", self.block.code, flags=re.M):
            if part.startswith("$ "):
                command, shown = self.divided(part[2:])
                if move := re.fullmatch(r"cd (\S+)", command):
                    NOW[folder] = here(folder) / move[1]
                done = run(["bash", "-c", command if not move else "true"], here(folder))
                printed = decoded(done.stdout)
                if not agrees(shown, printed) or not shown and done.returncode != 0:
                    found.append(differ(f"{self.block.page}:{line}", printed, shown))
            elif part.strip():
                found.append(f"{self.block.page}:{line}: a command begins with \"$ \"")
            line += part.count("\n")
        return found

    @staticmethod
    def divided(part):
        """A command goes on while a quotation is open, after a backslash, and to the end of a text for standard input."""
        lines = part.splitlines()
        end = re.search(r"<<'?(\w+)'?", lines[0])
        count = 1
        while count < len(lines) and (lines[count - 1] != end[1] if end else
                                      lines[count - 1].endswith("\\") or "\n".join(lines[:count]).count("'") % 2):
            count += 1
        return "\n".join(lines[:count]), "".join(f"{line}\n" for line in lines[count:])


class Script:
    """A block of Python. What the last expression of a line prints stands behind it, or in the block that follows."""

    def __init__(self, block):
        self.block = block

    def check(self, folder):
        done = run([sys.executable, "-c", textwrap.dedent(self.block.code)], here(folder))
        printed = decoded(done.stdout)
        if done.returncode != 0:
            return [f"{self.block.place}: this ends with {done.returncode}:\n{printed}"]
        comments = re.findall(r"^print\(.*\)  # (.*)$", self.block.code, re.M)
        shown = self.block.shown or "".join(f"{comment}\n" for comment in comments)
        return [] if not shown or agrees(shown, printed) else [differ(self.block.place, printed, shown)]


class Bytes:
    """Hexadecimal digits and quoted texts, to the first explanation of a line."""

    def __init__(self, block):
        self.block = block

    def check(self, folder):
        data = b""
        for line in self.block.code.splitlines():
            for digits, text in re.findall(r'(?:\b([0-9A-F]{2})\b|"([^"]*)")', re.split(r"(?<=\S)\s{4,}", line.strip())[0]):
                data += bytes.fromhex(digits) if digits else text.encode("cp1252")
        (folder / self.block.notes["bytes"]).write_bytes(data)
        done = run(["zo", "verify", self.block.notes["bytes"]], folder)
        return [] if done.returncode == 0 else [f"{self.block.place}: these are no file:\n{decoded(done.stdout)}"]


def steps(found):
    """What is to be done for the blocks of one page, one after another."""
    program = notebook = None
    for block in found:
        if "file" in block.notes:
            yield File(block)
        if "not run" in block.notes or (block.page, block.language) in ELSEWHERE:
            continue
        if block.language == "cpp" and block.program:
            program, notebook = block, None
            yield Program(block)
        elif block.language == "cpp":
            if notebook is None:
                notebook = Notebook(program, block)
                yield notebook
            notebook.blocks.append(block)
        elif block.language == "python":
            yield Script(block)
        elif "bytes" in block.notes:
            yield Bytes(block)
        elif block.language == "console":
            yield Commands(block)
        elif "file" not in block.notes:
            yield Unknown(block)


class File:
    def __init__(self, block):
        self.block = block

    def check(self, folder):
        (folder / self.block.notes["file"]).write_text(self.block.code, encoding="utf-8")
        return []


class Unknown:
    def __init__(self, block):
        self.block = block

    def check(self, _):
        return [f"{self.block.place}: nothing is known to run {self.block.language or 'a block without a language'}; "
                "if it cannot be run: <!-- example: not run, REASON -->"]


class Examples(unittest.TestCase):
    def test_documents(self):
        shutil.rmtree(WORK, ignore_errors=True)
        WORK.mkdir(parents=True)
        shutil.copy(HERE / "notebook.h", WORK)
        done = run([*COMPILE, "-x", "c++-header", WORK / "notebook.h", "-o", WORK / "notebook.h.gch"], WORK)
        self.assertEqual(done.returncode, 0, decoded(done.stdout))
        only = os.environ.get("ZO_PAGE", "")  # a part of its name
        todo = {page: list(steps(blocks(page))) for page in pages() if only in page.name}
        for page in todo:
            self.prepare(page)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            building = [(step, pool.submit(step.build, self.folder(page))) for page, its in todo.items() for step in its
                        if hasattr(step, "build")]
            failed = {id(step): fault for step, future in building if (fault := future.result())}
            checking = [pool.submit(self.check_page, page, its, failed) for page, its in todo.items()]
            faults = list(itertools.chain.from_iterable(future.result() for future in checking))
        if faults:
            self.fail("\n\n" + "\n\n".join(faults))
        if not only:
            self.assertGreater(sum(map(len, todo.values())), 10)

    @staticmethod
    def folder(page):
        return WORK / page.stem

    def prepare(self, page):
        """Pages speak of the files that the example application saves."""
        folder = self.folder(page)
        folder.mkdir()
        for name in ("frame9.zo", "plan.zo"):
            shutil.copy(self.saved(), folder / name)
        (folder / "dev").write_text(f'#!/bin/sh\n[ "$1" = demo ] && mkdir -p build/demo &&\n'
                                    f'exec frame demo "{ROOT}/examples/frame/data" build/demo\n')
        (folder / "dev").chmod(0o755)

    @staticmethod
    @functools.cache
    def saved():
        folder = WORK / "saved"
        folder.mkdir()
        if (done := run(["frame", "demo", ROOT / "examples/frame/data", "."], folder)).returncode != 0:
            raise AssertionError(decoded(done.stdout))
        return folder / "frame9.zo"

    def check_page(self, page, its, failed):
        return [fault for step in its for fault in
                ([failed[id(step)]] if id(step) in failed else step.check(self.folder(page)))]


if __name__ == "__main__":
    unittest.main()
