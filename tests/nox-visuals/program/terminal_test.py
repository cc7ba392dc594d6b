"""Signals, and what a terminal sees."""
import os
import pty
import signal
import subprocess
import tempfile
import time
import unittest

import nox_visuals as nox


def read_terminal(master):
    seen = b""
    while True:
        try:
            part = os.read(master, 4096)
        except OSError:  # the other end is closed
            return seen.decode()
        if not part:
            return seen.decode()
        seen += part


def run_in_terminal(*arguments, lines=False):
    """What the program writes to a terminal that is its standard error, and with `lines` its standard output too."""
    master, slave = pty.openpty()
    process = nox.start(*arguments, stderr=slave, stdout=slave if lines else subprocess.DEVNULL)
    os.close(slave)
    try:
        return read_terminal(master)
    finally:
        process.kill()
        process.wait()
        os.close(master)


class Terminal(unittest.TestCase):
    def test_a_live_stream_is_counted(self):
        seen = run_in_terminal("track", "test:pen", "--frames", "45")
        self.assertRegex(seen, r"\d+ frames, \d+ frames/s")
        self.assertNotIn("%", seen)
        self.assertTrue(seen.endswith("\r\x1b[K"), repr(seen[-80:]))

    def test_a_file_has_a_bar(self):
        seen = run_in_terminal("track", self.long_clip())
        self.assertRegex(seen, r"\[#*\.*\] +\d+ %, \d+ frames/s")

    def long_clip(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        return nox.make_video(os.path.join(folder.name, "clip.webm"), frames=600)

    def test_lines_stand_above_the_progress(self):
        seen = run_in_terminal("track", "test:pen", "--frames", "45", lines=True)
        self.assertRegex(seen, r"\d+ frames, \d+ frames/s")
        for line in seen.splitlines():
            shown = line.split("\x1b[K")[-1]
            if "{" in shown:
                nox.parse(shown.lstrip("\r") + "\n")

    def test_sentences_stand_alone(self):
        seen = run_in_terminal("track", "/nowhere")
        self.assertEqual(seen, "nox-visuals: /nowhere: there is no such file or device\r\n")


class Signals(unittest.TestCase):
    def stop(self, which):
        process = nox.start("track", "test:pen")
        self.addCleanup(process.kill)
        process.stdout.readline()
        process.send_signal(which)
        started = time.monotonic()
        out, said = process.communicate(timeout=nox.PATIENCE)
        self.assertLess(time.monotonic() - started, 30)
        self.assertEqual(said, "")
        self.assertEqual(nox.parse(out)[-1]["type"], "end")
        return process.returncode

    def test_an_interrupt_ends_by_the_signal(self):
        self.assertEqual(self.stop(signal.SIGINT), -signal.SIGINT)

    def test_a_request_to_end_is_fulfilled(self):
        self.assertEqual(self.stop(signal.SIGTERM), 0)

    def test_a_second_interrupt_ends_at_once(self):
        """A file waits for its reader; whoever does not want to wait interrupts again."""
        pens = "multifilesrc loop=true location=" + self.raw_clip()
        process = nox.start("track", f"gst:{pens} ! rawvideoparse width=640 height=360 framerate=30/1")
        self.addCleanup(process.kill)
        time.sleep(3)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        time.sleep(2)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(timeout=nox.PATIENCE), -signal.SIGINT)

    def raw_clip(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "pen.i420")
        with open(path, "wb") as file:
            file.write(nox.draw("pen", 30))
        return path

    def test_a_reader_that_stopped_holds_nobody_up(self):
        """The pipe is full long before; the program ends all the same."""
        process = nox.start("track", "gst:videotestsrc is-live=true ! video/x-raw,format=I420,width=64,height=64")
        self.addCleanup(process.kill)
        time.sleep(1)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=nox.PATIENCE), 0)


if __name__ == "__main__":
    unittest.main()
