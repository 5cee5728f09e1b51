#!/usr/bin/env python3
"""Writes the archives beside it anew. They are made by another program than the one that takes them apart."""

import os
import zipfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
UPDATER = "OvrynUpdate.exe"
NEW = b"the new updater\n" * 64


def write(archive, entries):
    path = os.path.join(FOLDER, archive)
    with zipfile.ZipFile(path, "w") as out:
        for name, content, method, mode in entries:
            info = zipfile.ZipInfo(name, (2018, 4, 17, 12, 0, 0))
            info.compress_type = method
            info.create_system = 3
            info.external_attr = mode << 16
            out.writestr(info, content)
    return path


FILE = 0o100755
LINK = 0o120777
STORED = zipfile.ZIP_STORED
DEFLATED = zipfile.ZIP_DEFLATED

deflated = write("updater.zip", [(UPDATER, NEW, DEFLATED, FILE)])
stored = write("updater-stored.zip", [("readme.txt", b"hello\n", STORED, FILE), (UPDATER, NEW, STORED, FILE)])
write("hostile-names.zip", [
    ("../evil", b"evil\n", DEFLATED, FILE),
    ("../" + UPDATER, b"evil\n", DEFLATED, FILE),
    ("/ovryn-evil/evil", b"evil\n", DEFLATED, FILE),
    ("sub/" + UPDATER, b"evil\n", DEFLATED, FILE),
    (UPDATER, NEW, DEFLATED, FILE),
])
write("without-updater.zip", [("readme.txt", b"hello\n", DEFLATED, FILE),
                              ("sub/" + UPDATER, b"another\n", DEFLATED, FILE)])
write("updater-is-a-link.zip", [(UPDATER, b"../evil", STORED, LINK)])

with open(deflated, "rb") as whole, open(os.path.join(FOLDER, "cut-off.zip"), "wb") as out:
    out.write(whole.read()[:-40])
with open(stored, "rb") as whole, open(os.path.join(FOLDER, "damaged-content.zip"), "wb") as out:
    out.write(whole.read().replace(b"the new updater", b"the bad updater"))
