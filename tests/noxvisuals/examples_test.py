"""Runs an example application on a short generated scene and reads what it prints.

usage: examples_test.py NOXSCENE COMMAND...

The pen must be followed in every frame that shows it, hovering and pressed, and the probe and the object must hear the
same. Frames 1 to 60 of the scene show the pen hovering for 50 frames and then pressed.
"""
import subprocess
import sys
import tempfile

FRAMES = 60
PRESSED_FROM = 50
WIDTH, HEIGHT = 320, 180


def run_example(noxscene, command):
    with tempfile.NamedTemporaryFile(suffix=".i420") as scene:
        subprocess.run(
            [noxscene, "--size", f"{WIDTH}x{HEIGHT}", "--frames", str(FRAMES), "pen"],
            check=True,
            stdout=scene,
        )
        source = (
            f"filesrc location={scene.name} ! "
            f"rawvideoparse format=i420 width={WIDTH} height={HEIGHT} framerate=30/1"
        )
        answer = subprocess.run(command + [source], check=True, capture_output=True, text=True)
    return answer.stdout.splitlines()


def told(lines, label):
    return [line.split()[1:] for line in lines if line.startswith(label)]


def main(noxscene, command):
    lines = run_example(noxscene, command)
    events = told(lines, "event:")
    positions = told(lines, "navigation:")
    states = ["hovering"] * PRESSED_FROM + ["pressed"] * (FRAMES - PRESSED_FROM)
    assert events == positions, "the probe and the object heard different things"
    assert [state for _, _, state in events] == states, events
    assert all(0 < float(x) < 1 and 0 < float(y) < 1 for x, y, _ in events), events
    assert lines[-1] == f"{FRAMES} events, {FRAMES} positions told", lines[-1]


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
