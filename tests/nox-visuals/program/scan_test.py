"""nox-visuals scan on files and scenes: the lines, and what its options leave of them."""
import base64
import os
import subprocess
import unittest

import nox_visuals as nox

# What test:qr shows.
SCENE = ["https://example.org/nox", "Grüß Gott"]


def texts(lines):
    return [it["text"] for it in nox.of_type(lines, "code")]


def raw(*arguments):
    """What --raw prints."""
    run = subprocess.run([nox.PROGRAM, "scan", *arguments, "--raw"], stdout=subprocess.PIPE, check=True,
                         timeout=nox.PATIENCE)
    return run.stdout


class Files(nox.WithFolder):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.clip = nox.make_video(cls.path("clip.webm"), "qr left right", frames=15)

    def test_every_code_in_every_frame(self):
        lines, said = nox.run("scan", self.clip, "--name", "hall")
        codes = nox.of_type(lines, "code")
        self.assertEqual(said, "")
        self.assertEqual(sorted(texts(lines)), ["left"] * 15 + ["right"] * 15)
        self.assertEqual(lines[-1], {"type": "end", "stream": "hall", "frames": 15, "found": 15, "losses": 0,
                                     "losses_pressed": 0, "dropped": 0, "undelivered": 0})
        self.assertTrue(all("time" not in it for it in lines))
        self.assertEqual([it["pts"] for it in codes], sorted(it["pts"] for it in codes))
        self.assertEqual(len({(it["pts"], it["text"]) for it in codes}), 30)

    def test_fields_of_a_code(self):
        left = [it for it in nox.of_type(nox.run("scan", self.clip)[0], "code") if it["text"] == "left"][0]
        self.assertEqual((left["bytes"], left["size"]), (4, 21))
        top_left, top_right, bottom_right, bottom_left = left["corners"]
        self.assertTrue(0 < top_left[0] < top_right[0] < 320)
        self.assertTrue(0 < top_left[1] < bottom_left[1] < 360)
        self.assertTrue(bottom_left[0] < bottom_right[0] and top_right[1] < bottom_right[1])

    def test_one_reader(self):
        for reader in ("quirc", "quirc2x"):
            codes = nox.of_type(nox.run("scan", self.clip, "--reader", reader)[0], "code")
            self.assertGreater(len(codes), 0)
            self.assertEqual({it["reader"] for it in codes}, {reader})

    def test_unique(self):
        self.assertEqual(sorted(texts(nox.run("scan", "--unique", self.clip)[0])), ["left", "right"])
        # The codes never go: no pause of a second ends.
        self.assertEqual(sorted(texts(nox.run("scan", "--unique=1", self.clip)[0])), ["left", "right"])

    def test_unique_with_short_pauses(self):
        """At 30 frames a second each frame comes after a pause of 0.02 s."""
        self.assertEqual(len(texts(nox.run("scan", "--unique=0.02", self.clip)[0])), 30)

    def test_options_in_a_file(self):
        path = self.write("options", b"unique = 1\nreader = quirc\n")
        self.assertEqual(sorted(texts(nox.run("scan", self.clip, "--config", path)[0])), ["left", "right"])

    def test_one(self):
        lines, _ = nox.run("scan", self.clip, "--one")
        self.assertEqual(len(texts(lines)), 1)
        self.assertEqual([it["type"] for it in lines], ["code", "end"])

    def test_one_that_never_comes(self):
        """The stream ends well, and has nothing to say."""
        self.assertEqual(raw("test:edges", "--frames", "3", "--one"), b"")

    def test_raw(self):
        self.assertEqual(sorted(raw(self.clip, "--unique").splitlines()), [b"left", b"right"])

    def test_bytes_that_are_no_text(self):
        payload = b"caf\xe9\xff"
        path = self.path("bytes.webm")
        nox.make_video(path, "qr " + os.fsdecode(payload), frames=1)
        code = nox.of_type(nox.run("scan", path)[0], "code")[0]
        self.assertNotIn("text", code)
        self.assertEqual(base64.b64decode(code["data"]), payload)
        self.assertEqual(code["bytes"], len(payload))
        self.assertEqual(raw(path), payload + b"\n")

    def test_a_picture_is_one_frame(self):
        path = self.path("still.png")
        nox.make_video(path, "qr still", frames=1, encode="videoconvert ! pngenc")
        lines, _ = nox.run("scan", path)
        self.assertEqual((texts(lines), lines[-1]["frames"]), (["still"], 1))


class Live(unittest.TestCase):
    def test_a_code_that_several_readers_see_is_one_line(self):
        lines, _ = nox.run("scan", "test:qr", "--frames", "20", "--name", "desk")
        codes = nox.of_type(lines, "code")
        self.assertEqual({it["text"] for it in codes}, set(SCENE))
        self.assertEqual(len({(it["pts"], it["text"]) for it in codes}), len(codes))
        self.assertTrue(all("time" in it for it in lines))
        end = lines[-1]
        self.assertEqual(end["frames"] + end["dropped"], 20)
        self.assertEqual(end["found"], len({it["pts"] for it in codes}))

    def test_slow_readers_hold_up_nothing(self):
        """Of 30 frames in a second they read those that they have time for; the last one always."""
        lines, _ = nox.run("scan", "test:qr", "--frames", "30", "--reader", "quirc2x")
        end = lines[-1]
        self.assertEqual(end["frames"] + end["dropped"], 30)
        self.assertGreater(end["found"], 0)

    def test_the_first_code_ends_a_stream_without_end(self):
        self.assertIn(raw("test:qr", "--one").decode(), [text + "\n" for text in SCENE])


class CommandLine(unittest.TestCase):
    def test_unknown_readers(self):
        _, said = nox.run("scan", "test:qr", "--reader", "zbar", status=2)
        self.assertIn("there is no reader 'zbar'", said)

    def test_pauses_that_are_none(self):
        for pause in ("0", "-1", "soon"):
            _, said = nox.run("scan", "test:qr", f"--unique={pause}", status=2)
            self.assertIn("seconds above 0", said)

    def test_a_missing_file(self):
        _, said = nox.run("scan", "/nowhere/poster.png", status=1)
        self.assertIn("/nowhere/poster.png: there is no such file or device", said)

    def test_help_fits_a_screen_and_has_an_example(self):
        shown = subprocess.run([nox.PROGRAM, "scan", "--help"], stdout=subprocess.PIPE, text=True, check=True)
        self.assertLessEqual(len(shown.stdout.splitlines()), 24)
        self.assertIn("Example: nox-visuals scan", shown.stdout)


if __name__ == "__main__":
    unittest.main()
