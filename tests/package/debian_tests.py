"""The Debian packages: lintian finds no error in them, and what they hold serves an application."""
import functools
import subprocess
import unittest

from harness import BUILD, SONAME, VERSION, build_and_test, configure, fresh, run

NAMES = ("libzoprimitives3", "libzoprimitives3-dbgsym", "libzoprimitives-dev", "zoprimitives-tools")


@functools.cache
def packages():
    """By their names; ./dev package made them."""
    files = [*(BUILD.parent / "package").glob("*.deb"), *(BUILD.parent / "package").glob("*.ddeb")]
    return {run("dpkg-deb", "--field", file, "Package").strip(): file for file in files}


class Debian(unittest.TestCase):
    def test_has_each_package(self):
        self.assertEqual(set(packages()) - {"zoprimitives-tools-dbgsym"}, set(NAMES))

    def test_depends_on_what_it_needs(self):
        for name, needed in (("libzoprimitives3", "libcctz2.*libtbb12"),
                             ("libzoprimitives-dev", rf"^libzoprimitives3 \(= {VERSION}-1\)$"),
                             ("zoprimitives-tools", "libsqlite3-0.*libzoprimitives3|libzoprimitives3.*libsqlite3-0"),
                             ("libzoprimitives3-dbgsym", rf"^libzoprimitives3 \(= {VERSION}-1\)$")):
            with self.subTest(name):
                self.assertRegex(run("dpkg-deb", "--field", packages()[name], "Depends").strip(), needed)

    def test_lintian_finds_no_error(self):
        for name in NAMES:
            with self.subTest(name):
                done = subprocess.run(["lintian", "--fail-on", "error", "--no-cfg", str(packages()[name])], text=True,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                self.assertEqual(done.returncode, 0, done.stdout)

    def test_serves_an_application(self):
        root = fresh("root")
        for package in packages().values():
            run("dpkg-deb", "--extract", package, root)
        self.assertTrue((root / "usr/lib" / SONAME).is_symlink())
        folder = configure("client-debian", f"-DCMAKE_PREFIX_PATH={root / 'usr'}")
        self.assertIn("100% tests passed", build_and_test(folder))
        said = run(root / "usr/bin/zo", "info", folder / "house.zo", LD_LIBRARY_PATH=str(root / "usr/lib"))
        self.assertIn("House", said)


if __name__ == "__main__":
    unittest.main()
