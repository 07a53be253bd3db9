#!/usr/bin/python3
"""Self-test of the corpus tools: make_corpus.py, compare.py and audit.py.

Usage: /usr/bin/python3 tests/host/dxf/corpus/selftest.py [-v]

Builds the corpus in a temporary folder and checks that:
  - building it twice gives the same bytes, and every file holds what its
    release allows;
  - compare.py finds each file equal to itself, to an ezdxf re-save of it
    (strict), and to a renumbered build with --ignore-handles;
  - compare.py catches deliberate changes made with ezdxf on a saved copy:
    a moved vertex, a removed extended data item, a changed layer colour, a
    deleted xrecord, a renamed dictionary entry, changed Chinese text, a
    retargeted pointer behind renumbered handles, a changed header variable,
    and reports entity order and added table entries in strict mode only;
  - audit.py passes on each corpus file and fails on a broken one;
  - roundtrip.py passes a saver that keeps the file and fails others.

Exit status 0 when all checks pass, 1 otherwise.
"""

import contextlib
import io
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)

import ezdxf_fixes  # noqa: E402,F401  (before any drawing is loaded)
import ezdxf  # noqa: E402
import audit  # noqa: E402
import compare  # noqa: E402
import make_corpus  # noqa: E402

PYTHON = "/usr/bin/python3"
CORPUS = {}  # short name -> path
WORK = None


def setUpModule():
    global WORK
    WORK = tempfile.mkdtemp(prefix="zepk-dxf-corpus-")
    for path in make_corpus.make_corpus(os.path.join(WORK, "corpus")):
        name = os.path.basename(path)[len("corpus_"):-len(".dxf")]
        CORPUS[name] = path


def tearDownModule():
    if WORK and os.path.isdir(WORK):
        shutil.rmtree(WORK)


def run_compare(*args):
    """compare.py in this process: (exit status, printed report)."""
    out = io.StringIO()
    with contextlib.redirect_stdout(out), contextlib.redirect_stderr(out):
        status = compare.main([str(a) for a in args])
    return status, out.getvalue()


def run_audit(*args):
    out = io.StringIO()
    with contextlib.redirect_stdout(out):
        status = audit.main([str(a) for a in args])
    return status, out.getvalue()


def edited_copy(name, edit, tag):
    """Load a corpus file, apply edit(doc), save it beside; return the path."""
    doc = ezdxf.readfile(CORPUS[name])
    edit(doc)
    path = os.path.join(WORK, f"{name}_{tag}.dxf")
    doc.saveas(path)
    return path


def find(doc, key):
    """The model space entity that carries ZEPK extended data 'station KEY'."""
    for e in doc.modelspace():
        if e.has_xdata("ZEPK"):
            first = e.get_xdata("ZEPK")[0].value
            if first.endswith(f" {key}"):
                return e
    raise LookupError(key)


class CorpusContent(unittest.TestCase):
    def test_files_per_release(self):
        self.assertEqual(
            {n: ezdxf.readfile(p).dxfversion for n, p in CORPUS.items()},
            {"r12": "AC1009", "r2000": "AC1015", "r2004_cp936": "AC1018",
             "r2010": "AC1024", "r2018": "AC1032"})

    def test_building_twice_gives_the_same_bytes(self):
        again = make_corpus.make_corpus(os.path.join(WORK, "again"))
        for path in again:
            with open(path, "rb") as f1, open(os.path.join(WORK, "corpus", os.path.basename(path)), "rb") as f2:
                self.assertEqual(f1.read(), f2.read(), path)

    def test_each_release_holds_what_it_supports(self):
        common = {"LINE", "CIRCLE", "ARC", "POLYLINE", "POINT", "TEXT", "INSERT", "3DFACE", "SOLID", "TRACE"}
        newer = common | {"ELLIPSE", "LWPOLYLINE", "SPLINE", "MTEXT", "RAY", "XLINE", "HATCH", "WIPEOUT",
                          "REGION", "3DSOLID", "DIMENSION"}
        for name, path in CORPUS.items():
            doc = ezdxf.readfile(path)
            types = {e.dxftype() for e in doc.modelspace()}
            self.assertTrue((common if name == "r12" else newer) <= types, (name, sorted(types)))
            kinds = {p.dxf.flags & 0x7E for p in doc.modelspace().query("POLYLINE")}
            self.assertTrue({0, 2, 4, 8, 16, 64} <= kinds, (name, kinds))  # 2D, fit, spline, 3D, mesh, face
            self.assertTrue(doc.layers.get("LOCKED" if name in ("r12", "r2000") else "锁定图层").is_locked())
            self.assertTrue(doc.layers.get("FROZEN" if name in ("r12", "r2000") else "冻结图层").is_frozen())
            self.assertIn("ZEPK", doc.appids)
            self.assertTrue(any(len(lay) for lay in doc.layouts if not lay.is_modelspace), name)
            if name != "r12":
                self.assertIn("ZEPK_DATA", doc.rootdict)
                self.assertTrue(doc.rootdict["ZEPK_DATA"].is_hard_owner)
                self.assertFalse(doc.rootdict["ZEPK_SOFT"].is_hard_owner)
                self.assertEqual(len(doc.groups), 2)
                self.assertTrue(any(e.has_extension_dict for e in doc.modelspace()))
                self.assertTrue(doc.modelspace().query("HATCH[associative==1]"))
                self.assertTrue(doc.modelspace().query("ZEPK_CUSTOM_ENTITY"))
                self.assertEqual(doc.rootdict["ZEPK_SOFT"]["CUSTOM"].dxftype(), "ZEPK_CUSTOM_OBJECT")
                self.assertEqual(doc.classes.get("ZEPK_CUSTOM_ENTITY").dxf.is_an_entity, 1)

    def test_chinese_survives_code_page_936(self):
        path = CORPUS["r2004_cp936"]
        with open(path, "rb") as f:
            raw = f.read()
        self.assertIn("测量点".encode("gbk"), raw)
        self.assertIn(b"ANSI_936", raw)
        doc = ezdxf.readfile(path)
        self.assertIn("等高线", doc.layers)
        self.assertIn("第一行", doc.modelspace().query("MTEXT")[0].text)


class CompareFindsEqual(unittest.TestCase):
    def test_each_file_equals_itself(self):
        for name, path in CORPUS.items():
            for extra in ([], ["--strict"], ["--strict", "--ignore-handles"]):
                status, report = run_compare(path, path, *extra)
                self.assertEqual(status, 0, f"{name} {extra}\n{report}")

    def test_ezdxf_resave_is_strictly_equal(self):
        for name in CORPUS:
            copy = edited_copy(name, lambda doc: None, "resaved")
            status, report = run_compare(CORPUS[name], copy, "--strict")
            self.assertEqual(status, 0, report)

    def test_renumbered_build_equal_only_when_handles_ignored(self):
        renumbered = make_corpus.make_corpus(os.path.join(WORK, "renumbered"), handle_offset=41)
        for path in renumbered:
            name = os.path.basename(path)[len("corpus_"):-len(".dxf")]
            status, report = run_compare(CORPUS[name], path, "--strict")
            self.assertEqual(status, 1, name)
            self.assertIn("handle #", report)
            status, report = run_compare(CORPUS[name], path, "--strict", "--ignore-handles")
            self.assertEqual(status, 0, report)

    def test_command_line(self):
        path = CORPUS["r2000"]
        done = subprocess.run([PYTHON, os.path.join(HERE, "compare.py"), path, path, "--strict"],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertIn("equal", done.stdout)
        done = subprocess.run([PYTHON, os.path.join(HERE, "compare.py"), path, os.path.join(WORK, "missing.dxf")],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 2)
        self.assertIn("cannot read", done.stderr)


class CompareCatchesChanges(unittest.TestCase):
    def assertCaught(self, name, copy, *needles, args=("--strict",)):
        status, report = run_compare(CORPUS[name], copy, *args)
        self.assertEqual(status, 1, f"not caught:\n{report}")
        for needle in needles:
            self.assertIn(needle, report)
        return report

    def test_moved_lwpolyline_vertex(self):
        def edit(doc):
            pl = doc.modelspace().query("LWPOLYLINE[elevation==12.5]")[0]
            points = list(pl.get_points("xyseb"))
            x, y, s, e, b = points[2]
            points[2] = (x + 1e-6, y, s, e, b)
            pl.set_points(points, "xyseb")
        for name in ("r2000", "r2018"):
            report = self.assertCaught(name, edited_copy(name, edit, "vertex"), "LWPOLYLINE", "points", "[2][0]")
            self.assertEqual(report.count("\n  "), 1, report)  # exactly that one difference

    def test_moved_polyline_vertex(self):
        def edit(doc):
            pl = find(doc, 3)  # the closed 2D polyline
            v = pl.vertices[1]
            v.dxf.location = v.dxf.location + (0, 0.001, 0)
        for name in ("r12", "r2010"):
            self.assertCaught(name, edited_copy(name, edit, "pvertex"), "VERTEX", "attribute location")

    def test_change_below_tolerance_is_equal(self):
        def edit(doc):
            line = find(doc, 0)
            line.dxf.end = line.dxf.end + (1e-12, 0, 0)
        copy = edited_copy("r2000", edit, "tiny")
        self.assertEqual(run_compare(CORPUS["r2000"], copy, "--strict")[0], 0)
        self.assertEqual(run_compare(CORPUS["r2000"], copy, "--tolerance", "1e-15")[0], 1)

    def test_removed_xdata_item(self):
        def edit(doc):
            line = find(doc, 0)
            tags = [(t.code, t.value) for t in line.get_xdata("ZEPK") if t.code != 1040]
            line.set_xdata("ZEPK", tags)
        for name in ("r12", "r2004_cp936"):
            self.assertCaught(name, edited_copy(name, edit, "xdata"), "extended data ZEPK", "items in A")

    def test_removed_xdata_application(self):
        def edit(doc):
            line = find(doc, 0)
            line.discard_xdata("ZEPK_SURVEY")
        self.assertCaught("r2010", edited_copy("r2010", edit, "xdata_app"), "extended data ZEPK_SURVEY: only in A")

    def test_changed_layer_colour(self):
        def edit(doc):
            doc.layers.get("等高线").color = 4
        report = self.assertCaught("r2018", edited_copy("r2018", edit, "layer"),
                                   "TABLE LAYER '等高线'", "attribute color: 3 != 4")
        self.assertEqual(run_compare(CORPUS["r2018"], edited_copy("r2018", edit, "layer"))[0], 1, report)

    def test_deleted_xrecord(self):
        def edit(doc):
            doc.rootdict["ZEPK_DATA"]["SURVEY"].remove("STATION_2")
        self.assertCaught("r2000", edited_copy("r2000", edit, "xrecord"),
                          "NOD/ZEPK_DATA/SURVEY", "entries.STATION_2: only in A", "XRECORD", "only in A",
                          args=())

    def test_deleted_xrecord_in_extension_dictionary(self):
        def edit(doc):
            find(doc, 1).get_extension_dict().dictionary.remove("ZEPK_PROPS")
        self.assertCaught("r2010", edited_copy("r2010", edit, "xdict"), "entries.ZEPK_PROPS: only in A")

    def test_changed_xrecord_tag(self):
        def edit(doc):
            xrec = doc.rootdict["ZEPK_DATA"]["SETTINGS"]
            tags = list(xrec.tags)
            tags[2] = (40, 0.5)
            xrec.reset(tags)
        self.assertCaught("r2004_cp936", edited_copy("r2004_cp936", edit, "xrectag"), "tags[2][1]: 0.25 != 0.5")

    def test_renamed_dictionary_entry(self):
        def edit(doc):
            soft = doc.rootdict["ZEPK_SOFT"]
            obj = soft["LINK"]
            soft.remove("LINK")  # a soft owner: the xrecord stays
            soft.add("LINKED", obj)
        report = self.assertCaught("r2018", edited_copy("r2018", edit, "rename"),
                                   "entries.LINK: only in A", "entries.LINKED: only in B")
        self.assertIn("NOD/ZEPK_SOFT", report)

    def test_changed_chinese_text(self):
        def edit(doc):
            mtext = find(doc, 12)
            mtext.text = mtext.text.replace("红色", "绿色")
        self.assertCaught("r2004_cp936", edited_copy("r2004_cp936", edit, "text"), "MTEXT", "text:")

    def test_retargeted_pointer_with_renumbered_handles(self):
        renumbered = os.path.join(WORK, "renum2")
        make_corpus.make_corpus(renumbered, handle_offset=5)
        doc = ezdxf.readfile(os.path.join(renumbered, "corpus_r2010.dxf"))
        xrec = doc.rootdict["ZEPK_DATA"]["SETTINGS"]
        tags = [(c, v) if c != 340 else (c, doc.layers.get("0").dxf.handle) for c, v in xrec.tags]
        xrec.reset(tags)
        copy = os.path.join(WORK, "renum2_pointer.dxf")
        doc.saveas(copy)
        self.assertCaught("r2010", copy, "SETTINGS", "points to #", args=("--strict", "--ignore-handles"))

    def test_lost_reactor_of_a_hatch_boundary(self):
        def edit(doc):
            hatch = doc.modelspace().query("HATCH[associative==1]")[0]
            boundary = doc.entitydb[hatch.paths[0].source_boundary_objects[0]]
            boundary.discard_reactor_handle(hatch.dxf.handle)
        self.assertCaught("r2018", edited_copy("r2018", edit, "reactor"), "LWPOLYLINE", "reactors:")

    def test_changed_application_data(self):
        def edit(doc):
            line = doc.modelspace().query("LINE[thickness==2.5]")[0]
            line.set_app_data("ZEPK", [(1, "app data"), (40, 2.5)])
        self.assertCaught("r2000", edited_copy("r2000", edit, "appdata"), "application data {ZEPK")

    def test_changed_header_variable_but_not_the_save_date(self):
        def edit(doc):
            doc.header["$LTSCALE"] = 3.0
            doc.header["$TDUPDATE"] = 2460000.5
        report = self.assertCaught("r2000", edited_copy("r2000", edit, "header"), "HEADER $LTSCALE: 2.0 != 3.0")
        self.assertNotIn("$TDUPDATE", report)

    def test_entity_order_only_in_strict_mode(self):
        def edit(doc):
            msp = doc.modelspace()
            line = find(doc, 0)
            msp.unlink_entity(line)
            msp.add_entity(line)
        copy = edited_copy("r2010", edit, "order")
        self.assertCaught("r2010", copy, "entity order differs")
        self.assertEqual(run_compare(CORPUS["r2010"], copy)[0], 0)

    def test_added_layer_only_in_strict_mode(self):
        def edit(doc):
            doc.layers.add("EXTRA", color=2)
        copy = edited_copy("r2000", edit, "extra")
        self.assertCaught("r2000", copy, "entry 'EXTRA' only in B")
        self.assertEqual(run_compare(CORPUS["r2000"], copy)[0], 0)

    def test_changed_data_of_an_unknown_class(self):
        from ezdxf.lldxf.types import DXFTag

        def edit(doc):
            obj = doc.rootdict["ZEPK_SOFT"]["CUSTOM"]
            data = obj.xtags.subclasses[1]
            i = next(i for i, t in enumerate(data) if t.code == 90)
            data[i] = DXFTag(90, 43)
            ent = doc.modelspace().query("ZEPK_CUSTOM_ENTITY")[0]
            ent.xtags.subclasses[2].pop()  # drop the pointer at the end
        self.assertCaught("r2010", edited_copy("r2010", edit, "custom"),
                          "ZEPK_CUSTOM_OBJECT", "42 != 43", "ZEPK_CUSTOM_ENTITY", "tags[2]", "(330, ")

    def test_dropped_class(self):
        def edit(doc):
            del doc.classes.classes[("ZEPK_CUSTOM_OBJECT", "ZepkCustomObject")]
        self.assertCaught("r2018", edited_copy("r2018", edit, "class"), "CLASSES ZEPK_CUSTOM_OBJECT", "only in A")

    def test_deleted_entity_and_group_member(self):
        def edit(doc):
            doc.modelspace().delete_entity(find(doc, 4))  # a block reference in the group
        self.assertCaught("r2018", edited_copy("r2018", edit, "delete"), "only in A", "members")


class RoundTrip(unittest.TestCase):
    def run_roundtrip(self, *args):
        return subprocess.run([PYTHON, os.path.join(HERE, "roundtrip.py"), *args], capture_output=True, text=True)

    def test_faithful_saver_passes(self):
        done = self.run_roundtrip("--only", "r12", "--only", "r2018", "--", "cp", "{in}", "{out}")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(done.stdout.count("ok "), 2, done.stdout)

    def test_saver_that_changes_a_name_fails_with_the_report(self):
        done = self.run_roundtrip("--only", "r2004", "--", "sh", "-c",
                                  'sed "s/^ZEPK_DASHED$/ZEPK_DASHES/" "$0" > "$1"', "{in}", "{out}")
        self.assertEqual(done.returncode, 1, done.stdout + done.stderr)
        self.assertIn("entry 'ZEPK_DASHED' only in A", done.stdout)

    def test_saver_that_saves_nothing_fails(self):
        done = self.run_roundtrip("--only", "r2000", "--", "true", "{out}")
        self.assertEqual(done.returncode, 1)
        self.assertIn("saved nothing", done.stdout)


class Audit(unittest.TestCase):
    def test_corpus_passes(self):
        status, report = run_audit(*CORPUS.values())
        self.assertEqual(status, 0, report)
        self.assertEqual(report.count(": ok ("), len(CORPUS), report)

    def test_undefined_linetype_needs_a_fix_and_fails(self):
        def edit(doc):
            find(doc, 0).dxf.linetype = "NO_SUCH_LINETYPE"
        copy = edited_copy("r2000", edit, "audit")
        status, report = run_audit(copy)
        self.assertEqual(status, 1, report)
        self.assertIn("fix", report)
        self.assertEqual(run_audit(copy, "--allow-fixes")[0], 0)

    def test_unreadable_file(self):
        bad = os.path.join(WORK, "garbage.dxf")
        with open(bad, "w") as f:
            f.write("not a drawing\n")
        done = subprocess.run([PYTHON, os.path.join(HERE, "audit.py"), bad], capture_output=True, text=True)
        self.assertEqual(done.returncode, 2, done.stdout)


if __name__ == "__main__":
    unittest.main(verbosity=2 if "-v" in sys.argv else 1, argv=[sys.argv[0]])
