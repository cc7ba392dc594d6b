"""nox-visuals vectorize: the files that it writes; and the list of devices."""
import json
import os
import signal
import subprocess
import tempfile
import time
import unittest

import nox_visuals as nox

FRAMES = 110  # edges show from the hundredth on


def luma_of(path):
    """The luma planes of a video, frame by frame."""
    raw = path + ".yuv"
    launch = f"filesrc location={path} ! decodebin ! videoconvert ! video/x-raw,format=GRAY8 ! filesink location={raw}"
    subprocess.run(["gst-launch-1.0", "-q", *launch.split()], check=True)
    with open(raw, "rb") as file:
        content = file.read()
    os.remove(raw)
    size = 640 * 360
    assert len(content) % size == 0
    return [content[start:start + size] for start in range(0, len(content), size)]


class Vectorize(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.clip = nox.make_video(cls.path("clip.webm"), "edges", frames=12)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder.name, name)

    def test_lasting_edges_are_drawn(self):
        clip = nox.make_video(self.path("long.webm"), "edges", frames=FRAMES)
        lines, said = nox.run("vectorize", clip, "--output", self.path("drawing.webm"))
        self.assertEqual((said, [it["frames"] for it in lines]), ("", [FRAMES]))
        drawn = luma_of(self.path("drawing.webm"))
        self.assertEqual(len(drawn), FRAMES)
        # Washed out all over at first, then with the strength of what stood still.
        self.assertGreater(min(drawn[50]), 100)
        self.assertLess(min(drawn[-1]), 80)

    def test_a_file_is_there_when_it_is_whole(self):
        nox.run("vectorize", self.clip, "--output", self.path("drawing.mkv"))
        self.assertEqual(len(luma_of(self.path("drawing.mkv"))), 12)
        self.assertEqual([it for it in os.listdir(self.folder.name) if it.startswith(".")], [])

    def test_a_missing_encoder_is_named_with_its_package(self):
        plugins = self.path("plugins")
        os.mkdir(plugins)
        system = subprocess.run(["pkg-config", "--variable=pluginsdir", "gstreamer-1.0"],
                                check=True, capture_output=True, text=True).stdout.strip()
        for name in os.listdir(system):
            if name.endswith(".so") and "vpx" not in name:
                os.symlink(os.path.join(system, name), os.path.join(plugins, name))
        environment = {**os.environ, "GST_PLUGIN_SYSTEM_PATH": plugins,
                       "GST_REGISTRY": self.path("registry.bin")}
        _, said = nox.run("vectorize", "test:edges", "--frames", "3", "--output", self.path("none.webm"),
                          status=1, env=environment)
        self.assertIn("lacks the element vp8enc; install gstreamer1.0-plugins-good", said)
        self.assertFalse(os.path.exists(self.path("none.webm")))

    def test_preview_and_file_together(self):
        lines, _ = nox.run("vectorize", self.clip, "--output", self.path("both.webm"), "--preview=fakesink")
        self.assertEqual(lines[0]["frames"], 12)
        self.assertEqual(len(luma_of(self.path("both.webm"))), 12)

    def test_preview_alone(self):
        self.assertEqual(nox.run("vectorize", self.clip, "--preview=fakesink")[0][0]["frames"], 12)

    def test_an_interrupt_finishes_the_file(self):
        path = self.path("live.webm")
        process = nox.start("vectorize", "test:edges", "--output", path)
        time.sleep(2)
        process.send_signal(signal.SIGINT)
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual((process.returncode, said), (-signal.SIGINT, ""))
        self.assertEqual(len(luma_of(path)), nox.parse(out)[-1]["frames"])

    def test_a_stream_that_fails_leaves_no_file(self):
        bad = self.path("bad.webm")
        with open(bad, "wb") as file:
            file.write(b"no video at all" * 100)
        nox.run("vectorize", bad, "--output", self.path("nothing.webm"), status=1)
        self.assertFalse(os.path.exists(self.path("nothing.webm")))

    def test_command_lines_that_are_wrong(self):
        self.assertIn("--output or --preview", nox.run("vectorize", self.clip, status=2)[1])
        _, said = nox.run("vectorize", self.clip, "--output", self.path("drawing.mp4"), status=2)
        self.assertIn(".webm or .mkv", said)

    def test_a_file_that_cannot_be_written(self):
        _, said = nox.run("vectorize", self.clip, "--output", "/nowhere/drawing.webm", status=3)
        self.assertIn("/nowhere/drawing.webm", said)


class Devices(unittest.TestCase):
    def devices(self, *options):
        run = subprocess.run([nox.PROGRAM, "devices", *options], stdout=subprocess.PIPE, text=True, check=True,
                             timeout=nox.PATIENCE)
        return run.stdout.splitlines()

    def test_both_forms_tell_the_same(self):
        found = [json.loads(line) for line in self.devices("--json")]
        lines = self.devices()
        if not found:
            self.assertEqual(lines, ["no camera found"])
        for it in found:
            self.assertEqual(it["type"], "device")
            self.assertIn(f"{it.get('source', '-')}  {it['name']}", lines)
            for mode in it["modes"]:
                self.assertIn("    " + mode, lines)


if __name__ == "__main__":
    unittest.main()
