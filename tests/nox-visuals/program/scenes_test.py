"""How much of a pen nox-visuals track finds in drawn scenes that went through an encoder, and what helps there.

scripts/benchmark scenes prints the same for many more; the limits here are a little below what it measures.
"""
import math
import os
import subprocess
import sys
import tempfile
import unittest

import nox_visuals as nox

# Real videos of still cameras; not part of this repository.
VIDEOS = sys.argv.pop(1) if len(sys.argv) > 1 else ""
FRAMES = 200
FAR = 32 / 640  # what lies further beside the pen's stroke is something else


def encoder(kbits):
    return f"vp8enc deadline=1 cpu-used=8 keyframe-max-dist=60 target-bitrate={kbits}000 ! webmmux"


class Scenes(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def read_truth(self):
        with open(self.path("truth"), encoding="utf-8") as file:
            rows = [line.split(",") for line in file]
        self.truth = {int(r[0]): (r[1] == "1", r[2] == "1", float(r[3]), float(r[4])) for r in rows}

    def room(self, words, kbits, before=b"", frames=FRAMES):
        raw = nox.draw(f"--truth {self.path('truth')} room {words}", frames)
        self.read_truth()
        return nox.make_video(self.path("clip.webm"), raw=before + raw, encode=encoder(kbits))

    def score(self, clip, *arguments, first=0, ratio=9 / 16, streak=0.0):
        """Found of the visible, right of the found, in percent; false pens; the median error in 640ths."""
        visible = sum(it[0] for it in self.truth.values())
        right, false, errors = 0, 0, []
        for it in nox.of_type(nox.run("track", clip, *arguments)[0], "pen"):
            there, pressed, x, y = self.truth.get(round(it["pts"] * 30) - first, (False, False, 0, 0))
            error = math.hypot(it["x"] - x, (it["y"] - y) * ratio)
            if not there or error > FAR + streak / 2:
                false += 1
                continue
            errors.append(error * 640)
            right += it["pressed"] == pressed
        errors.sort()
        return (100 * len(errors) / visible, 100 * right / max(len(errors), 1), false,
                errors[len(errors) // 2] if errors else math.inf)

    def test_a_sharp_ball_in_a_lit_room(self):
        found, right, false, error = self.score(self.room("lit pen=ball speed=30", 1000), "--no-recover")
        self.assertEqual((found, right, false), (100, 100, 0))
        self.assertLess(error, 0.6)

    def test_recovery_returns_blurred_strokes(self):
        clip = self.room("dim pen=ball speed=30 open=0.8", 1000)
        without = self.score(clip, "--no-recover", streak=24 / 640)
        found, right, false, error = self.score(clip, streak=24 / 640)
        self.assertLess(without[0], 70)
        self.assertGreater(found, 80)
        self.assertGreater(right, 99)
        self.assertLessEqual(false, without[2])
        self.assertLess(error, 1)

    def test_a_short_exposure_finds_a_bare_led_before_a_white_wall(self):
        bright = self.score(self.room("white pen=bare speed=30", 1500))
        short = self.score(self.room("white pen=bare speed=30 exposure=0.35", 1500))
        self.assertLess(bright[0], 40)
        self.assertGreater(short[0], 98)
        self.assertEqual(short[2], 0)

    def test_a_learned_mask_hides_a_screen(self):
        empty = nox.draw("room icons pen=none", 75)
        clip = self.room("icons pen=bare speed=30", 1500, before=empty)
        without = self.score(clip, first=75)
        found, right, false, _ = self.score(clip, "--mask-learn", "2.4", first=75)
        self.assertLess(without[0], 10)
        self.assertGreater(found, 80)
        self.assertGreater(right, 99)
        self.assertEqual(false, 0)

    def test_nobody_shows_a_pen(self):
        for room in ["lit", "white", "dim", "red"]:
            clip = self.room(f"{room} pen=none", 1000, frames=90)
            for arguments in [[], ["--darken", "auto"]]:
                pens = nox.of_type(nox.run("track", clip, *arguments)[0], "pen")
                self.assertEqual(pens, [], (room, arguments))

    def test_a_pen_on_the_road(self):
        video = os.path.join(VIDEOS, "motorway.avi")
        if not VIDEOS or not os.path.exists(video):
            self.skipTest("the real videos are not there")
        size = ["--size", "320x240", "--frames", str(FRAMES), "--truth", self.path("truth")]
        raw = self.path("road.i420")
        nox.launch(f"filesrc location={video} ! decodebin ! videoconvert ! video/x-raw,format=I420 ! "
                   f"filesink location={raw}")
        with open(raw, "rb") as file:
            drawn = subprocess.run([nox.NOXSCENE, *size, "over", "pen=bare", "speed=30"], stdin=file,
                                   stdout=subprocess.PIPE, check=True).stdout
        self.read_truth()
        clip = self.path("road.webm")
        nox.launch("fdsrc fd=0 ! rawvideoparse width=320 height=240 framerate=30/1 format=i420 ! "
                   f"{encoder(600)} ! filesink location={clip}", input=drawn)
        plain = self.score(clip, "--no-recover", ratio=3 / 4)
        recovered = self.score(clip, ratio=3 / 4)
        both = self.score(clip, "--darken", "auto", ratio=3 / 4)
        self.assertGreater(recovered[0], plain[0] + 25)
        self.assertGreater(both[0], 85)
        self.assertLessEqual(max(recovered[2], both[2]), plain[2])


if __name__ == "__main__":
    unittest.main()
