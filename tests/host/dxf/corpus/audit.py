#!/usr/bin/python3
"""Check a DXF drawing with ezdxf's auditor.

Usage: /usr/bin/python3 audit.py FILE.dxf [FILE.dxf ...] [--allow-fixes]

Loads each file with ezdxf, runs its audit and prints every error and every
fix the auditor reports, with the entity concerned.

Exit status: 0 when every file is clean, 1 when a file has an error or needs
a fix, 2 when a file cannot be read at all.

Fixes count as failures: a fix means the auditor had to repair something in
the file (a dangling owner, a pointer to nothing, an invalid value), and a
drawing our host writes must need none. --allow-fixes reports them but lets
them pass, for drawings made elsewhere.

The exception is what the reader itself makes up while loading: ezdxf creates
objects the file does not contain (an R12 file has no block records, an
INSERT without attributes gets a SEQEND), and the auditor sometimes repairs
those. A fix on an object whose handle does not occur in the file is listed
as a reader artefact and never fails the check.
"""

import argparse
import re
import sys

import ezdxf
from ezdxf_fixes import file_handles


def audit_file(path, allow_fixes):
    """Print the audit of one file; return its exit status."""
    try:
        doc = ezdxf.readfile(path)
    except (IOError, OSError) as exc:
        print(f"{path}: cannot read: {exc}")
        return 2
    except ezdxf.DXFError as exc:
        print(f"{path}: not a valid DXF file: {exc}")
        return 2
    in_file = file_handles(path)
    auditor = doc.audit()

    def origin(entry):
        entity = entry.entity
        if entity is None:
            return ""
        handle = entity.dxf.get("handle", "?")
        return f" [{entity.dxftype()} #{handle}]"

    def made_up(entry):
        if not in_file:
            return False
        handle = None
        if entry.entity is not None:
            handle = entry.entity.dxf.get("handle")
        else:  # a deleted entity: the message names it as TYPE(#HANDLE)
            match = re.search(r"[A-Z0-9_]+\(#([0-9A-Fa-f]+)\)", entry.message)
            handle = match.group(1) if match else None
        return handle is not None and handle.upper() not in in_file

    errors = list(auditor.errors)
    fixes = [f for f in auditor.fixes if not made_up(f)]
    artefacts = [f for f in auditor.fixes if made_up(f)]
    for entry in errors:
        print(f"{path}: error {entry.code}: {entry.message}{origin(entry)}")
    for entry in fixes:
        print(f"{path}: fix {entry.code}: {entry.message}{origin(entry)}")
    for entry in artefacts:
        print(f"{path}: reader artefact (not in the file): {entry.message}{origin(entry)}")
    failed = bool(errors) or (bool(fixes) and not allow_fixes)
    verdict = "FAILED" if failed else "ok"
    print(f"{path}: {verdict} ({doc.dxfversion}, {len(errors)} error(s), {len(fixes)} fix(es)"
          + (f", {len(artefacts)} reader artefact(s)" if artefacts else "") + ")")
    return 1 if failed else 0


def main(argv=None):
    parser = argparse.ArgumentParser(
        description="Run ezdxf's audit on DXF files (exit 1 on errors or needed fixes).")
    parser.add_argument("files", nargs="+", metavar="FILE.dxf")
    parser.add_argument("--allow-fixes", action="store_true",
                        help="report fixes the auditor made but do not fail on them")
    args = parser.parse_args(argv)
    status = 0
    for path in args.files:
        status = max(status, audit_file(path, args.allow_fixes))
    return status


if __name__ == "__main__":
    sys.exit(main())
