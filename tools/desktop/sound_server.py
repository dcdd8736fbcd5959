"""A sound server of our own with a silent output, so that the program plays where there is no sound hardware."""

import os
import shutil
import subprocess
import tempfile
import time


class SoundServer:
    """Use as a context manager. `environment` is what a client needs to find the server."""

    def __init__(self, rate=48000):
        self.folder = tempfile.mkdtemp(prefix="tagwell-sound-")
        os.chmod(self.folder, 0o700)
        self.rate = rate
        self.process = None
        self.socket = os.path.join(self.folder, "native")
        self.environment = {"PULSE_SERVER": "unix:" + self.socket}

    def __enter__(self):
        environment = dict(os.environ, HOME=self.folder, XDG_RUNTIME_DIR=self.folder)
        self.process = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disable-shm=yes",
             "-L", "module-native-protocol-unix socket=%s auth-anonymous=1" % self.socket,
             "-L", "module-null-sink sink_name=t rate=%d format=float32le channels=2 norewinds=1" % self.rate],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        client = dict(environment, **self.environment)
        for _ in range(100):
            if subprocess.run(["pactl", "info"], env=client, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0:
                return self
            time.sleep(0.1)
        self.__exit__()
        raise RuntimeError("the sound server did not answer")

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def record(self, path):
        """Starts to write what is heard to `path`, as raw interleaved stereo 32-bit floats; ends with terminate()."""
        environment = dict(os.environ, HOME=self.folder, XDG_RUNTIME_DIR=self.folder, **self.environment)
        return subprocess.Popen(
            ["parec", "-d", "t.monitor", "--format=float32le", "--rate=%d" % self.rate, "--channels=2",
             "--latency-msec=20", "--raw", path],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
