"""Installs the build into an empty folder and starts what was installed, by its name on the path."""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

cmake, build = sys.argv[1:3]
with tempfile.TemporaryDirectory() as name:
    prefix = pathlib.Path(name).resolve() / "prefix"
    subprocess.run([cmake, "--install", build, "--prefix", str(prefix)], check=True, stdout=subprocess.DEVNULL)

    program = prefix / "bin" / "tagwell"
    home = program.resolve().parent
    assert home != program.parent, "the program lies on the path itself"
    assert list(prefix.rglob("fader.png")) == [home / "fader.png"], "not one picture beside the program"
    for part in ("share/applications/com.brindleaudio.tagwell.desktop",
                 "share/icons/hicolor/scalable/apps/com.brindleaudio.tagwell.svg"):
        assert (prefix / part).is_file(), part
    assert list(prefix.glob("share/doc/*/LICENSE")), "no licence"

    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", HOME=name, XDG_RUNTIME_DIR=name)
    with open(pathlib.Path(name) / "printed", "w+b") as printed:
        process = subprocess.Popen([program], env=environment, stdin=subprocess.DEVNULL, stdout=printed, stderr=printed)
        time.sleep(3)
        assert process.poll() is None, "the installed program ended by itself with %s" % process.returncode
        process.terminate()
        process.wait()
        printed.seek(0)
        assert printed.read() == b"", "the program printed something"
print("installed and started")
