"""What nox-visuals track hides from the tracker: --mask, --mask-learn, --mask-output, --darken."""
import os
import struct
import tempfile
import unittest
import zlib

import nox_visuals as nox

SIZE = 640 * 360 * 3 // 2
LOSSLESS = "videoconvert ! video/x-raw,format=I420 ! avimux"


def png(width, height, black):
    """A picture in shades of grey that is black where black(x, y) says so."""
    rows = b"".join(
        b"\0" + bytes(0 if black(x, y) else 255 for x in range(width)) for y in range(height)
    )

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows))
            + chunk(b"IEND", b""))


def on_screen(x, y):
    """In the room "icons", a margin around it too; as fractions."""
    return 0.71 < x < 1 and 0.37 < y < 0.71


class Hiding(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.pen = nox.draw("room icons pen=ball speed=0", 60)
        cls.empty = nox.draw("room icons pen=none", 60)
        cls.clip = nox.make_video(cls.path("pen.avi"), raw=cls.pen, encode=LOSSLESS)
        cls.both = nox.make_video(cls.path("both.avi"), raw=cls.empty + cls.pen, encode=LOSSLESS)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder.name, name)

    def picture(self, name, *size_and_black):
        with open(self.path(name), "wb") as file:
            file.write(png(*size_and_black))
        return self.path(name)

    def screen_mask(self, name, width, height):
        return self.picture(name, width, height, lambda x, y: on_screen(x / width, y / height))

    def pens(self, *arguments):
        lines, said = nox.run("track", *arguments)
        return nox.of_type(lines, "pen"), said

    def assert_is_the_pen(self, pens, frames):
        """And not the screen, which is in the right part of the picture."""
        self.assertGreaterEqual(len(pens), frames - 2)
        for it in pens:
            self.assertFalse(on_screen(it["x"], it["y"]), it)

    def test_without_a_mask_the_screen_is_the_pen(self):
        pens, _ = self.pens(self.clip)
        self.assertTrue(any(on_screen(it["x"], it["y"]) for it in pens))

    def test_what_is_black_is_ignored(self):
        pens, said = self.pens(self.clip, "--mask", self.screen_mask("same.png", 640, 360))
        self.assertEqual(said, "")
        self.assert_is_the_pen(pens, 60)

    def test_a_mask_of_another_size_is_scaled(self):
        pens, said = self.pens(self.clip, "--mask", self.screen_mask("small.png", 160, 90))
        self.assertIn("is 160x90 and is scaled to the picture's 640x360", said)
        self.assert_is_the_pen(pens, 60)

    def test_a_mask_is_learned_and_kept(self):
        kept = self.path("kept.png")
        pens, said = self.pens(self.both, "--mask-learn", "1.9", "--mask-output", kept)
        self.assertIn("learns what to hide: show no pen yet", said)
        self.assertIn("the mask is learned and hides", said)
        self.assertNotIn("moved", said)
        self.assertTrue(all(it["pts"] > 1.9 for it in pens))
        self.assert_is_the_pen(pens, 60)
        again, said = self.pens(self.clip, "--mask", kept)
        self.assertEqual(said, "")
        self.assert_is_the_pen(again, 60)

    def test_a_pen_that_is_shown_meanwhile_is_noticed(self):
        raw = nox.draw("room dim pen=ball speed=10", 60)
        clip = nox.make_video(self.path("shown.avi"), raw=raw, encode=LOSSLESS)
        _, said = self.pens(clip, "--mask-learn", "1")
        self.assertIn("something like a pen moved meanwhile", said)

    def test_a_stream_that_ends_too_early(self):
        kept = self.path("early.png")
        lines, said = nox.run("track", self.clip, "--mask-learn", "100", "--mask-output", kept)
        self.assertEqual(nox.of_type(lines, "pen"), [])
        self.assertIn("the stream ended before the mask was learned", said)
        self.assertFalse(os.path.exists(kept))

    def test_too_large_a_mask_is_refused(self):
        half = self.picture("half.png", 64, 36, lambda x, y: x < 32)
        _, said = nox.run("track", self.clip, "--mask", half, status=2)
        self.assertIn("more than a third", said)
        blue = bytes([60]) * (640 * 360) + bytes([220]) * (320 * 180) + bytes([128]) * (320 * 180)
        clip = nox.make_video(self.path("blue.avi"), raw=blue * 40, encode=LOSSLESS)
        kept = self.path("refused.png")
        _, said = nox.run("track", clip, "--mask-learn", "1", "--mask-output", kept, status=1)
        self.assertIn("more than a third", said)
        self.assertFalse(os.path.exists(kept))

    def test_what_is_no_mask(self):
        with open(self.path("text.png"), "w", encoding="utf-8") as file:
            file.write("no picture")
        for mask, word in [(self.path("none.png"), "no such file"), (self.path("text.png"), "no picture")]:
            _, said = nox.run("track", self.clip, "--mask", mask, status=2)
            self.assertIn(word, said)
        for arguments in [["--mask-learn", "0"], ["--mask-learn", "x"], ["--mask-output", "f.png"],
                          ["--darken", "256"], ["--darken", "some"]]:
            nox.run("track", self.clip, *arguments, status=2)
        nox.run("track", self.clip, "--mask-learn", "1", "--mask-output", self.path("no/f.png"), status=3)

    def test_the_preview_shows_the_picture_as_it_was(self):
        shown = self.path("shown.i420")
        sink = f"--preview=video/x-raw,format=I420 ! filesink location={shown}"
        nox.run("track", self.clip, "--mask", self.screen_mask("same.png", 640, 360), "--darken", "50", sink)
        with open(shown, "rb") as file:
            first = file.read(SIZE)
        # In the screen, where there is no ring: as bright as it was drawn, up to the colours' conversion.
        for row in range(145, 240):
            at = row * 640 + 480
            self.assertAlmostEqual(sum(first[at : at + 120]) / 120, sum(self.pen[at : at + 120]) / 120, delta=8)

    def test_darker_luma(self):
        """The same as a clip whose samples are smaller."""
        raw = nox.draw("room white pen=ball speed=20", 60)
        darker = b"".join(
            bytes(max(v - 40, 16) for v in raw[i : i + 640 * 360]) + raw[i + 640 * 360 : i + SIZE]
            for i in range(0, len(raw), SIZE)
        )
        clip = nox.make_video(self.path("bright.avi"), raw=raw, encode=LOSSLESS)
        other = nox.make_video(self.path("darker.avi"), raw=darker, encode=LOSSLESS)
        expected = nox.run("track", other, "--name", "s")[0]
        self.assertEqual(nox.run("track", clip, "--name", "s", "--darken", "40")[0], expected)

    def test_darken_auto_says_what_it_takes(self):
        _, said = self.pens(self.clip, "--darken", "auto")
        self.assertRegex(said, r"--darken auto: takes \d+ from luma")


if __name__ == "__main__":
    unittest.main()
