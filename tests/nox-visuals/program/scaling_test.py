"""Many files by engines that run nox-visuals: GNU parallel, and what a task of a Slurm job array does."""
import os
import shutil
import subprocess
import unittest

import nox_visuals as nox

BATCH = os.environ["TRACK_ARRAY"]


def read_all(folder):
    """The content of each file by its name."""
    content = {}
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            content[name] = file.read()
    return content


class Scaling(nox.WithFolder):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.clips = [cls.path(f"clip {i}.webm") for i in range(5)]
        for i, clip in enumerate(cls.clips):
            os.rename(nox.make_video(cls.path("new.webm"), frames=10 + i), clip)
        nox.run("track", *cls.clips, "--output-dir", cls.path("one"))
        cls.expected = read_all(cls.path("one"))
        # Where the batch file finds the program.
        cls.search = os.path.dirname(nox.PROGRAM) + os.pathsep + os.environ["PATH"]

    @unittest.skipUnless(shutil.which("parallel"), "GNU parallel is not installed")
    def test_parallel_does_each_once_and_again_what_failed(self):
        late = self.path("late.webm")
        with open(late, "w", encoding="utf-8") as file:
            file.write("not there yet")
        out, log = self.path("parallel"), self.path("joblog")
        command = ["parallel", "--will-cite", "-j", "2", "--joblog", log, "--resume-failed", "--retries", "2",
                   nox.PROGRAM, "track", "{}", "--output-dir", out, ":::", *self.clips, late]
        self.assertEqual(subprocess.run(command, capture_output=True, timeout=nox.PATIENCE).returncode, 1)
        self.assertEqual(read_all(out), self.expected)
        shutil.copy(self.clips[0], late)
        self.assertEqual(subprocess.run(command, capture_output=True, timeout=nox.PATIENCE).returncode, 0)
        done = read_all(out)
        self.assertEqual(sorted(done), sorted([*self.expected, "late.jsonl"]))
        with open(log, encoding="utf-8") as file:
            runs = [line.split("\t")[0] for line in file][1:]
        self.assertEqual(sorted(runs), ["1", "2", "3", "4", "5", "6", "6"])

    def run_task(self, task, tasks, listed, out):
        environment = {**os.environ, "PATH": self.search, "SLURM_ARRAY_TASK_ID": str(task),
                       "SLURM_ARRAY_TASK_COUNT": str(tasks)}
        return subprocess.run([BATCH, listed, out, "--no-mirror"], env=environment, capture_output=True, text=True,
                              timeout=nox.PATIENCE)

    def test_the_tasks_of_an_array_share_the_list(self):
        listed, out = self.path("list"), self.path("array")
        with open(listed, "w", encoding="utf-8") as file:
            file.writelines(clip + "\n" for clip in self.clips)
        seen = 0
        for task in (1, 2, 3):
            done = self.run_task(task, 3, listed, out)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
            seen, before = len(os.listdir(out)), seen
            self.assertEqual(seen - before, 1 if task == 3 else 2)
        self.assertEqual(read_all(out), self.expected)

    def test_a_task_without_a_file_and_one_whose_file_is_not_there(self):
        listed, out = self.path("short"), self.path("short-out")
        with open(listed, "w", encoding="utf-8") as file:
            file.write("/nowhere/clip.webm\n")
        self.assertEqual(self.run_task(2, 3, listed, out).returncode, 0)
        done = self.run_task(1, 3, listed, out)
        self.assertEqual(done.returncode, 1)
        self.assertIn("/nowhere/clip.webm", done.stderr)


if __name__ == "__main__":
    unittest.main()
