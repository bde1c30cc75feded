#!/usr/bin/env python3
"""layouts.py LIBRARIES [--write]: holds what applications are compiled against: how some classes lie in memory and in
which order their virtual operations stand, in Microsoft's object model (microsoft.txt) and in that of other compilers
(itanium.txt). Clang tells both. With --write the files are written anew.

LIBRARIES: the folder with TBB's, cctz's and mimalloc's headers for Windows."""

import difflib
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
RECORDS = ["ZoObject", "ZoString", "TBinHeader", "XZoAssert", "XStream", "ZoStreamableBase"]
TABLES = {  # by the source that makes clang tell them
    "cpp/ZoPrimitives/ZoAssert.cpp": ["IAssertFunctor", "ZoAssertFunctor"],
    "cpp/Persistence/instances/ZoStreamable.cpp": ["ZoObject", "ZoStreamableBase", "ZoObjectStreamable"],
    "cpp/Persistence/text/InputStream.cpp": ["InputStream"],
    "cpp/Persistence/text/OutputStream.cpp": ["OutputStream"],
    "cpp/Persistence/records/BinInStream.cpp": ["TBinInStream"],
    "cpp/Persistence/records/BinOutStream.cpp": ["TBinOutStream"],
    "cpp/Persistence/objects/BinInStreamer.cpp": ["TBinInStreamer"],
    "cpp/Persistence/objects/BinOutStreamer.cpp": ["TBinOutStreamer"],
}
MODELS = {
    "microsoft": ["--target=x86_64-pc-windows-msvc", "-fno-ms-compatibility", "-fmsc-version=0", "-fms-extensions",
                  "-D__declspec=__declspec"],
    "itanium": ["--target=x86_64-w64-mingw32"],
}


def includes(libraries):
    told = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-E", "-v", "-x", "c++", "/dev/null"],
                          capture_output=True, text=True, check=True).stderr
    folders = re.search(r"#include <\.\.\.>.*?\n(.*?)\nEnd", told, re.S).group(1).split("\n")
    own = re.compile(r"/lib/gcc/[^/]*/[^/]*/include(-fixed)?$")
    folders = [folder.strip() for folder in folders if not own.search(folder)]
    return [f"-isystem{folder}" for folder in folders + [f"{libraries}/include", f"{libraries}/include/mimalloc-2.0"]]


def dump(model, source, libraries):
    command = ["clang++", *MODELS[model], "-w", "-std=c++20", "-D__GCC_DESTRUCTIVE_SIZE=64",
               "-D__GCC_CONSTRUCTIVE_SIZE=64", "-nostdinc++", *includes(libraries), "-Ipublic/include", "-Icpp", "-Ibuild/texts",
               "-DZO_BUILDING_LIBRARY", "-S", "-emit-llvm", "-o", "/dev/null", "-Xclang", "-fdump-vtable-layouts",
               "-Xclang", "-fdump-record-layouts", source]
    return subprocess.run(command, capture_output=True, text=True, check=True, cwd=ROOT).stdout


def tables(text, names):
    for block in re.findall(r"^V(?:FT|t)able for .*?(?=\n\n)", text, re.M | re.S):
        owner = re.search(r"'ZoPrimitives::(\w+)'[^']*$", block.split("\n", 1)[0])
        if owner and owner.group(1) in names:
            yield block.replace("ZoPrimitives::", "")


def records(text):
    for block in text.split("*** Dumping AST Record Layout\n")[1:]:
        block = block.split("\n\n", 1)[0]
        name = re.match(r"\s*0 \| (?:class|struct) ZoPrimitives::(\w+)\n", block)
        if name and name.group(1) in RECORDS and "[sizeof=" in block:
            yield block.replace("ZoPrimitives::", "")


def layouts(model, libraries):
    found = []
    for source, names in TABLES.items():
        text = dump(model, source, libraries)
        found += [*tables(text, names), *records(text)]
    return "\n\n".join(sorted(set(found))) + "\n"


def main():
    libraries = pathlib.Path(sys.argv[1]).resolve()
    subprocess.run([ROOT / "cmake/messages/library", "build/texts"], check=True)
    same = True
    for model in MODELS:
        file = HERE / f"{model}.txt"
        now = layouts(model, libraries)
        if sys.argv[2:] == ["--write"]:
            file.write_text(now)
            continue
        before = file.read_text()
        same = same and now == before
        sys.stdout.writelines(difflib.unified_diff(before.splitlines(True), now.splitlines(True), file.name, "now"))
    return 0 if same else 1


sys.exit(main())
