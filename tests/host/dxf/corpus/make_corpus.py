#!/usr/bin/python3
"""Build the DXF round-trip corpus: one drawing per DXF release.

Usage: /usr/bin/python3 make_corpus.py OUTDIR [--handle-offset N]

Writes into OUTDIR (created if missing):

    corpus_r12.dxf          AC1009, code page 1252
    corpus_r2000.dxf        AC1015, code page 1252
    corpus_r2004_cp936.dxf  AC1018, code page 936 (GBK), Chinese names and texts
    corpus_r2010.dxf        AC1024, UTF-8, Chinese names and texts
    corpus_r2018.dxf        AC1032, UTF-8, Chinese names and texts

and prints the paths written, one a line.

--handle-offset N skips N handles before the content is created: the same
drawings with their handles renumbered (to test compare.py --ignore-handles).

Every drawing holds as much of the same content as its release allows
(see README.md for the table). The output is deterministic: no clock, no
random GUID, a seeded generator for the survey points, and every object is
created in a fixed order so that handles come out the same on every run.
Running the script twice gives byte-identical files.
"""

import argparse
import datetime
import math
import os
import random
import sys

import ezdxf

# Fixed creation/update dates, zero GUIDs and a constant ezdxf marker: this
# must be set before the first document is created.
ezdxf.options.write_fixed_meta_data_for_testing = True

from ezdxf import colors  # noqa: E402
from ezdxf.enums import MTextEntityAlignment, TextEntityAlignment  # noqa: E402
from ezdxf.lldxf.const import DXF2000, DXF2004, DXF2007, DXF2013  # noqa: E402
from ezdxf.math import BSpline, Vec3  # noqa: E402
from ezdxf.render import forms  # noqa: E402

RELEASES = [
    # file name, DXF release name, file encoding (None: release default)
    ("corpus_r12.dxf", "R12", None),
    ("corpus_r2000.dxf", "R2000", None),
    ("corpus_r2004_cp936.dxf", "R2004", "gbk"),
    ("corpus_r2010.dxf", "R2010", None),
    ("corpus_r2018.dxf", "R2018", None),
]

APP = "ZEPK"
APP2 = "ZEPK_SURVEY"


class Ctx:
    """What the release being built can hold."""

    def __init__(self, doc):
        self.doc = doc
        v = doc.dxfversion
        self.r12 = v < DXF2000
        self.r2000 = v >= DXF2000
        self.r2004 = v >= DXF2004
        self.r2007 = v >= DXF2007
        self.r2013 = v >= DXF2013
        # Chinese where the file can carry it: code page 936 or UTF-8.
        self.cjk = doc.encoding == "gbk" or self.r2007

    def t(self, latin, chinese=None):
        """Text for this release: Chinese where the file can carry it."""
        if self.cjk and chinese is not None:
            return chinese
        return latin

    def name(self, latin, chinese=None):
        """A table entry name; R12 names are upper-case ASCII."""
        if self.r12:
            return latin.upper()
        return self.t(latin, chinese)


# ---------------------------------------------------------------- tables

def build_tables(c):
    doc = c.doc
    doc.appids.new(APP)
    doc.appids.new(APP2)

    doc.linetypes.add(
        "ZEPK_DASHED", [0.75, 0.5, -0.25], description="Dashed __ __ __"
    )
    doc.linetypes.add(
        "ZEPK_DASHDOT",
        [1.4, 0.8, -0.2, 0.0, -0.2, 0.0, -0.2],
        description="Dash dot dot __ . . __ . .",
    )
    doc.linetypes.add(
        "ZEPK_FENCE", [2.0, 1.5, -0.25, 0.0, -0.25], description="Fence"
    )

    doc.styles.new(
        c.name("ZEPK_ROMAN"),
        dxfattribs={"font": "romans.shx", "width": 0.8, "oblique": 15.0},
    )
    doc.styles.new(
        c.name("ZEPK_CJK"),
        dxfattribs={"font": "txt.shx", "bigfont": "gbcbig.shx", "height": 0.0},
    )
    doc.styles.new(
        c.name("ZEPK_FIXED"),
        dxfattribs={"font": "simplex.shx", "height": 2.5, "generation_flags": 0},
    )
    if c.r2000:
        # A complex linetype with text in the pattern, referring to a style.
        doc.linetypes.new(
            "ZEPK_GAS",
            dxfattribs={
                "description": "Gas line ---- GAS ---- GAS ----",
                "pattern": 'A,.5,-.2,["GAS",ZEPK_ROMAN,S=.1,U=0.0,X=-0.1,Y=-.05],-.25',
                "length": 0.95,
            },
        )

    layers = [
        # latin name, chinese name, aci colour, linetype, lineweight
        ("SURVEY_POINTS", "测量点", 1, "Continuous", 25),
        ("CONTOURS", "等高线", 3, "ZEPK_DASHED", 18),
        ("BOUNDARY", "界址线", 5, "ZEPK_DASHDOT", 50),
        ("ANNOTATION", "注记", 7, "Continuous", 13),
        ("HATCHING", "填充", 4, "Continuous", 9),
        ("BLOCKS", "图块", 6, "Continuous", -3),
        ("LOCKED", "锁定图层", 8, "ZEPK_FENCE", 35),
        ("FROZEN", "冻结图层", 9, "Continuous", 70),
        ("SWITCHED_OFF", "关闭图层", 30, "Continuous", 0),
        ("NO_PLOT", "不打印", 250, "Continuous", 211),
    ]
    for latin, chinese, color, ltype, lw in layers:
        doc.layers.add(
            c.name(latin, chinese), color=color, linetype=ltype, lineweight=lw
        )
    doc.layers.get(c.name("LOCKED", "锁定图层")).lock()
    doc.layers.get(c.name("FROZEN", "冻结图层")).freeze()
    doc.layers.get(c.name("SWITCHED_OFF", "关闭图层")).off()
    if c.r2000:
        doc.layers.get(c.name("NO_PLOT", "不打印")).dxf.plot = 0
    if c.r2004:
        doc.layers.get(c.name("BOUNDARY", "界址线")).rgb = (200, 120, 40)

    doc.dimstyles.new(
        c.name("ZEPK_DIM"),
        dxfattribs={
            "dimtxt": 2.5,
            "dimasz": 1.8,
            "dimexe": 1.25,
            "dimexo": 0.625,
            "dimgap": 0.625,
            "dimdec": 3,
            "dimtad": 1,
            "dimclrd": 2,
            "dimclre": 3,
            "dimclrt": 4,
            "dimlfac": 1.0,
            "dimpost": "<> m",
            "dimtih": 0,
            "dimtoh": 0,
        },
    )
    if c.r2000:
        ds = doc.dimstyles.get(c.name("ZEPK_DIM"))
        ds.dxf.dimtxsty = c.name("ZEPK_ROMAN")
        ds.dxf.dimlwd = 18
        ds.dxf.dimlwe = 13

    doc.views.new(
        c.name("ZEPK_VIEW"),
        dxfattribs={
            "height": 120.0,
            "width": 180.0,
            "center": (90.0, 60.0),
            "direction": (0.0, 0.0, 1.0),
            "target": (0.0, 0.0, 0.0),
        },
    )
    doc.ucs.new(
        c.name("ZEPK_UCS"),
        dxfattribs={
            "origin": (1000.0, 2000.0, 0.0),
            "xaxis": (math.cos(0.3), math.sin(0.3), 0.0),
            "yaxis": (-math.sin(0.3), math.cos(0.3), 0.0),
        },
    )


# ------------------------------------------------------------ xdata & xdict

def survey_xdata(c, seq, ref_handle):
    """Extended data with every kind of group an application stores."""
    return [
        (1000, c.t(f"station {seq}", f"测站 {seq}")),
        (1040, 1234.5678 + seq),
        (1070, seq),
        (1071, 100000 + seq),
        (1010, (10.0 + seq, 20.0, 30.5)),
        (1002, "{"),
        (1000, "nested"),
        (1041, 2.5),
        (1002, "{"),
        (1042, 0.75),
        (1011, (1.0, 2.0, 3.0)),
        (1012, (0.0, 0.0, 1.0)),
        (1013, (math.pi, -math.e, 0.0)),
        (1002, "}"),
        (1002, "}"),
        (1005, ref_handle),
        (1003, "0"),
        (1004, bytes.fromhex("DEADBEEF0001")),
    ]


def fill_xrecord(c, xrec, ref_handle, seq=0):
    xrec.reset(
        [
            (1, c.t(f"record {seq}", f"记录 {seq}")),
            (10, (1.5 + seq, 2.5, 3.5)),
            (40, 0.125 * (seq + 1)),
            (70, 7 + seq),
            (90, 70000 + seq),
            (280, 1),
            (290, 1),
            (300, "key=value"),
            (330, ref_handle),
            (340, ref_handle),
            (1, "last"),
        ]
    )


def attach_xdict(c, entity, ref_handle, seq):
    xdict = entity.new_extension_dict()
    fill_xrecord(c, xdict.add_xrecord("ZEPK_PROPS"), ref_handle, seq)
    # (ExtensionDict.add_dictionary is broken in ezdxf 0.18.1.)
    sub = xdict.dictionary.add_new_dict("ZEPK_HISTORY", hard_owned=True)
    fill_xrecord(c, sub.add_xrecord("V1"), ref_handle, seq + 10)
    return xdict


# -------------------------------------------------------------- entities

def build_blocks(c):
    doc = c.doc
    ann = c.name("ANNOTATION", "注记")
    blk = doc.blocks.new("SURVEY_POINT", base_point=(0.0, 0.0, 0.0))
    blk.add_circle((0, 0), 0.5)
    blk.add_point((0, 0))
    blk.add_line((-0.75, 0), (0.75, 0))
    blk.add_attdef(
        "PTNO", (0.8, 0.3), dxfattribs={"height": 0.5, "prompt": c.t("Point number", "点号"), "layer": ann}
    )
    blk.add_attdef(
        "ELEV", (0.8, -0.5), text="0.000",
        dxfattribs={"height": 0.4, "prompt": c.t("Elevation", "高程")},
    )
    blk.add_attdef(
        "CODE", (0.8, -1.2), text="X",
        dxfattribs={"height": 0.3, "prompt": "Code", "flags": 1},  # invisible
    )
    blk.add_attdef(
        "SURVEYOR", (0.8, -1.8), text="ZEPK",
        dxfattribs={"height": 0.3, "flags": 2},  # constant
    )

    arrow = doc.blocks.new("NORTH_ARROW", base_point=(1.0, 1.0, 0.0))
    arrow.add_solid([(1.0, 3.0), (0.5, 0.0), (1.5, 0.0)])
    arrow.add_text("N", dxfattribs={"height": 0.8, "insert": (0.7, 3.3)})

    # A block that nests another one and carries extended data.
    frame = doc.blocks.new(c.name("TITLE_FRAME", "图框"))
    frame.add_polyline2d([(0, 0), (40, 0), (40, 20), (0, 20)], close=True)
    frame.add_blockref("NORTH_ARROW", (35, 10), dxfattribs={"xscale": 1.5, "yscale": 1.5})
    frame.add_text(c.t("Survey plan", "测量图"), dxfattribs={"height": 2.0, "insert": (2, 2)})
    frame.block.set_xdata(APP, [(1000, "title frame"), (1070, 3)])


def build_lines_and_curves(c, msp, layer_of):
    lay = layer_of("BOUNDARY", "界址线")
    cont = layer_of("CONTOURS", "等高线")
    out = {}
    out["line1"] = msp.add_line((0, 0, 0), (100, 0, 0), dxfattribs={"layer": lay})
    out["line2"] = msp.add_line(
        (0, 10, 5), (100, 10, -5),
        dxfattribs={"layer": lay, "thickness": 2.5, "color": 1, "linetype": "ZEPK_DASHED", "ltscale": 0.5},
    )
    out["line3"] = msp.add_line(
        (0, 20), (100.123456789012, 20.987654321098),
        dxfattribs={"extrusion": (0, 0, -1)},
    )
    out["circle"] = msp.add_circle((50, 50), 12.5, dxfattribs={"layer": cont})
    out["circle_thick"] = msp.add_circle((80, 50, 3), 4.0, dxfattribs={"thickness": 1.0, "extrusion": (0, 0.6, 0.8)})
    out["arc"] = msp.add_arc((50, 50), 20.0, 30.0, 150.0, dxfattribs={"layer": cont})
    out["arc_cw"] = msp.add_arc((150, 50), 10.0, 300.0, 45.0, dxfattribs={"extrusion": (0, 0, -1)})
    if c.r2000:
        out["ellipse"] = msp.add_ellipse((200, 50), major_axis=(30, 10), ratio=0.4)
        out["ellipse_arc"] = msp.add_ellipse(
            (250, 50, 2), major_axis=(0, 15, 0), ratio=0.5,
            start_param=0.25, end_param=4.5, dxfattribs={"layer": cont},
        )
    return out


def build_polylines(c, msp, layer_of):
    lay = layer_of("CONTOURS", "等高线")
    out = {}
    if c.r2000:
        out["lw_closed"] = msp.add_lwpolyline(
            [(0, 100, 0.5, 1.0, 0.0), (20, 100, 1.0, 0.5, 0.5), (20, 120, 0.0, 0.0, -0.41421356237309),
             (0, 120, 0.25, 0.25, 0.0)],
            format="xyseb", close=True, dxfattribs={"layer": lay, "elevation": 12.5},
        )
        out["lw_open"] = msp.add_lwpolyline(
            [(30, 100), (40, 105), (50, 100), (60, 108)],
            dxfattribs={"const_width": 0.35, "thickness": 1.5},
        )
        out["lw_plinegen"] = msp.add_lwpolyline(
            [(70, 100, 0.0), (90, 100, 1.0), (90, 110, 0.0)], format="xyb",
            dxfattribs={"flags": 128, "linetype": "ZEPK_DASHDOT"},
        )
    # 2D polyline: bulges and widths, closed.
    out["pl2d"] = msp.add_polyline2d(
        [(100, 100, 0.2, 0.4, 0.0), (120, 100, 0.4, 0.2, 0.5), (120, 120, 0.0, 0.0, -1.0), (100, 120, 0.1, 0.1, 0.0)],
        format="xyseb", close=True, dxfattribs={"layer": lay, "default_start_width": 0.1, "default_end_width": 0.1},
    )
    # Curve-fit 2D polyline: frame vertices with tangents, fit vertices flagged 1.
    cf = msp.add_polyline2d([], dxfattribs={"flags": 2})
    frame = [Vec3(130, 100), Vec3(140, 110), Vec3(150, 100), Vec3(160, 110)]
    for i, p in enumerate(frame):
        cf.append_vertex(p, dxfattribs={"flags": 2, "tangent": 45.0 * (i % 2)})
        if i + 1 < len(frame):
            mid = p.lerp(frame[i + 1], 0.5) + Vec3(0, 1.5 if i % 2 == 0 else -1.5)
            cf.append_vertex(mid, dxfattribs={"flags": 1 | 2, "tangent": 0.0})
    out["pl_curvefit"] = cf
    # Spline-fit 2D polyline: control frame (flag 16) and computed vertices (flag 8).
    ctrl = [(170, 100), (175, 115), (185, 95), (195, 112), (200, 100)]
    sf = msp.add_polyline2d([], dxfattribs={"flags": 4, "smooth_type": 6})
    for p in BSpline(ctrl, order=4).approximate(12):
        sf.append_vertex(p, dxfattribs={"flags": 8})
    for p in ctrl:
        sf.append_vertex(p, dxfattribs={"flags": 16})
    out["pl_splinefit"] = sf
    # 3D polyline.
    out["pl3d"] = msp.add_polyline3d(
        [(0, 150, 0), (10, 155, 3.5), (20, 150, 7.25), (30, 160, 1.125)],
        dxfattribs={"layer": lay},
    )
    # Polyface mesh (a cube) and a polygon mesh grid.
    pface = msp.add_polyface()
    pface.append_faces(list(forms.cube().translate(50, 150, 0).faces_as_vertices()))
    out["polyface"] = pface
    mesh = msp.add_polymesh(size=(3, 4))
    for m in range(3):
        for n in range(4):
            mesh.set_mesh_vertex((m, n), (70 + m * 5, 150 + n * 5, math.sin(m + n)))
    out["polymesh"] = mesh
    return out


def build_splines(c, msp, layer_of):
    out = {}
    if not c.r2000:
        return out
    ctrl = [(0, 200, 0), (10, 215, 0), (20, 195, 2), (30, 212, 0), (40, 200, 1), (50, 210, 0)]
    sp = msp.add_rational_spline(
        ctrl, weights=[1.0, 0.5, 2.0, 1.0, 0.75, 1.0], degree=3,
        knots=[0, 0, 0, 0, 0.25, 0.6, 1, 1, 1, 1],
        dxfattribs={"layer": layer_of("CONTOURS", "等高线")},
    )
    out["spline_rational"] = sp
    fit = msp.add_spline(
        [(60, 200), (70, 210), (80, 198), (95, 207)],
        degree=3, dxfattribs={"color": 5},
    )
    fit.dxf.start_tangent = (1, 1, 0)
    fit.dxf.end_tangent = (1, -0.5, 0)
    out["spline_fit"] = fit
    closed = msp.add_open_spline([(100, 200), (110, 215), (125, 205), (115, 195)], degree=2)
    closed.closed = True
    out["spline_closed"] = closed
    return out


def build_points_text(c, msp, layer_of):
    ann = layer_of("ANNOTATION", "注记")
    out = {}
    out["point1"] = msp.add_point((5, 250, 1.25), dxfattribs={"layer": layer_of("SURVEY_POINTS", "测量点")})
    out["point2"] = msp.add_point((6, 251), dxfattribs={"angle": 33.0, "thickness": 0.5})
    roman = c.name("ZEPK_ROMAN")
    cjk = c.name("ZEPK_CJK")
    aligns = [
        TextEntityAlignment.LEFT, TextEntityAlignment.CENTER, TextEntityAlignment.RIGHT,
        TextEntityAlignment.MIDDLE, TextEntityAlignment.TOP_LEFT, TextEntityAlignment.TOP_CENTER,
        TextEntityAlignment.MIDDLE_RIGHT, TextEntityAlignment.BOTTOM_LEFT, TextEntityAlignment.BOTTOM_RIGHT,
    ]
    for i, align in enumerate(aligns):
        txt = msp.add_text(
            c.t(f"Text {align.name} °±Ø", f"文字 {align.name} 测量"),
            dxfattribs={"height": 2.0, "layer": ann, "style": roman if i % 2 else cjk,
                        "rotation": 15.0 * i},
        )
        txt.set_placement((20 * i, 260), align=align)
        out[f"text_{i}"] = txt
    out["text_aligned"] = msp.add_text("ALIGNED", dxfattribs={"height": 3.0}).set_placement(
        (0, 280), (30, 285), TextEntityAlignment.ALIGNED)
    out["text_fit"] = msp.add_text("FIT", dxfattribs={"height": 3.0, "width": 1.2}).set_placement(
        (40, 280), (60, 280), TextEntityAlignment.FIT)
    out["text_mirror"] = msp.add_text(
        "mirrored", dxfattribs={"height": 1.5, "text_generation_flag": 2 | 4, "oblique": -10.0,
                                "insert": (70, 280), "thickness": 0.2})
    if c.r2000:
        mt = msp.add_mtext(
            c.t("First line\\PSecond {\\fArial|b1|i0;bold} line\\P\\C1;red \\H2x;tall\\Pdegree 90%%d",
                "第一行\\P第二行 {\\f宋体|b1;加粗} 文字\\P\\C1;红色\\P高程 123.45 米"),
            dxfattribs={"layer": ann, "style": cjk, "char_height": 2.5, "width": 40.0,
                        "insert": (0, 300), "rotation": 10.0, "line_spacing_factor": 1.5,
                        "line_spacing_style": 2},
        )
        mt.dxf.attachment_point = MTextEntityAlignment.MIDDLE_CENTER
        out["mtext"] = mt
        out["mtext2"] = msp.add_mtext(
            c.t("Bottom right\\Pattached", "右下\\P对齐"),
            dxfattribs={"insert": (60, 300), "char_height": 1.8, "attachment_point": 9,
                        "text_direction": (0.0, 1.0, 0.0), "flow_direction": 1},
        )
        if c.r2007:
            bg = msp.add_mtext("With background", dxfattribs={"insert": (100, 300), "char_height": 2.0, "width": 20})
            bg.set_bg_color(2, scale=1.5)
            out["mtext_bg"] = bg
    return out


def build_inserts(c, msp, layer_of):
    out = {}
    rng = random.Random(936)
    pts = layer_of("SURVEY_POINTS", "测量点")
    for i in range(12):
        x = 300 + rng.uniform(0, 100)
        y = 300 + rng.uniform(0, 100)
        z = round(rng.uniform(20, 60), 3)
        ref = msp.add_blockref("SURVEY_POINT", (x, y, z), dxfattribs={"layer": pts})
        ref.add_auto_attribs({"PTNO": c.t(f"P{i + 1}", f"点{i + 1}"), "ELEV": f"{z:.3f}", "CODE": "TP"})
        out[f"pt_{i}"] = ref
    out["insert_scaled"] = msp.add_blockref(
        c.name("TITLE_FRAME", "图框"), (400, 0), dxfattribs={"xscale": 2.0, "yscale": 2.0, "zscale": 1.0,
                                                            "rotation": 30.0, "layer": layer_of("BLOCKS", "图块")})
    minsert = msp.add_blockref(
        "NORTH_ARROW", (500, 0), dxfattribs={"row_count": 3, "column_count": 2, "row_spacing": 5.0,
                                              "column_spacing": 4.0, "xscale": -1.0})
    out["minsert"] = minsert
    # An insert whose attribute is added by hand, with its own style and rotation.
    manual = msp.add_blockref("SURVEY_POINT", (450, 50), dxfattribs={"rotation": 45.0})
    manual.add_attrib("PTNO", c.t("Manual °", "手工点"), (451, 51),
                      dxfattribs={"height": 0.6, "rotation": 45.0, "style": c.name("ZEPK_ROMAN")})
    out["insert_manual"] = manual
    return out


def build_faces(c, msp, layer_of):
    out = {}
    out["face3d"] = msp.add_3dface([(0, 400, 0), (10, 400, 1), (10, 410, 2), (0, 410, 1)],
                                   dxfattribs={"invisible": 1 | 4})
    out["face3d_tri"] = msp.add_3dface([(20, 400, 0), (30, 400, 0), (25, 410, 5)])
    out["solid"] = msp.add_solid([(40, 400), (50, 400), (40, 410), (50, 410)], dxfattribs={"color": 2})
    out["solid_tri"] = msp.add_solid([(60, 400), (70, 400), (65, 410)], dxfattribs={"thickness": 2.0})
    out["trace"] = msp.add_trace([(80, 400), (90, 400), (80, 402), (90, 402)])
    if c.r2000:
        out["ray"] = msp.add_ray((100, 400), (0.6, 0.8, 0))
        out["xline"] = msp.add_xline((110, 400, 5), (0, 0, 1), dxfattribs={"layer": layer_of("CONTOURS", "等高线")})
    return out


def build_hatches(c, msp, layer_of, ents):
    out = {}
    if not c.r2000:
        return out
    hl = layer_of("HATCHING", "填充")
    solid = msp.add_hatch(color=4, dxfattribs={"layer": hl})
    solid.paths.add_polyline_path([(0, 500, 0), (20, 500, 0.5), (20, 520, 0), (0, 520, -0.25)], is_closed=True)
    solid.set_seed_points([(10, 510)])
    out["hatch_solid"] = solid

    pat = msp.add_hatch(dxfattribs={"layer": hl})
    pat.set_pattern_fill("ANSI31", color=1, angle=15.0, scale=0.5, double=1)
    ep = pat.paths.add_edge_path(flags=1)
    ep.add_line((30, 500), (60, 500))
    ep.add_arc((60, 510), radius=10, start_angle=-90, end_angle=90, ccw=True)
    ep.add_line((60, 520), (30, 520))
    ep.add_line((30, 520), (30, 500))
    island = pat.paths.add_edge_path(flags=16)
    island.add_ellipse((45, 510), major_axis=(4, 0), ratio=0.5, start_angle=0, end_angle=360)
    out["hatch_pattern"] = pat

    spl = msp.add_hatch(color=6, dxfattribs={"layer": hl})
    spl.set_pattern_fill("NET", scale=2.0)
    sp = spl.paths.add_edge_path()
    sp.add_spline(control_points=[(70, 500), (80, 515), (90, 500)], knot_values=[0, 0, 0, 1, 1, 1], degree=2)
    sp.add_line((90, 500), (70, 500))
    out["hatch_spline_edge"] = spl

    if c.r2004:
        grad = msp.add_hatch(dxfattribs={"layer": hl})
        grad.set_gradient((10, 40, 200), (250, 250, 0), rotation=30.0, name="CYLINDER")
        grad.paths.add_polyline_path([(100, 500), (120, 500), (120, 520), (100, 520)], is_closed=True)
        out["hatch_gradient"] = grad

    # Associative hatch, filled inside a closed lightweight polyline.
    boundary = msp.add_lwpolyline([(130, 500), (150, 500), (150, 520), (130, 520)], close=True,
                                  dxfattribs={"layer": hl})
    assoc = msp.add_hatch(color=3, dxfattribs={"layer": hl, "associative": 1})
    path = assoc.paths.add_polyline_path(boundary.get_points("xyb"), is_closed=True, flags=1 | 2 | 16)
    assoc.associate(path, [boundary])
    out["hatch_boundary"] = boundary
    out["hatch_assoc"] = assoc
    return out


def build_special(c, msp, layer_of):
    out = {}
    if not c.r2000:
        return out
    out["wipeout"] = msp.add_wipeout([(200, 500), (220, 500), (220, 515), (200, 515)])
    from ezdxf.acis import api as acis
    from ezdxf.render.mesh import MeshBuilder

    uids = []

    def export_acis(entity, body):
        # As acis.export_dxf, but with a fixed creation date in the ACIS header.
        from ezdxf.acis import const as acis_const, hdr, sab, sat
        header = hdr.AcisHeader()
        header.creation_date = datetime.datetime(2000, 1, 1)
        if c.r2013:
            header.set_version(acis_const.DEFAULT_SAB_VERSION)
            header.asm_end_marker = True
            exporter = sab.SabExporter(header)
            exporter.export(body)
            entity.sab = exporter.dump_sab()
            uids.append(entity)
            entity.dxf.uid = "{5A1E0000-0000-4000-8000-%012X}" % len(uids)
        else:
            header.set_version(acis_const.DEFAULT_SAT_VERSION)
            header.asm_end_marker = False
            exporter = sat.SatExporter(header)
            exporter.export(body)
            entity.sat = exporter.dump_sat()
    # A region: one planar face. Text ACIS data up to R2010, binary (in the
    # ACDSDATA section) from R2013 on.
    face = MeshBuilder()
    face.add_face([Vec3(230, 500), Vec3(250, 500), Vec3(250, 515), Vec3(230, 515)])
    region = msp.add_region()
    export_acis(region, acis.body_from_mesh(face))
    out["region"] = region
    solid = msp.add_3dsolid(dxfattribs={"color": 3})
    export_acis(solid, acis.body_from_mesh(forms.cube().translate(260, 505, 0)))
    out["solid3d"] = solid
    # A linear dimension with its rendered block.
    dim = msp.add_linear_dim(base=(300, 520), p1=(300, 500), p2=(340, 500), dimstyle=c.name("ZEPK_DIM"),
                             override={"dimtxt": 3.0})
    dim.render()
    out["dimension"] = dim.dimension
    return out


def build_colours(c, msp, layer_of, ents):
    if c.r2004:
        tc = msp.add_circle((600, 0), 5.0)
        tc.rgb = (12, 34, 210)
        tc.transparency = 0.4
        ents["truecolor_circle"] = tc
        named = msp.add_line((600, 10), (620, 10))
        named.rgb = (255, 128, 0)
        named.dxf.color_name = "RAL CLASSIC$RAL 2003"
        ents["named_colour_line"] = named
    if c.r2000:
        lw = msp.add_line((600, 20), (620, 20), dxfattribs={"lineweight": 60, "color": 256})
        ents["lineweight_line"] = lw
    # Entities on the locked, frozen and switched-off layers.
    ents["on_locked"] = msp.add_circle((600, 40), 2.0, dxfattribs={"layer": layer_of("LOCKED", "锁定图层")})
    ents["on_frozen"] = msp.add_line((600, 50), (610, 55), dxfattribs={"layer": layer_of("FROZEN", "冻结图层")})
    ents["on_off"] = msp.add_point((600, 60), dxfattribs={"layer": layer_of("SWITCHED_OFF", "关闭图层")})
    ents["invisible"] = msp.add_line((600, 70), (610, 70), dxfattribs={"invisible": 1})


def build_paperspace(c, ents):
    doc = c.doc
    ann = c.name("ANNOTATION", "注记")
    if c.r12:
        psp = doc.layout()  # the one paper space of R12
        ents["ps_border"] = psp.add_polyline2d([(0, 0), (420, 0), (420, 297), (0, 297)], close=True)
        ents["ps_text"] = psp.add_text("PAPER SPACE", dxfattribs={"height": 5.0, "insert": (10, 10), "layer": ann})
        return
    layout1 = doc.layouts.get("Layout1")
    ents["ps1_text"] = layout1.add_text(c.t("Layout one", "布局一"), dxfattribs={"height": 5.0, "insert": (10, 10)})
    sheet = doc.layouts.new(c.t("Sheet A3", "图幅 A3"))
    sheet.page_setup(size=(420, 297), margins=(10, 10, 10, 10), units="mm")
    ents["ps_border"] = sheet.add_lwpolyline([(0, 0), (400, 0), (400, 277), (0, 277)], close=True,
                                             dxfattribs={"const_width": 0.7})
    ents["ps_text"] = sheet.add_text(c.t("Sheet title", "图名 测量"), dxfattribs={"height": 5.0, "insert": (20, 20),
                                                                              "layer": ann})
    vp = sheet.add_viewport(center=(200, 150), size=(300, 200), view_center_point=(250, 250), view_height=600)
    vp.dxf.id = 2  # ezdxf numbers viewports across documents: keep the file independent of that
    ents["ps_viewport"] = vp
    ents["ps_insert"] = sheet.add_blockref("NORTH_ARROW", (380, 250))


def build_xdata_xdicts(c, ents):
    doc = c.doc
    layer0 = doc.layers.get("0")
    ref = layer0.dxf.handle
    xdata_on = ["line1", "circle", "arc", "pl2d", "pt_0", "pt_3", "face3d", "text_0", "insert_scaled", "point1"]
    if c.r2000:
        xdata_on += ["lw_closed", "spline_rational", "mtext", "hatch_pattern", "ellipse", "xline"]
    for seq, key in enumerate(xdata_on):
        ents[key].set_xdata(APP, survey_xdata(c, seq, ents["line2"].dxf.handle))
    ents["line1"].set_xdata(APP2, [(1000, "second app"), (1071, -5), (1040, -0.0001)])
    ents["pt_0"].set_xdata(APP2, [(1002, "{"), (1002, "}"), (1000, "")])
    doc.layers.get(c.name("BOUNDARY", "界址线")).set_xdata(APP, [(1000, c.t("parcel line", "界址")), (1070, 1)])
    if not c.r12:
        for seq, key in enumerate(["line1", "circle", "pl3d", "pt_1"] + (["lw_open", "spline_fit"])):
            attach_xdict(c, ents[key], ref, seq)
        attach_xdict(c, doc.layers.get(c.name("CONTOURS", "等高线")), ents["circle"].dxf.handle, 20)
        # A reactor that points at nothing the entity owns.
        ents["line3"].append_reactor_handle(ents["line1"].dxf.handle)
        # An application data group (102 {ZEPK ... 102 }).
        ents["line2"].set_app_data(APP, [(1, c.t("app data", "应用数据")), (40, 2.0), (330, ref)])


def build_objects(c, ents):
    doc = c.doc
    if c.r12:
        return
    root = doc.rootdict
    hard = root.add_new_dict("ZEPK_DATA", hard_owned=True)
    fill_xrecord(c, hard.add_xrecord("SETTINGS"), ents["line1"].dxf.handle, 1)
    origin = hard.add_xrecord(c.t("ORIGIN", "原点"))
    origin.reset([(10, (500000.0, 3000000.0, 0.0)), (40, 1.0), (1, "CGCS2000")])
    nested = hard.add_new_dict("SURVEY", hard_owned=True)
    fill_xrecord(c, nested.add_xrecord("STATION_1"), ents["pt_0"].dxf.handle, 2)
    fill_xrecord(c, nested.add_xrecord("STATION_2"), ents["pt_1"].dxf.handle, 3)
    soft = root.add_new_dict("ZEPK_SOFT")
    fill_xrecord(c, soft.add_xrecord("LINK"), ents["circle"].dxf.handle, 4)
    soft.add_dict_var("UNITS", "metres")
    soft.set_xdata(APP, [(1000, "dictionary with xdata"), (1070, 2)])
    var_dict = root.get_required_dict("AcDbVariableDictionary")
    var_dict.add_dict_var("ZEPKVERSION", "1.0")
    # Groups: a named one and an anonymous one.
    named = doc.groups.new(c.t("STATIONS", "测站组"), description=c.t("survey stations", "测站"))
    named.extend([ents["pt_0"], ents["pt_1"], ents["pt_2"]])
    anon = doc.groups.new(description="", selectable=False)
    anon.extend([ents["line1"], ents["circle"]])


def build_custom(c, ents):
    """Objects of classes nobody but their application knows: a reader keeps
    them as they are and writes them back unchanged."""
    if c.r12:
        return
    from ezdxf.entities.dxfclass import DXFClass
    from ezdxf.entities.dxfentity import DXFTagStorage
    from ezdxf.lldxf.extendedtags import ExtendedTags

    doc = c.doc
    msp = doc.modelspace()
    soft = doc.rootdict["ZEPK_SOFT"]
    line = ents["line1"].dxf.handle
    for name, cpp, is_entity in [("ZEPK_CUSTOM_OBJECT", "ZepkCustomObject", 0),
                                 ("ZEPK_CUSTOM_ENTITY", "ZepkCustomEntity", 1)]:
        cls = DXFClass.new(doc=doc)
        cls.update_dxf_attribs({"name": name, "cpp_class_name": cpp, "app_name": "ZEPK corpus",
                                "flags": 1, "was_a_proxy": 0, "is_an_entity": is_entity})
        doc.classes.register(cls)

    handle = doc.entitydb.next_handle()
    owner = soft.dxf.handle
    tags = ExtendedTags.from_text(
        f"0\nZEPK_CUSTOM_OBJECT\n5\n{handle}\n102\n{{ACAD_REACTORS\n330\n{owner}\n102\n}}\n"
        f"330\n{owner}\n100\nZepkCustomObject\n70\n3\n1\n{c.t('custom data', '自定义数据')}\n"
        f"10\n1.5\n20\n2.5\n30\n3.5\n40\n0.125\n90\n42\n340\n{line}\n"
        f"1\nsecond\n40\n1e-300\n")
    obj = DXFTagStorage.load(tags, doc)
    doc.entitydb.add(obj)
    doc.objects.add_object(obj)
    soft.add("CUSTOM", obj)

    handle = doc.entitydb.next_handle()
    tags = ExtendedTags.from_text(
        f"0\nZEPK_CUSTOM_ENTITY\n5\n{handle}\n330\n{msp.block_record_handle}\n100\nAcDbEntity\n"
        f"8\n{c.name('SURVEY_POINTS', '测量点')}\n62\n5\n100\nZepkCustomEntity\n"
        f"10\n700.0\n20\n50.0\n30\n12.75\n40\n2.5\n1\n{c.t('custom entity', '自定义实体')}\n"
        f"90\n7\n330\n{line}\n")
    ent = DXFTagStorage.load(tags, doc)
    doc.entitydb.add(ent)
    msp.add_entity(ent)
    ents["custom_entity"] = ent


def build(release, encoding, handle_offset=0):
    doc = ezdxf.new(release, setup=True)
    for _ in range(handle_offset):
        doc.entitydb.next_handle()
    if encoding:
        doc.encoding = encoding
        doc.header["$DWGCODEPAGE"] = "ANSI_936"
    c = Ctx(doc)
    doc.header["$INSUNITS"] = 6
    doc.header["$LUPREC"] = 3
    doc.header["$PDMODE"] = 35
    doc.header["$PDSIZE"] = 0.5
    doc.header["$LTSCALE"] = 2.0
    doc.header["$USERI1"] = 936
    doc.header["$USERR1"] = 1.0e-10
    build_tables(c)
    build_blocks(c)
    msp = doc.modelspace()

    def layer_of(latin, chinese=None):
        return c.name(latin, chinese)

    ents = {}
    ents.update(build_lines_and_curves(c, msp, layer_of))
    ents.update(build_polylines(c, msp, layer_of))
    ents.update(build_splines(c, msp, layer_of))
    ents.update(build_points_text(c, msp, layer_of))
    ents.update(build_inserts(c, msp, layer_of))
    ents.update(build_faces(c, msp, layer_of))
    ents.update(build_hatches(c, msp, layer_of, ents))
    ents.update(build_special(c, msp, layer_of))
    build_colours(c, msp, layer_of, ents)
    build_paperspace(c, ents)
    build_xdata_xdicts(c, ents)
    build_objects(c, ents)
    build_custom(c, ents)
    return doc


def register_classes(doc):
    """Fill the CLASSES section in a fixed order (the saver would walk a set)."""
    from ezdxf.sections.classes import REQ_R2004, REQUIRED_CLASSES
    if doc.dxfversion < DXF2000:
        return
    for name in REQUIRED_CLASSES.get(doc.dxfversion, REQ_R2004):
        doc.classes.add_class(name)
    for name in sorted(doc.entitydb.dxf_types_in_use()):
        doc.classes.add_class(name)


def make_corpus(outdir, handle_offset=0):
    os.makedirs(outdir, exist_ok=True)
    written = []
    for filename, release, encoding in RELEASES:
        doc = build(release, encoding, handle_offset)
        register_classes(doc)
        path = os.path.join(outdir, filename)
        doc.saveas(path)
        written.append(path)
    return written


def main(argv=None):
    parser = argparse.ArgumentParser(description="Build the DXF round-trip corpus, one drawing per release.")
    parser.add_argument("outdir", metavar="OUTDIR", help="folder to write the drawings into")
    parser.add_argument("--handle-offset", type=int, default=0, metavar="N",
                        help="skip N handles first: the same drawings, renumbered")
    args = parser.parse_args(argv)
    for path in make_corpus(args.outdir, args.handle_offset):
        print(path)
    return 0


if __name__ == "__main__":
    sys.exit(main())
