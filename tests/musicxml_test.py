#!/usr/bin/python3
"""MusicXML read back by programs that are not ours.

    tests/musicxml_test.py QUILLON_EXPORT [RANDOM_TUNES [SEED]]

The examples, the tunes of the tune book and random ones are exported as MusicXML and packed. The
archives are opened by Python's zipfile; what the container names must be the unpacked document. All
documents must be valid. The schema is taken out of MuseScore's program, which has version 3.1 of it
inside; without that program the tunes are not validated, which is said.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
import zipfile
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests/model"))
import random_midi_tunes  # noqa: E402

MIME_TYPE = b"application/vnd.recordare.musicxml"
LONGEST_MODULE = 200_000  # bytes of the compressed schema

export = pathlib.Path(sys.argv[1]).resolve()
random_count = int(sys.argv[2]) if len(sys.argv) > 2 else 40
seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
failures = []


def fail(name, reason):
    failures.append(name)
    print(f"{name}: {reason}")


def schema_in(program, folder):
    """Writes the schema that a program has inside, as files; gives the main one's path."""
    data = pathlib.Path(program).read_bytes()
    for name, namespace in (
        ("xml", b'targetNamespace="http://www.w3.org/XML/1998/namespace"'),
        ("xlink", b'targetNamespace="http://www.w3.org/1999/xlink"'),
    ):
        start = data.rindex(b"<?xml", 0, data.index(namespace))
        end = data.index(b"</xs:schema>", start) + len(b"</xs:schema>")
        (folder / f"{name}.xsd").write_bytes(data[start:end])
    for place in re.finditer(rb"x[\x01\x5e\x9c\xda]", data):
        try:
            text = zlib.decompressobj().decompress(
                data[place.start() : place.start() + LONGEST_MODULE]
            )
        except zlib.error:
            continue
        if b"<xs:schema" in text[:300] and b"score-partwise" in text:
            main = folder / "musicxml.xsd"
            main.write_bytes(text.replace(b"http://www.musicxml.org/xsd/", b""))
            return main
    return None


def tunes_in(folder):
    """The files to export: those of the tree, and random ones, which may be impossible to play."""
    for pattern in ("examples/*.gui", "examples/*.bjo", "examples/*.bss", "tests/exchange/tunes/*"):
        yield from ((path, True) for path in sorted(ROOT.glob(pattern)))
    for number in range(seed, seed + random_count):
        strings, data = random_midi_tunes.random_tune(number)
        path = folder / f"random{number}.{random_midi_tunes.EXTENSIONS[strings]}"
        path.write_bytes(data)
        yield path, False


def exported(tune, out):
    return subprocess.run([export, tune, "-o", out], capture_output=True).returncode == 0


def check_archive(packed, plain):
    with zipfile.ZipFile(packed) as archive:
        if archive.testzip():
            fail(packed.name, f"{archive.testzip()} is damaged")
        first = archive.infolist()[0]
        if (first.filename, first.compress_type) != ("mimetype", zipfile.ZIP_STORED):
            fail(packed.name, "the type does not stand first, uncompressed")
        if archive.read("mimetype") != MIME_TYPE:
            fail(packed.name, "the type is not right")
        container = xml.etree.ElementTree.fromstring(archive.read("META-INF/container.xml"))
        path = container.find("rootfiles/rootfile").get("full-path")
        if archive.read(path) != plain.read_bytes():
            fail(packed.name, "the score is not the one that is not packed")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        documents = []
        for tune, possible in tunes_in(folder):
            plain, packed = folder / f"{tune.name}.musicxml", folder / f"{tune.name}.mxl"
            if exported(tune, plain) and exported(tune, packed):
                check_archive(packed, plain)
                documents.append(plain)
            elif possible:
                fail(tune.name, "it cannot be exported")
        program = shutil.which("musescore3")
        if program:
            validate(documents, schema_in(program, folder))
        else:
            print("not validated: MuseScore 3 is not installed")
        print(f"{len(documents)} scores, {len(failures)} failures")
    sys.exit(1 if failures else 0)


def validate(documents, schema):
    for start in range(0, len(documents), 100):
        command = ["xmllint", "--noout", "--nonet", "--schema", schema]
        done = subprocess.run(
            command + documents[start : start + 100], capture_output=True, text=True
        )
        for line in done.stderr.splitlines():
            if not line.endswith(" validates"):
                fail("invalid", line)


main()
