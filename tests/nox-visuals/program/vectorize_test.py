"""nox-visuals vectorize: the files that it writes; and the list of devices."""
import json
import os
import signal
import subprocess
import time
import unittest

import nox_visuals as nox

FRAMES = 110  # edges show from the hundredth on


def luma_of(path, size=640 * 360):
    """The luma planes of a video, frame by frame."""
    raw = path + ".yuv"
    launch = f"filesrc location={path} ! decodebin ! videoconvert ! video/x-raw,format=GRAY8 ! filesink location={raw}"
    subprocess.run(["gst-launch-1.0", "-q", *launch.split()], check=True)
    with open(raw, "rb") as file:
        content = file.read()
    os.remove(raw)
    assert len(content) % size == 0
    return [content[start:start + size] for start in range(0, len(content), size)]


class Vectorize(nox.WithFolder):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.clip = nox.make_video(cls.path("clip.webm"), "edges", frames=12)

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
        self.assertEqual([it for it in os.listdir(self.folder) if it.startswith(".")], [])

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

    def wait_for_part(self, name):
        """Until frames lie in the file that will have this name."""
        for _ in range(10 * nox.PATIENCE):
            parts = [it for it in os.listdir(self.folder) if it.startswith("." + name)]
            if parts and os.path.getsize(self.path(parts[0])) > 10_000:
                return
            time.sleep(0.1)
        self.fail("nothing is written")

    def test_an_interrupt_finishes_the_file(self):
        path = self.path("live.webm")
        process = nox.start("vectorize", "test:edges", "--output", path)
        self.wait_for_part("live.webm")
        process.send_signal(signal.SIGINT)
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual((process.returncode, said), (-signal.SIGINT, ""))
        self.assertEqual(len(luma_of(path)), nox.parse(out)[-1]["frames"])

    def test_an_interrupt_does_not_wait_for_what_a_decoder_holds(self):
        """Small frames that are drawn at a large size: hundreds of them lie before the first one that is drawn."""
        clip = nox.make_video(self.path("small.webm"), "edges", frames=300)
        path = self.path("large.webm")
        large = f"gst:filesrc location={clip} ! decodebin ! videoscale ! video/x-raw,width=2560,height=1440"
        process = nox.start("vectorize", large, "--output", path)
        self.wait_for_part("large.webm")
        process.send_signal(signal.SIGINT)
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual((process.returncode, said), (-signal.SIGINT, ""))
        frames = nox.parse(out)[-1]["frames"]
        self.assertEqual(len(luma_of(path, 2560 * 1440)), frames)
        self.assertLess(frames, 300)

    def test_a_full_disk(self):
        with nox.small_disk(self.folder, 16) as small:
            lines, said = nox.run("vectorize", "test:edges", "--output", os.path.join(small, "drawing.webm"), status=3)
            self.assertRegex(said, r"^nox-visuals: \S*/small/drawing.webm: .*[Nn]o space left")
            self.assertEqual((lines[-1]["type"], os.listdir(small)), ("end", []))

    def test_the_source_stays(self):
        with open(self.clip, "rb") as file:
            before = file.read()
        for source in (self.clip, "file://" + self.clip):
            _, said = nox.run("vectorize", source, "--output", self.clip, status=2)
            self.assertEqual(said, f"nox-visuals: --output {self.clip}: is the source itself\n")
        with open(self.clip, "rb") as file:
            self.assertEqual(file.read(), before)

    def test_a_preview_that_cannot_be_opened(self):
        _, said = nox.run("vectorize", "test:edges", "--preview=filesink location=/nowhere/shown", status=3)
        self.assertIn("--preview: ", said)
        self.assertIn("/nowhere/shown", said)

    def test_a_stream_that_fails_leaves_no_file(self):
        bad = self.write("bad.webm", b"no video at all" * 100)
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
