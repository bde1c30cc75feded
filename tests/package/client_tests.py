"""Applications outside the tree (tests/client): by CMake, by pkg-config and with the library in their own build, with both
compilers, both standards, unoptimised and optimised."""
import shlex
import unittest

from harness import SOURCE, WORK, build_and_test, configure, fresh, installed, run


class Clients(unittest.TestCase):
    def test_by_cmake(self):
        for compiler in ("g++", "clang++"):
            with self.subTest(compiler):
                folder = configure(f"client-{compiler}", f"-DCMAKE_CXX_COMPILER={compiler}", "-DCLIENT_LEVELS=0;2",
                                   f"-DCMAKE_PREFIX_PATH={installed()}")
                self.assertIn("100% tests passed, 0 tests failed out of 8", build_and_test(folder))

    def test_by_pkg_config(self):
        tree = installed()
        flags = shlex.split(run("pkg-config", "--cflags", "--libs", "zoprimitives",
                                PKG_CONFIG_PATH=str(tree / "lib/pkgconfig")))
        folder = fresh("pkg-config")
        for compiler in ("g++ -std=c++17 -O2", "clang++ -std=c++20 -O0"):
            with self.subTest(compiler):
                run(*compiler.split(), SOURCE / "tests/client/every_header.cpp", "-o", "client", *flags, cwd=folder)
                run("./client", tree / "include/ZoPrimitives", cwd=folder, LD_LIBRARY_PATH=str(tree / "lib"))

    def test_with_the_library_in_their_own_build(self):
        folder = configure("client-fetches", "-DCLIENT_FETCHES=ON", "-DCMAKE_CXX_FLAGS=-O0",
                           f"-DCMAKE_PREFIX_PATH={SOURCE / 'build/libraries'}")
        self.assertIn("100% tests passed, 0 tests failed out of 4", build_and_test(folder))
        built = {file.name for file in (folder / "_deps/zoprimitives-build").rglob("*")}
        self.assertFalse(built & {"zo", "frame", "unit_tests", "zo_bench"}, "tests, example and tool stay out")
        run("cmake", "--install", folder, "--prefix", WORK / "nothing")
        self.assertFalse((WORK / "nothing").exists(), "an application installs what it wants to")


if __name__ == "__main__":
    unittest.main()
