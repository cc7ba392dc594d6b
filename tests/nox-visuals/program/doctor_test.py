"""What doctor finds: the module, plugins, and what a source shows."""
import json
import os
import unittest

import nox_visuals as nox


def doctor(*arguments, status=0, **options):
    """The findings by their subjects."""
    process = nox.start("doctor", "--json", *arguments, **options)
    out, said = process.communicate(timeout=nox.PATIENCE)
    assert process.returncode == status, f"status {process.returncode}: {out}{said}"
    return {it["subject"]: it for it in map(json.loads, out.splitlines())}


class Doctor(nox.WithFolder):
    def test_the_module_is_found_and_named(self):
        found = doctor()
        self.assertEqual(found["module"]["verdict"], "ok")
        self.assertIn("libgstnoxvisuals_sse.so", found["module"]["text"])
        self.assertNotIn("source", found)

    def test_a_scene_is_looked_at(self):
        found = doctor("test:pen")
        self.assertRegex(found["source"]["text"], r"^640x360, 1\d\d frames in ")
        self.assertRegex(found["pen"]["text"], r"^in \d\d+ % of the frames")
        self.assertRegex(found["latency"]["text"], r"^from frame to event \d")

    def test_a_white_wall_is_too_bright(self):
        wall = self.path("wall.webm")
        nox.launch("videotestsrc num-buffers=20 pattern=white ! video/x-raw,width=640,height=360 "
                   f"! vp8enc deadline=1 ! webmmux ! filesink location={wall}")
        light = doctor(wall)["light"]
        self.assertEqual((light["verdict"], light["text"]), ("warn", "100 % above 170"))
        self.assertIn("exposure", light["advice"])

    def test_what_is_not_there_fails(self):
        source = doctor("/nowhere", status=1)["source"]
        self.assertEqual(source["verdict"], "fail")
        self.assertIn("there is no such file", source["text"])

    def test_a_missing_plugin_is_named_with_its_package(self):
        folder = os.environ["GST_PLUGIN_PATH"]
        environment = {**os.environ, "GST_PLUGIN_SYSTEM_PATH": folder, "GST_REGISTRY": self.path("registry.bin")}
        cameras = doctor(status=0, env=environment)["cameras"]
        self.assertEqual(cameras["text"], "/dev/video and MJPEG cameras: missing v4l2src, jpegdec")
        self.assertEqual(cameras["advice"], "apt install gstreamer1.0-plugins-good")


if __name__ == "__main__":
    unittest.main()
