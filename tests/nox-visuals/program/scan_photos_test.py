"""Reads real photographs of QR codes with nox-visuals scan, zbarimg and ZXingReader, and compares.

usage: scan_photos_test.py PROGRAM FOLDER

A picture is read in full when every payload that the manifest lists was read. scan must read more pictures in full
than either of the other two. A code that the manifest lacks must be seen by two readers that work in different ways:
two of scan's own, or one of them and zbarimg, which may look at the picture at half and at twice its size too.
Without the folder, or without the other two programs, the test is skipped.
"""
import base64
import collections
import csv
import json
import os
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
DECODERS = {".png": "pngdec", ".jpeg": "jpegdec"}
# ZXing and quirc look for codes differently; quirc at twice the size is still quirc.
FAMILIES = {"quirc": ["quirc", "quirc2x"], "zxing": ["zxing"]}


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False).stdout


def scan_codes(program, path, reader="all"):
    """The payloads that scan reads; anything but a clean end is an error of the test."""
    run = subprocess.run([program, "scan", path, "--reader", reader], stdout=subprocess.PIPE, check=True)
    lines = [json.loads(line) for line in run.stdout.splitlines()]
    assert lines[-1]["type"] == "end" and lines[-1]["frames"] == 1, lines[-1:]
    codes = [line for line in lines if line["type"] == "code"]
    return [line["text"].encode() if "text" in line else base64.b64decode(line["data"]) for line in codes]


def zbar_text(path):
    """All that zbarimg reads, each payload between line ends."""
    return b"\n" + output_of("zbarimg", "-q", "--raw", "-Sdisable", "-Sqrcode.enable", path)


def zxing_codes(path):
    for line in output_of("ZXingReader", "-format", "QRCode", path).decode(errors="replace").splitlines():
        if line.startswith("Bytes:"):
            yield bytes.fromhex(line[len("Bytes:"):])


def spellings(payload):
    """The payload's bytes, and what they are in UTF-8 when they were another charset's: some programs convert."""
    found = {payload}
    for charset in ("shift_jis", "iso8859-1"):
        try:
            found.add(payload.decode(charset).encode())
        except UnicodeDecodeError:
            pass
    return found


def same(one, other):
    return bool(spellings(one) & spellings(other))


def zbar_has(text, payload):
    return any(b"\n" + spelling + b"\n" in text for spelling in spellings(payload))


def listed(row, *columns):
    texts = [text for column in columns for text in json.loads(row[column])]
    return [bytes.fromhex(text[4:]) if text.startswith("hex:") else text.encode() for text in texts]


def read_in_full(row, codes):
    return all(any(same(payload, code) for code in codes) for payload in listed(row, "payloads"))


def scaled(path, width, height, folder):
    out = os.path.join(folder, f"{width}.png")
    decoder = DECODERS[os.path.splitext(path)[1]]
    caps = f"video/x-raw,format=RGB,width={width},height={height}"
    subprocess.run(
        ["gst-launch-1.0", "-q", "filesrc", "location=" + path, "!", decoder, "!", "videoconvert", "!"]
        + ["videoscale", "!", caps, "!", "pngenc", "!", "filesink", "location=" + out],
        check=True,
    )
    return out


def witnesses(program, path, row, code):
    """Who sees this code, reader by reader."""
    seen = [family for family, readers in FAMILIES.items()
            if any(code in scan_codes(program, path, reader) for reader in readers)]
    width, height = int(row["width"]), int(row["height"])
    with tempfile.TemporaryDirectory() as folder:
        sizes = [path] + [scaled(path, int(width * by), int(height * by), folder) for by in (0.5, 2)]
        if any(zbar_has(zbar_text(size), code) for size in sizes):
            seen.append("zbar")
    return seen


def invented(program, path, row, codes):
    """The codes that neither the manifest nor a second reader knows."""
    known = listed(row, "payloads", "quirc", "zbar")
    for code in codes:
        if any(same(code, payload) for payload in known):
            continue
        seen = witnesses(program, path, row, code)
        print(f"NOT LISTED {row['file']}: {code[:60]} seen by {', '.join(seen)}")
        if len(seen) < 2:
            yield code


def main(program, folder):
    manifest = os.path.join(folder, "manifest.tsv")
    if not os.path.exists(manifest):
        print("SKIPPED: no photographs of QR codes beside the project")
        return SKIPPED
    for peer in ("zbarimg", "ZXingReader"):
        if shutil.which(peer) is None:
            print(f"SKIPPED: no {peer} to compare with")
            return SKIPPED
    with open(manifest, newline="", encoding="utf-8") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    full = collections.Counter()
    inventions = 0
    for row in rows:
        path = os.path.join(folder, row["file"])
        codes = scan_codes(program, path)
        inventions += len(list(invented(program, path, row, codes)))
        if listed(row, "payloads"):
            full["scan"] += read_in_full(row, codes)
            text = zbar_text(path)
            full["zbarimg"] += all(zbar_has(text, payload) for payload in listed(row, "payloads"))
            full["ZXingReader"] += read_in_full(row, list(zxing_codes(path)))
    pictures = sum(bool(listed(row, "payloads")) for row in rows)
    print(f"read in full, of {pictures}: {dict(full)}; {inventions} codes that nobody else sees")
    more = full["scan"] > full["zbarimg"] and full["scan"] > full["ZXingReader"]
    return 0 if more and inventions == 0 else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
