"""A copy of the tree, which may be changed at will."""
import pathlib
import shutil
import subprocess


class Tree:
    """What git knows of the working tree, and the QR library beside it."""

    def __init__(self, root, folder):
        self.folder = folder
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=root, check=True,
                                capture_output=True, text=True).stdout.splitlines()
        paths = {pathlib.Path(p) for p in listed if (root / p).is_file()}
        paths |= {p.relative_to(root) for p in (root / "subprojects/quirc").rglob("*") if p.is_file()}
        for path in paths:
            self._copy(root / path, folder / path)
        for path in [p for p in folder.rglob("*") if p.is_file()]:
            if path.relative_to(folder) not in paths: path.unlink()

    @staticmethod
    def _copy(source, to):
        content = source.read_bytes()
        if to.is_file() and to.read_bytes() == content: return
        to.parent.mkdir(parents=True, exist_ok=True)
        to.write_bytes(content)
        shutil.copymode(source, to)

    def read(self, path):
        return (self.folder / path).read_text()

    def write(self, path, text):
        (self.folder / path).write_text(text)

    def sources(self, room):
        """The sources of a room, or of all ("*"), that are compiled on this system."""
        found = [p for p in (self.folder / "src").glob(f"{room}/**/*")
                 if p.suffix in (".cc", ".h") and "win32" not in p.name]
        return sorted(str(p.relative_to(self.folder)) for p in found)

    def rooms_of(self, path):
        """The rooms whose code a source is: its own, and those that include it when it is an -inl.h."""
        rooms = {path.split("/")[1]}
        if path.endswith("-inl.h"):
            include = path.removeprefix("src/")
            rooms |= {p.split("/")[1] for p in self.sources("*") if f'"{include}"' in self.read(p)}
        return rooms
