"""Cameras that are none, and options that only cameras have. Those that are some are tried in scripts/try-in-vm."""
import unittest

import nox_visuals as nox


class NoCamera(nox.WithClip):
    def test_what_is_no_camera_is_not_tuned(self):
        for word, status in (("/dev/null", 1), (self.clip, 2), ("test:pen", 2)):
            _, said = nox.run("tune", word, status=status)
            self.assertEqual(said, f"nox-visuals: {word}: is no camera\n")
        _, said = nox.run("tune", "/dev/video987", status=1)
        self.assertIn("there is no such file or device", said)

    def test_a_device_that_is_no_camera_is_not_tracked(self):
        _, said = nox.run("track", "/dev/null", status=1)
        self.assertIn("/dev/null: is no camera", said)

    def test_modes_and_settings_are_for_cameras(self):
        settings = self.write("camera.txt", b"gain = 1\n")
        for option in (["--mode", "640x480@30"], ["--camera-settings", settings]):
            _, said = nox.run("track", self.clip, *option, status=2)
            self.assertEqual(said, "nox-visuals: --mode and --camera-settings are for cameras\n")

    def test_a_mode_that_is_none(self):
        for command in ("track", "tune"):
            _, said = nox.run(command, "/dev/null", "--mode", "fast", status=2)
            self.assertEqual(said, "nox-visuals: --mode: takes WxH@R as in 640x480@30, not 'fast'\n")

    def test_settings_that_are_none(self):
        broken = self.write("camera.txt", b"# mine\ngain = bright\n")
        _, said = nox.run("track", "/dev/null", "--camera-settings", broken, status=2)
        self.assertEqual(said, f"nox-visuals: {broken}:2: a setting is a whole number, not 'bright'\n")
        _, said = nox.run("track", "/dev/null", "--camera-settings", self.path("none"), status=2)
        self.assertIn("No such file or directory", said)


if __name__ == "__main__":
    unittest.main()
