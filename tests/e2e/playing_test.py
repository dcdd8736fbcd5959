import math
import os
import struct

from support import WindowTest, main, wait_until
from sound_server import SoundServer

RATE = 48000
SECONDS = 60
SEARCHED_FRAMES = 512  # Long enough to be found nowhere by chance.
SOUND_WAIT = 60.0

# The cap travels between these distances of its centre from the fader's ends.
CAP_MARGIN = 32
FADER_TOP, FADER_BOTTOM = 60, -600  # Tenths of a decibel.


def noise(count, seed=1):
    """Samples of 16 bits between a quarter of full scale up and down, the same in every run."""
    state, samples = seed, []
    for _ in range(count):
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        samples.append((state >> 8) % 16384 - 8192)
    return samples


def wav(samples, track_name):
    def chunk(name, data):
        return name + struct.pack("<I", len(data)) + data + b"\0" * (len(data) % 2)
    ixml = ("<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>%s</NAME></TRACK></TRACK_LIST></BWFXML>"
            % track_name).encode()
    body = b"WAVE" + chunk(b"fmt ", struct.pack("<HHIIHH", 1, 1, RATE, RATE * 2, 2, 16)) + chunk(b"iXML", ixml)
    body += chunk(b"data", struct.pack("<%dh" % len(samples), *samples))
    return chunk(b"RIFF", body)


def heard_as(samples):
    """The bytes that the server gets for them at unity gain: both sides alike."""
    return b"".join(struct.pack("<ff", sample / 32768, sample / 32768) for sample in samples)


def level(raw):
    """Decibel of the left side's power."""
    values = struct.unpack("<%df" % (len(raw) // 4), raw)[::2]
    return 10 * math.log10(sum(value * value for value in values) / len(values) + 1e-20)


class Playing(WindowTest):
    def setUp(self):
        self.server = SoundServer(RATE)
        self.server.__enter__()
        self.addCleanup(self.server.__exit__)
        self.environment = dict(self.server.environment)
        super().setUp()
        second = noise(RATE)
        self.samples = second * SECONDS
        self.path = str(self.folder / "take.wav")
        with open(self.path, "wb") as file:
            file.write(wav(self.samples, "Boom"))
        self.recording = str(self.folder / "heard.raw")

    def start_recording(self):
        recorder = self.server.record(self.recording)
        self.addCleanup(recorder.wait)
        self.addCleanup(recorder.terminate)
        wait_until(lambda: os.path.exists(self.recording) and os.path.getsize(self.recording) > 0, "the recorder")

    def recorded(self):
        with open(self.recording, "rb") as file:
            return file.read()

    def latest(self, seconds=0.5):
        """What is heard from now on, for so long."""
        size = int(RATE * seconds) * 8
        start = os.path.getsize(self.recording) // 8 * 8
        wait_until(lambda: os.path.getsize(self.recording) >= start + size, "the recording to go on", SOUND_WAIT)
        with open(self.recording, "rb") as file:
            file.seek(start)
            return file.read(size)

    def wait_for_level(self, expected):
        def close():
            return abs(level(self.latest()) - expected) < 0.3
        wait_until(close, "a level of %.1f dB" % expected, SOUND_WAIT)

    def drag_fader(self, fader, start, end):
        x, y, width, height = self.desktop.rectangle(fader)
        def centre(value):
            travel = height - 2 * CAP_MARGIN
            return x + width // 2, y + CAP_MARGIN + travel * (FADER_TOP - value) // (FADER_TOP - FADER_BOTTOM)
        self.desktop.drag(centre(start), centre(end))

    def tenths(self, fader):
        return round(self.desktop.atspi.Value.get_current_value(fader) * 10)

    def set_exactly(self, fader, value):
        """Goes the last tenths of a decibel with the arrow keys."""
        away = value - self.tenths(fader)
        self.assertLess(abs(away), 30, "the drag came near")
        self.desktop.key(*["Up" if away > 0 else "Down"] * abs(away))

    def theFilesSoundIsHeardAndTheFaderTurnsItDown(self):
        self.start_recording()
        self.window.start([self.path])
        dialog = self.window.play(0)
        self.desktop.click(self.desktop.find("push button", " Play", within=dialog))
        self.desktop.find("push button", " Pause", within=dialog)

        start = heard_as(self.samples[:SEARCHED_FRAMES])
        wait_until(lambda: start in self.recorded(), "the first samples of the file", SOUND_WAIT)
        full = level(heard_as(self.samples[:RATE]))
        self.wait_for_level(full)
        self.picture("playing")

        fader = self.desktop.find("slider", "Fader Boom", within=dialog)
        self.drag_fader(fader, 0, -200)
        if self.tenths(fader) != -200:
            self.set_exactly(fader, -200)
        self.desktop.find("label", "-20.0 dB", within=dialog)
        self.wait_for_level(full - 20)
        self.picture("playing-turned-down")

        self.desktop.click(self.desktop.find("check box", "Mute Boom", within=dialog))
        self.wait_for_level(-200)
        self.window.close_dialog(dialog)
        self.assertEqual(self.window.quit(), 0)
        self.assert_printed_nothing()

    def closingTheWindowWhileItPlaysEndsTheProgram(self):
        self.window.start([self.path])
        dialog = self.window.play(0)
        self.desktop.click(self.desktop.find("push button", " Play", within=dialog))
        self.desktop.find("push button", " Pause", within=dialog)
        self.assertEqual(self.window.close(), 0)
        self.assert_printed_nothing()


class Silent(WindowTest):
    environment = {"PULSE_SERVER": "unix:/nonexistent"}

    def withoutASoundServerWarnsAndShowsTheFile(self):
        path = str(self.folder / "take.wav")
        with open(path, "wb") as file:
            file.write(wav(noise(RATE), "Boom"))
        self.window.start([path])
        self.desktop.click(self.desktop.atspi.Table.get_accessible_at(self.window.table(), 0, 0))
        self.assertIn("Could not open this WAV for playback.", self.window.confirm("Playback"))
        dialog = self.desktop.find("dialog", "Playback Mixer")
        self.desktop.find("label", "Could not open this file for playback.", within=dialog)
        self.assertFalse(self.desktop.is_enabled(self.desktop.find("push button", " Play", within=dialog)))
        self.desktop.find("slider", "Fader Boom", within=dialog)
        self.picture("silent")
        self.assert_printed_nothing()


main()
