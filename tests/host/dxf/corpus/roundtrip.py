#!/usr/bin/python3
"""Round trip of the whole corpus through a program that opens and saves DXF.

Usage: /usr/bin/python3 roundtrip.py [--keep DIR] [--ignore-handles] [--only NAME]
                                     -- COMMAND ARG... {in} ... {out} ...

Builds the corpus, and for each drawing runs COMMAND with {in} replaced by
the corpus file and {out} by the path it must save to; then checks
compare.py {in} {out} --strict (plus --ignore-handles if given) and
audit.py {out}. Prints one line per drawing and the reports of the ones
that failed.

Example (the host opens and saves through a script):

    roundtrip.py -- build/zepk -e '(zepk-test-resave "{in}" "{out}")'

Exit status: 0 when every drawing comes back equal and clean, 1 otherwise,
2 on bad arguments.
"""

import argparse
import contextlib
import io
import os
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)

import ezdxf_fixes  # noqa: E402,F401
import audit  # noqa: E402
import compare  # noqa: E402
import make_corpus  # noqa: E402


def captured(func, argv):
    out = io.StringIO()
    with contextlib.redirect_stdout(out), contextlib.redirect_stderr(out):
        status = func(argv)
    return status, out.getvalue()


def main(argv=None):
    parser = argparse.ArgumentParser(description="Open and save every corpus drawing with COMMAND and check it.")
    parser.add_argument("--keep", metavar="DIR", help="work in DIR and keep the files (default: a temporary folder)")
    parser.add_argument("--ignore-handles", action="store_true", help="allow the saver to renumber handles")
    parser.add_argument("--only", metavar="NAME", action="append",
                        help="only the corpus file whose name contains NAME (repeatable)")
    parser.add_argument("command", nargs=argparse.REMAINDER, help="-- COMMAND with {in} and {out}")
    args = parser.parse_args(argv)
    command = args.command[1:] if args.command[:1] == ["--"] else args.command
    if not command or not any("{out}" in part for part in command):
        parser.error("give the saving command after --, with {out} (and usually {in}) in it")

    work = args.keep or tempfile.mkdtemp(prefix="zepk-dxf-roundtrip-")
    failed = 0
    try:
        corpus = make_corpus.make_corpus(os.path.join(work, "corpus"))
        os.makedirs(os.path.join(work, "saved"), exist_ok=True)
        for original in corpus:
            name = os.path.basename(original)
            if args.only and not any(o in name for o in args.only):
                continue
            saved = os.path.join(work, "saved", name)
            argv_run = [part.replace("{in}", original).replace("{out}", saved) for part in command]
            done = subprocess.run(argv_run, capture_output=True, text=True)
            if done.returncode != 0 or not os.path.exists(saved):
                failed += 1
                print(f"FAIL {name}: the command exited with {done.returncode}"
                      + ("" if os.path.exists(saved) else " and saved nothing"))
                print(done.stdout + done.stderr)
                continue
            cmp_args = [original, saved, "--strict"] + (["--ignore-handles"] if args.ignore_handles else [])
            cmp_status, cmp_report = captured(compare.main, cmp_args)
            aud_status, aud_report = captured(audit.main, [saved])
            if cmp_status == 0 and aud_status == 0:
                print(f"ok   {name}")
            else:
                failed += 1
                print(f"FAIL {name}")
                if cmp_status != 0:
                    print(cmp_report, end="")
                if aud_status != 0:
                    print(aud_report, end="")
    finally:
        if not args.keep:
            shutil.rmtree(work, ignore_errors=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
