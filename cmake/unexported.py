#!/usr/bin/env python3
"""unexported.py: prints the linker's names of what the exported classes keep to themselves: private member
functions that no inline function of a public header calls, for Linux and for mingw. Clang tells."""

import pathlib
import subprocess
import sys

from clang.cindex import AccessSpecifier, CursorKind, Index

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADERS = ROOT / "public" / "include"
FUNCTIONS = {CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.CONVERSION_FUNCTION}


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def of_target(target):
    own = ["-resource-dir", output("clang++", "-print-resource-dir")]
    source = "".join(f'#include "ZoPrimitives/{header.name}"\n' for header in sorted(HEADERS.glob("*/*.h")))
    unit = Index.create().parse("all.cpp", args=[*target, *own, "-std=c++20", f"-I{HEADERS}"],
                                unsaved_files=[("all.cpp", source)])
    faults = [str(fault) for fault in unit.diagnostics if fault.severity >= 3]
    if faults:
        sys.exit("\n".join(faults))
    private, called = {}, set()

    def visit(scope):
        for item in scope.get_children():
            if item.location.file is not None and not item.location.file.name.startswith(str(HEADERS)):
                continue
            if item.is_definition() and item.kind in FUNCTIONS | {CursorKind.FUNCTION_TEMPLATE, CursorKind.DESTRUCTOR,
                                                                  CursorKind.FUNCTION_DECL}:
                called.update(token.spelling for token in item.get_tokens())
            elif (item.kind in FUNCTIONS and item.access_specifier == AccessSpecifier.PRIVATE
                  and not item.is_virtual_method()
                  and any(mark.kind == CursorKind.VISIBILITY_ATTR or mark.kind == CursorKind.DLLIMPORT_ATTR
                          for mark in item.semantic_parent.get_children())):
                private[item.mangled_name] = item.spelling
            visit(item)

    visit(unit.cursor)
    return {name for name, spelling in private.items() if spelling not in called}


def mingw():
    standard = output("x86_64-w64-mingw32-g++-posix", "-print-file-name=include/c++")
    folders = [standard, f"{standard}/x86_64-w64-mingw32", f"{standard}/backward", "/usr/x86_64-w64-mingw32/include"]
    return ["--target=x86_64-w64-mingw32", "-nostdlibinc", *(f"-isystem{folder}" for folder in folders)]


print("\n".join(sorted(of_target([]) | of_target(mingw()))))
