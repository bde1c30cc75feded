#!/usr/bin/env python3
"""zip.py ARCHIVE: the .zip for Windows holds all that an application needs to be built and to run, and its tool runs."""
import pathlib
import subprocess
import sys
import tempfile
import zipfile

SOURCE = pathlib.Path(__file__).resolve().parents[2]
NEEDED = ["bin/ZoPrimitives.dll", "bin/libtbb12.dll", "bin/libstdc++-6.dll", "bin/libgcc_s_seh-1.dll",
          "bin/libwinpthread-1.dll", "bin/zo.exe", "lib/libZoPrimitives.dll.a", "include/ZoPrimitives/ZoPrimitives.h",
          "lib/cmake/ZoPrimitives/ZoPrimitivesConfig.cmake", "share/ZoPrimitives/ZoPrimitives.natvis",
          "share/licenses/ZoPrimitives/LICENSE", "share/doc/ZoPrimitives/CHANGELOG.md"]

with zipfile.ZipFile(sys.argv[1]) as archive, tempfile.TemporaryDirectory(dir=SOURCE / "build") as folder:
    names = {name.partition("/")[2] for name in archive.namelist()}
    missing = [name for name in NEEDED if name not in names]
    if missing:
        sys.exit(f"missing: {', '.join(missing)}")
    archive.extractall(folder)
    tool = next(pathlib.Path(folder).glob("*/bin/zo.exe"))
    said = subprocess.run([SOURCE / "cmake/windows/wine", tool, "--version"], capture_output=True, text=True)
    if said.returncode != 0 or not said.stdout.startswith("zo "):
        sys.exit(f"zo.exe: {said.returncode}\n{said.stdout}{said.stderr}")
