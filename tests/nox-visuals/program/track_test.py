"""nox-visuals track on files: the lines, the counts, the files of --output-dir, and bad input."""
import os
import unittest

import nox_visuals as nox


class Track(nox.WithClip):
    def test_every_frame_has_its_line(self):
        lines, said = nox.run("track", self.clip, "--name", "hall-cam1")
        pens = nox.of_type(lines, "pen")
        self.assertEqual(said, "")
        self.assertEqual(lines[-1], {"type": "end", "stream": "hall-cam1", "frames": 60, "found": 60, "losses": 0,
                                     "losses_pressed": 0, "dropped": 0, "undelivered": 0})
        self.assertEqual(len(pens), 60)
        self.assertTrue(all("time" not in it for it in lines))
        for index, it in enumerate(pens):
            self.assertAlmostEqual(it["pts"], index / 30, delta=0.0011)  # WebM counts milliseconds

    @unittest.skipUnless(nox.has_elements("x264enc", "avdec_h264"), "no encoder or decoder of H.264")
    def test_every_frame_of_h264_has_its_line(self):
        """B-frames and all: the tracker sees them in the order in which they are shown."""
        clip = nox.make_video(self.path("clip.mkv"), encode="x264enc speed-preset=veryfast ! h264parse ! matroskamux")
        lines, said = nox.run("track", clip)
        pens = nox.of_type(lines, "pen")
        self.assertEqual((said, lines[-1]["frames"], len(pens)), ("", 60, 60))
        self.assertEqual([it["pts"] for it in pens], sorted(it["pts"] for it in pens))
        for one, other in zip(nox.of_type(nox.run("track", self.clip)[0], "pen"), pens):
            self.assertAlmostEqual(one["x"], other["x"], delta=0.01)
            self.assertAlmostEqual(one["y"], other["y"], delta=0.01)

    def test_places_on_the_surface(self):
        straight = nox.of_type(nox.run("track", self.clip)[0], "pen")
        mirrored = nox.of_type(nox.run("track", self.clip, "--mirror")[0], "pen")
        for one, other in zip(straight, mirrored):
            self.assertAlmostEqual(one["x"], 1 - one["raw"][0] - 0.5 / 448, delta=1e-6)
            self.assertAlmostEqual(one["y"], one["raw"][1] + 0.5 / 252, delta=1e-6)
            self.assertAlmostEqual(one["x"] + other["x"], 1, delta=2e-6)
            self.assertEqual((one["y"], one["raw"]), (other["y"], other["raw"]))

    def test_a_press_is_a_stroke(self):
        lines = nox.of_type(nox.run("track", nox.make_video(self.path("long.webm"), frames=200))[0], "pen")
        pressed = [it["pressed"] for it in lines]
        self.assertIn(True, pressed)
        presses = 1
        for before, now in zip(lines, lines[1:]):
            presses += before["pressed"] and not now["pressed"]
            self.assertEqual(now["stroke"], presses)
        self.assertGreater(presses, 1)

    def test_a_pen_that_goes_while_pressed(self):
        """It is counted, and said once however often it happens."""
        hover, write = nox.draw("pen", 20), nox.draw("pen", 70)
        gone = nox.draw("edges", 5)
        clip = nox.make_video(self.path("gone.webm"), raw=write + gone + hover + gone + write + gone)
        lines, said = nox.run("track", clip)
        lost = nox.of_type(lines, "lost")
        self.assertEqual([it["pressed"] for it in lost], [True, False, True])
        end = lines[-1]
        self.assertEqual((end["losses"], end["losses_pressed"], end["found"]), (3, 2, 160))
        self.assertIn("lost while it was pressed", said)
        self.assertEqual(said.count("\n"), 1, said)

    def test_a_bad_frame_does_not_end_a_stroke(self):
        """What is recovered lies where the tracker finds it in the same frames with their chroma planes exchanged."""
        lossless = "videoconvert ! video/x-raw,format=I420 ! avimux"
        size = 640 * 360 * 3 // 2
        bad, lifted = 45, 85
        raw = nox.draw("room dim speed=10", 100)
        without = nox.draw("room dim pen=none", 1)
        raw = raw[: bad * size] + without + raw[(bad + 1) * size :]
        clip = nox.make_video(self.path("bad.avi"), raw=raw, encode=lossless)
        lines, said = nox.run("track", clip)
        self.assertEqual(said, "")
        pens = nox.of_type(lines, "pen")
        self.assertEqual(len(pens), 99)
        recovered = [it for it in pens if it.get("recovered")]
        self.assertEqual([round(it["pts"] * 30) for it in recovered], list(range(bad + 1, lifted)))
        self.assertEqual({(it["pressed"], it["stroke"]) for it in recovered}, {(True, 1)})
        # From the bad frame on, until the pen hovers.
        exchanged = nox.make_video(self.path("exchanged.avi"), raw=raw[bad * size : lifted * size],
                                   encode=lossless, layout="yv12")
        other = nox.of_type(nox.run("track", exchanged, "--no-recover")[0], "pen")
        self.assertEqual([it["raw"] for it in other], [it["raw"] for it in recovered])
        lines, said = nox.run("track", clip, "--no-recover")
        self.assertEqual(len(nox.of_type(lines, "pen")), 99 - len(recovered))
        self.assertIn("lost while it was pressed", said)

    def test_swapped_colours_are_the_other_pen(self):
        """A clip whose chroma planes are exchanged, read with --swap-colours, is the clip."""
        raw = "videoconvert ! video/x-raw,format=I420 ! avimux"
        clip = nox.make_video(self.path("i420.avi"), encode=raw)
        # YV12 is I420 with V before U.
        exchanged = nox.make_video(self.path("yv12.avi"), encode=raw, layout="yv12")
        plain = nox.run("track", clip, "--name", "s")[0]
        swapped = nox.run("track", exchanged, "--name", "s", "--swap-colours")[0]
        self.assertEqual(plain, swapped)
        self.assertNotEqual(plain, nox.run("track", exchanged, "--name", "s")[0])

    def test_a_preview_changes_nothing(self):
        """A file that is watched runs at its own pace; the lines are the same."""
        shown = self.path("shown.i420")
        lines, _ = nox.run("track", self.clip, f"--preview=video/x-raw,format=I420 ! filesink location={shown}")
        self.assertEqual(lines, nox.run("track", self.clip)[0])
        frames, rest = divmod(os.path.getsize(shown), 640 * 360 * 3 // 2)
        self.assertEqual(rest, 0)
        self.assertGreater(frames, 1)

    def test_help_fits_a_screen(self):
        process = nox.start("track", "--help")
        text, _ = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual(process.returncode, 0)
        self.assertIn("Example: nox-visuals track", text)
        self.assertLessEqual(text.count("\n"), 45)
        self.assertLessEqual(max(map(len, text.splitlines())), 80)

    def test_options_from_a_file(self):
        config = self.write("options", b"# for the hall\nname = hall\nmirror = true\n")
        lines, _ = nox.run("track", self.clip, "--config", config)
        self.assertEqual(lines[-1]["stream"], "hall")
        self.assertEqual(lines, nox.run("track", self.clip, "--name", "hall", "--mirror")[0])
        lines, _ = nox.run("track", self.clip, "--config", config, "--name", "other", "--no-mirror")
        self.assertEqual(lines, nox.run("track", self.clip, "--name", "other")[0])

    def test_mistakes_of_the_command_line(self):
        config = self.write("wrong", b"name = hall\nnaem = hall\n")
        for arguments, word in [
            ([], "SOURCE"),
            ([self.clip, "--naem", "x"], "naem"),
            ([self.clip, "--name", "a b"], "a b"),
            ([self.clip, "--retry", "soon"], "soon"),
            ([self.clip, "--debounce", "-1"], "-1"),
            ([self.clip, self.clip], "--output-dir"),
            ([self.clip, "--again"], "--output-dir"),
            ([self.clip, "--config", config], config + ":2: no option 'naem'"),
            ([self.clip, "--config", self.path("none")], "none"),
        ]:
            lines, said = nox.run("track", *arguments, status=2)
            self.assertEqual(lines, [])
            self.assertIn(word, said)
            self.assertEqual(said.count("\n"), 1, said)


class OutputDir(nox.WithClip):
    """The files of --output-dir."""

    def setUp(self):
        self.out = os.path.join(self.folder, "out-" + self.id().rsplit(".", 1)[-1])

    def lines(self, name):
        with open(os.path.join(self.out, name), encoding="utf-8") as file:
            return nox.parse(file.read())

    def test_each_file_has_its_lines(self):
        other = nox.make_video(self.path("other.webm"), frames=10)
        lines, said = nox.run("track", self.clip, other, "--output-dir", self.out)
        self.assertEqual((lines, said), ([], ""))
        self.assertEqual(sorted(os.listdir(self.out)), ["clip.jsonl", "other.jsonl"])
        self.assertEqual(self.lines("clip.jsonl"), nox.run("track", self.clip, "--name", "clip")[0])
        self.assertEqual(self.lines("other.jsonl")[-1]["frames"], 10)

    def test_what_is_done_is_skipped(self):
        nox.run("track", self.clip, "--output-dir", self.out)
        done = os.path.join(self.out, "clip.jsonl")
        with open(done, "w", encoding="utf-8"):
            pass
        nox.run("track", self.clip, "--output-dir", self.out)
        self.assertEqual(os.path.getsize(done), 0)
        nox.run("track", self.clip, "--output-dir", self.out, "--again")
        self.assertEqual(self.lines("clip.jsonl")[-1]["frames"], 60)

    def test_one_that_fails_leaves_the_others(self):
        bad = self.write("bad.webm", b"no video at all " * 100)
        _, said = nox.run("track", bad, self.path("none.webm"), self.clip, "--output-dir", self.out, status=1)
        self.assertEqual(os.listdir(self.out), ["clip.jsonl"])
        self.assertIn("bad.webm", said)
        self.assertIn("none.webm", said)

    def test_two_of_one_name_are_refused(self):
        os.makedirs(self.path("b"), exist_ok=True)
        twin = self.write("b/clip.webm", b"")
        _, said = nox.run("track", self.clip, twin, "--output-dir", self.out, status=2)
        self.assertIn(twin, said)

    def test_a_folder_that_cannot_be_made(self):
        nox.run("track", self.clip, "--output-dir", self.clip, status=3)


if __name__ == "__main__":
    unittest.main()
