"""Builds the wheel of the staged folder, and uses the module from it with nothing else in reach."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import zipfile

PROGRAM = """
import sbd
print(sbd.read_text("device d { a = 64K; }")["d.a"], sbd.__file__)
"""

staged = pathlib.Path(sys.argv[1])
with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    shutil.copytree(staged, folder / "source")
    subprocess.run([sys.executable, "setup.py", "-q", "bdist_wheel", "-d", str(folder)], check=True,
                   cwd=folder / "source", stdout=subprocess.DEVNULL)
    (wheel,) = folder.glob("sbd-*-cp39-abi3-linux_*.whl")
    zipfile.ZipFile(wheel).extractall(folder / "installed")
    names = {path.name for path in (folder / "installed" / "sbd").iterdir()}
    if not {"py.typed", "__init__.py", "_items.abi3.so", "_items.pyi", "libsbd_c.so.0"} <= names:
        sys.exit(f"the wheel holds only {sorted(names)}")
    run = subprocess.run([sys.executable, "-c", PROGRAM], capture_output=True, text=True,
                         cwd=folder, env={"PYTHONPATH": str(folder / "installed")})
    expected = f"65536 {folder}/installed/sbd/__init__.py\n"
    if run.stdout != expected:
        sys.exit(f"expected {expected}got {run.stdout}{run.stderr}")
