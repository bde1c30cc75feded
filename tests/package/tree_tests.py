"""The installed tree: what is in it, under which version, and that it serves from where it was moved to."""
import json
import unittest

from harness import BUILD, SONAME, SOURCE, VERSION, configure, fresh, installed, run

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(finder LANGUAGES CXX)
find_package(ZoPrimitives {})
message(STATUS "found: ${{ZoPrimitives_FOUND}} ${{ZoPrimitives_VERSION}}")
"""


class Tree(unittest.TestCase):
    def test_has_what_users_need(self):
        tree = installed()
        for file in ("include/ZoPrimitives/ZoVersion.h", "lib/libZoPrimitives.so", f"lib/{SONAME}", "bin/zo",
                     "lib/cmake/ZoPrimitives/ZoPrimitivesConfig.cmake", "lib/pkgconfig/zoprimitives.pc",
                     f"lib/libZoPrimitives.so.{VERSION}-gdb.py", "share/ZoPrimitives/ZoPrimitives.natvis",
                     "share/man/man1/zo.1", "share/bash-completion/completions/zo",
                     "share/doc/ZoPrimitives/CHANGELOG.md", "share/licenses/ZoPrimitives/LICENSE"):
            with self.subTest(file):
                self.assertTrue((tree / file).exists())

    def test_library_has_its_soname(self):
        self.assertIn(f"[{SONAME}]", run("readelf", "-d", installed() / "lib/libZoPrimitives.so"))

    def test_names_no_folder_of_the_build(self):
        # -a: in programs, too; their debug information apart, which packages leave out.
        tree = installed()
        copy = fresh("stripped")
        for program in ("lib/libZoPrimitives.so", "bin/zo"):
            run("strip", "-o", copy / "stripped", tree / program)
            with self.subTest(program):
                self.assertNotIn(str(SOURCE).encode(), (copy / "stripped").read_bytes())
        for file in tree.rglob("*"):
            if file.is_file() and file.suffix in (".cmake", ".pc", ".h", ".py"):
                with self.subTest(file.name):
                    self.assertNotIn(str(SOURCE), file.read_text())

    def test_tool_finds_the_library(self):
        self.assertEqual(run(installed() / "bin/zo", "--version").strip(), f"zo {VERSION}")

    def test_is_found_by_version_and_components(self):
        for asked, found in (("3.0 REQUIRED", f"1 {VERSION}"), ("3 COMPONENTS library tool", f"1 {VERSION}"),
                             ("4.0 QUIET", "0 "), ("2.9 QUIET", "0 "), ("3.0 QUIET COMPONENTS roof", "0 ")):
            with self.subTest(asked):
                project = fresh("finder-project")
                (project / "CMakeLists.txt").write_text(PROJECT.format(asked))
                said = run("cmake", "-S", project, "-B", project / "build", f"-DCMAKE_PREFIX_PATH={installed()}")
                self.assertIn(f"found: {found}", said)

    def test_components_part_it(self):
        for component, has, lacks in (("library", f"lib/{SONAME}", "include"),
                                      ("development", "include/ZoPrimitives", "bin"),
                                      ("tool", "bin/zo", "include")):
            with self.subTest(component):
                tree = fresh("component")
                run("cmake", "--install", BUILD, "--prefix", tree, "--component", component)
                self.assertTrue((tree / has).exists())
                self.assertFalse((tree / lacks).exists())


class Versions(unittest.TestCase):
    def test_agree(self):
        self.assertEqual(json.loads((SOURCE / "vcpkg.json").read_text())["version"], VERSION)
        self.assertRegex((SOURCE / "CHANGELOG.md").read_text(), rf"\A# Changes\n(?:(?!\n## ).|\n)*\n## {VERSION}\b")
        found = run("pkg-config", "--modversion", "zoprimitives", PKG_CONFIG_PATH=str(installed() / "lib/pkgconfig"))
        self.assertEqual(found.strip(), VERSION)


if __name__ == "__main__":
    unittest.main()
