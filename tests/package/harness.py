"""What the tests of the package share: one installed tree, moved after installing. ZO_BUILD is the build folder,
ZO_WORK a folder for what the tests make."""
import functools
import os
import pathlib
import re
import shutil
import subprocess

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = (SOURCE / os.environ["ZO_BUILD"]).resolve()
WORK = (SOURCE / os.environ["ZO_WORK"]).resolve()
VERSION = ".".join(re.findall(r"^#define ZO_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$",
                              (SOURCE / "public/include/ZoPrimitives/ZoVersion.h").read_text(), re.M))
SONAME = "libZoPrimitives.so." + VERSION.split(".")[0]


def run(*command, cwd=None, **environment):
    """What the command prints; fails with all of it."""
    done = subprocess.run([str(word) for word in command], cwd=cwd, env=os.environ | environment, text=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}")
    return done.stdout


def fresh(name):
    folder = WORK / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


@functools.cache
def installed():
    """The tree, elsewhere than it was installed."""
    before = fresh("installed") / "before"
    run("cmake", "--install", BUILD, "--prefix", before)
    after = before.rename(WORK / "installed" / "moved here")
    return after


def configure(name, *options, source=SOURCE / "tests/client"):
    folder = fresh(name)
    run("cmake", "-G", "Ninja", "-S", source, "-B", folder, f"-DZO_SOURCE={SOURCE}", *options)
    return folder


def build_and_test(folder):
    run("cmake", "--build", folder)
    return run("ctest", "--output-on-failure", "--no-tests=error", cwd=folder)
