"""What nox-visuals says, and how it ends, when something is wrong with its input or its readers."""
import os
import subprocess
import tempfile
import unittest

import nox_visuals as nox


class BadInput(nox.WithClip):
    def test_a_missing_file(self):
        lines, said = nox.run("track", self.path("none.webm"), status=1)
        self.assertEqual(lines, [])
        self.assertEqual(said, f"nox-visuals: {self.path('none.webm')}: there is no such file or device\n")

    def test_a_folder(self):
        _, said = nox.run("track", self.folder, status=1)
        self.assertIn("is a folder", said)

    def test_a_file_of_text_and_an_empty_one(self):
        for path in [self.write("text.webm", b"no video\n" * 100), self.write("empty.webm", b"")]:
            _, said = nox.run("track", path, status=1)
            self.assertTrue(said.startswith(f"nox-visuals: {path}: "), said)

    def test_a_file_with_sound_only(self):
        path = self.path("sound.ogg")
        subprocess.run(f"gst-launch-1.0 -q audiotestsrc num-buffers=20 ! vorbisenc ! oggmux ! filesink location={path}",
                       shell=True, check=True)
        _, said = nox.run("track", path, status=1)
        self.assertIn("There is no video in it.", said)

    def test_a_truncated_file_is_looked_at_as_far_as_it_goes(self):
        with open(self.clip, "rb") as file:
            whole = file.read()
        path = self.write("truncated.webm", whole[:len(whole) * 2 // 3])
        lines = nox.start("track", path)
        out, _ = lines.communicate(timeout=nox.PATIENCE)
        end = nox.parse(out)[-1]
        self.assertIn(lines.returncode, [0, 1])
        self.assertGreater(end["frames"], 20)
        self.assertLess(end["frames"], 60)
        self.assertEqual(len(nox.of_type(nox.parse(out), "pen")), end["found"])

    def test_a_decoder_that_is_not_installed(self):
        """Its name and its Debian package are said."""
        environment = {**os.environ, "GST_PLUGIN_FEATURE_RANK": "vp8dec:NONE,avdec_vp8:NONE"}
        _, said = nox.run("track", self.clip, status=1, env=environment)
        self.assertEqual(said, f"nox-visuals: {self.clip}: GStreamer lacks VP8 decoder; "
                         "install gstreamer1.0-plugins-good\n")

    def test_frames_that_do_not_hold_what_their_caps_say(self):
        """The element would end the process."""
        description = f"filesrc location={self.clip} blocksize=1000 ! video/x-raw,format=I420,width=640,height=360"
        lines, said = nox.run("track", f"gst:{description},framerate=30/1", status=1)
        self.assertIn("does not hold what its caps say", said)
        self.assertEqual(lines[-1]["frames"], 0)

    def test_the_module_is_not_there(self):
        """Where neither GStreamer nor the program's surroundings have it."""
        alone = self.path("nox-visuals")
        with open(nox.PROGRAM, "rb") as program, open(alone, "wb") as copy:
            copy.write(program.read())
        os.chmod(alone, 0o755)
        environment = {**os.environ, "GST_PLUGIN_PATH": "", "GST_REGISTRY": self.path("registry")}
        process = subprocess.run([alone, "track", self.clip], env=environment, capture_output=True, text=True)
        self.assertEqual(process.returncode, 1)
        self.assertIn("GST_PLUGIN_PATH", process.stderr)


class BadReaders(unittest.TestCase):
    def test_a_disk_that_is_full(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            _, said = nox.run("track", "test:pen", stdout=full, status=3)
        self.assertIn("standard output: No space left on device", said)
        self.assertEqual(said.count("\n"), 1)

    def test_nobody_reads_any_more(self):
        process = nox.start("track", "test:pen")
        self.addCleanup(process.kill)
        process.stdout.readline()
        process.stdout.close()
        said = process.stderr.read()
        self.assertEqual(process.wait(timeout=nox.PATIENCE), 3)
        self.assertIn("standard output: Broken pipe", said)

    def test_standard_output_is_closed(self):
        _, said = nox.run("track", "test:pen", stdout=None, status=3, preexec_fn=lambda: os.close(1))
        self.assertIn("standard output", said)

    def test_a_full_disk_leaves_no_half_file(self):
        with tempfile.TemporaryDirectory() as folder:
            clip = nox.make_video(os.path.join(folder, "clip.webm"))
            with nox.small_disk(folder, 4) as small:
                _, said = nox.run("track", clip, "--output-dir", small, status=3)
                self.assertIn("No space left on device", said)
                self.assertEqual(os.listdir(small), [])


if __name__ == "__main__":
    unittest.main()
