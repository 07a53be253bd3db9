#!/usr/bin/python3
"""Writes the benchmark drawing: N mixed entities in model space (lines,
lightweight polylines of 20 vertices, texts, block references with two
attributes), in equal shares, saved as DXF 2018.

Usage: make_drawing.py OUT.dxf [N]
"""
import random
import sys

import ezdxf


def main(argv):
    out = argv[0]
    n = int(argv[1]) if len(argv) > 1 else 200000
    rnd = random.Random(20261122)
    doc = ezdxf.new("R2018")
    for name in ("LINES", "POLYS", "TEXTS", "BLOCKS"):
        doc.layers.add(name)
    blk = doc.blocks.new("MARK")
    blk.add_circle((0, 0), 1.0)
    blk.add_line((-1, 0), (1, 0))
    blk.add_attdef("NO", (1.2, 0.2), dxfattribs={"height": 0.5})
    blk.add_attdef("ELEV", (1.2, -0.6), dxfattribs={"height": 0.5})
    msp = doc.modelspace()
    for i in range(n):
        x, y = rnd.uniform(0, 10000), rnd.uniform(0, 10000)
        kind = i % 4
        if kind == 0:
            msp.add_line((x, y, 0), (x + rnd.uniform(-50, 50), y + rnd.uniform(-50, 50), 0),
                         dxfattribs={"layer": "LINES"})
        elif kind == 1:
            pts = [(x + j * 3.0, y + rnd.uniform(-5, 5), 0, 0, rnd.choice((0, 0, 0.3)))
                   for j in range(20)]
            msp.add_lwpolyline(pts, format="xyseb", dxfattribs={"layer": "POLYS"})
        elif kind == 2:
            msp.add_text(f"P{i} {rnd.uniform(0, 100):.3f}",
                         dxfattribs={"layer": "TEXTS", "height": 2.5, "insert": (x, y)})
        else:
            ref = msp.add_blockref("MARK", (x, y), dxfattribs={"layer": "BLOCKS"})
            ref.add_auto_attribs({"NO": str(i), "ELEV": f"{rnd.uniform(0, 100):.2f}"})
    doc.saveas(out)


if __name__ == "__main__":
    main(sys.argv[1:])
