"""Where nox-visuals takes video from: scenes, addresses, descriptions, and sources that go and come back."""
import os
import re
import signal
import socket
import subprocess
import tempfile
import time
import unittest

import nox_visuals as nox

RTSP_SERVER = os.environ.get("RTSP_SERVER")  # where GStreamer's server of RTSP is installed


def free_port():
    with socket.socket() as it:
        it.bind(("127.0.0.1", 0))
        return it.getsockname()[1]


class Scenes(unittest.TestCase):
    def test_a_scene_ends_after_its_frames(self):
        lines, said = nox.run("track", "test:pen", "--frames", "20")
        end = lines[-1]
        self.assertEqual(said, "")
        self.assertEqual(end["frames"] + end["dropped"], 20)
        self.assertEqual(len(nox.of_type(lines, "pen")), end["found"])
        self.assertTrue(all("time" in it for it in lines))

    def test_a_scene_is_live(self):
        started = time.monotonic()
        nox.run("track", "test:edges", "--frames", "31")
        self.assertGreaterEqual(time.monotonic() - started, 1)

    def test_there_is_no_other_scene(self):
        lines, said = nox.run("track", "test:cat", status=1)
        self.assertIn("pen, qr and edges", said)

    def test_the_newest_frame_wins(self):
        """A tracker that is behind leaves frames out: they are counted."""
        lines, _ = nox.run("track", "gst:videotestsrc num-buffers=1 ! video/x-raw,format=RGB,width=4096,height=2160,"
                           "framerate=1000/1 ! imagefreeze is-live=true num-buffers=100")
        end = lines[-1]
        self.assertGreater(end["dropped"], 0)
        self.assertEqual(end["frames"] + end["dropped"], 100)


class Descriptions(unittest.TestCase):
    def test_any_raw_video_will_do(self):
        for caps in ["video/x-raw,format=RGB", "video/x-raw,format=NV12,width=321,height=241"]:
            lines, _ = nox.run("track", f"gst:videotestsrc num-buffers=5 ! {caps}")
            self.assertEqual(lines[-1]["frames"], 5)

    def test_what_cannot_be_understood(self):
        for description, word in [("nonsense", "nonsense"), ("videotestsrc !", ""), ("fakesink", ""),
                                  ("audiotestsrc num-buffers=3", "raw video")]:
            lines, said = nox.run("track", "gst:" + description, status=1)
            self.assertIn(word, said)


@unittest.skipUnless(RTSP_SERVER, "built without GStreamer's server of RTSP")
class Network(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.clip = nox.make_video(os.path.join(cls.folder.name, "clip.mkv"), frames=300,
                                  encode="vp8enc deadline=1 cpu-used=8 keyframe-max-dist=5 ! matroskamux")

    def setUp(self):
        self.port = free_port()
        self.address = f"rtsp://127.0.0.1:{self.port}/pen"

    def serve(self):
        server = subprocess.Popen([RTSP_SERVER, str(self.port), self.clip], stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        self.assertEqual(server.stdout.readline(), "ready\n")
        return server

    def read_pens(self, process, count):
        """Reads lines until so many pens have come."""
        lines = []
        while len(nox.of_type(lines, "pen")) < count:
            line = process.stdout.readline()
            self.assertNotEqual(line, "", "the program ended")
            lines += nox.parse(line)
        return lines

    def test_a_source_that_goes_is_back(self):
        server = self.serve()
        process = nox.start("track", self.address, "--retry", "1")
        self.addCleanup(process.kill)
        lines = self.read_pens(process, 10)
        server.kill()
        server.wait()
        self.assertIn("went away", process.stderr.readline())
        self.serve()
        self.assertIn("is back", process.stderr.readline())
        lines += self.read_pens(process, 10)
        process.send_signal(signal.SIGTERM)
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual((process.returncode, said), (0, ""))
        lines += nox.parse(out)
        end = lines[-1]
        self.assertEqual(end["type"], "end")
        self.assertEqual(end["losses"], len(nox.of_type(lines, "lost")))
        self.assertGreaterEqual(end["losses"], 1)

    def test_a_source_that_falls_silent_is_gone(self):
        server = self.serve()
        process = nox.start("track", self.address, "--retry", "1")
        self.addCleanup(process.kill)
        self.read_pens(process, 5)
        server.send_signal(signal.SIGSTOP)
        self.assertIn("went away", process.stderr.readline())
        server.send_signal(signal.SIGCONT)
        self.assertIn("is back", process.stderr.readline())
        self.read_pens(process, 5)

    def test_nothing_is_left_of_a_source_that_went_away(self):
        log = os.path.join(self.folder.name, "log")
        tracer = {"GST_TRACERS": 'leaks(filters="GstBuffer,GstMemory,GstBufferPool,GstElement,GstPad")',
                  "GST_LEAKS_TRACER_SIG": "1", "GST_DEBUG": "leaks:7", "GST_DEBUG_FILE": log}
        server = self.serve()
        process = nox.start("track", self.address, "--retry", "60", env={**os.environ, **tracer})
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        self.read_pens(process, 5)
        self.assertGreater(self.living_objects(process, log), 10)
        server.kill()
        server.wait()
        self.assertIn("went away", process.stderr.readline())
        # Threads of the source may take a moment to end.
        deadline = time.monotonic() + nox.PATIENCE
        while self.living_objects(process, log) > 0:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)

    def living_objects(self, process, log):
        """Of GStreamer's in the program, by its tracer."""
        open(log, "w", encoding="utf-8").close()
        process.send_signal(signal.SIGUSR1)
        deadline = time.monotonic() + nox.PATIENCE
        while True:
            with open(log, "rb") as file:
                told = re.search(rb"listed (\d+) alive objects", file.read())
            if told:
                return int(told[1])
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def test_never_tried_again(self):
        server = self.serve()
        process = nox.start("track", self.address, "--retry", "never")
        self.addCleanup(process.kill)
        self.read_pens(process, 5)
        server.kill()
        server.wait()
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertEqual(process.returncode, 1)
        self.assertIn(self.address, said)
        self.assertEqual(nox.parse(out)[-1]["type"], "end")

    def test_nobody_there_from_the_start(self):
        _, said = nox.run("track", self.address, status=1)
        self.assertIn(self.address, said)


if __name__ == "__main__":
    unittest.main()
