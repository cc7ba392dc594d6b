"""nox-visuals with the kernel's virtual camera, vivid."""
import glob
import subprocess
import unittest


class First(unittest.TestCase):
    def test_boot(self):
        subprocess.run(["modprobe", "vivid", "n_devs=1", "node_types=0x1"], check=True)
        print(glob.glob("/dev/video*"))
        print(subprocess.run(["v4l2-ctl", "-d", "/dev/video0", "--all", "--list-ctrls-menus", "--list-formats-ext"], capture_output=True, text=True).stdout)
        print(subprocess.run(["nox-visuals", "doctor", "/dev/video0"], capture_output=True, text=True))


if __name__ == "__main__":
    unittest.main()
