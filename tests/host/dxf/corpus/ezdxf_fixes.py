"""Shared helpers for the corpus scripts, and workarounds for ezdxf 0.18.1.

Import this module before loading any drawing.
"""

import ezdxf
from ezdxf.entities import dxfgroups


class _OrderedSet(dict):
    def add(self, value):
        self[value] = None


def _load_group(self, tags):
    # ezdxf 0.18.1 keeps the members of a GROUP in a set while loading, which
    # loses their order (and makes it vary from run to run). Keep file order.
    members = _OrderedSet()
    for code, value in tags:
        if code == 340:
            members.add(value)
    self._handles = members


dxfgroups.DXFGroup.load_group = _load_group

# Saving copies must not stamp the clock or new GUIDs into them.
ezdxf.options.write_fixed_meta_data_for_testing = True


def file_handles(path):
    """The handles an ASCII DXF file itself assigns (group codes 5 and 105
    outside the HEADER), read from the raw text: the loader invents more
    (R12 block records, SEQENDs of inserts without attributes, ...)."""
    with open(path, "rb") as f:
        data = f.read()
    if data[18:22] == b"\r\n\x1a\x00":  # the sentinel that starts a binary DXF file
        return set()
    lines = [line.rstrip(b"\r") for line in data.split(b"\n")]
    handles = set()
    section = None
    for i in range(0, len(lines) - 1, 2):
        code = lines[i].strip()
        value = lines[i + 1].strip()
        if code == b"2" and i >= 2 and lines[i - 2].strip() == b"0" and lines[i - 1].strip() == b"SECTION":
            section = value
        elif code in (b"5", b"105") and section != b"HEADER":
            handles.add(value.decode("ascii", "replace").upper())
    return handles
