"""The area of a hatch from its loops, by shapely over ezdxf's own curve
arithmetic. One JSON hatch per line on standard input, one area per line out.

  {"style": 0|1|2, "loops": [loop, ...]}
  loop: {"poly": [[x, y, bulge], ...]}                  a closed polyline loop
     or {"edges": [edge, ...]}
  edge: ["line", x0, y0, x1, y1]
        ["arc", cx, cy, r, start, end, ccw]             angles in radians, as the
        ["ell", cx, cy, mx, my, ratio, start, end, ccw]  file keeps them
        ["spline", degree, [knots], [[x, y], ...], [weights]]

Style 0 fills alternate nesting levels, 1 the outermost less the first
islands, 2 the outermost only. Nesting is shapely's containment.
"""
import json
import math
import sys

from ezdxf.math import BSpline, ConstructionArc, ConstructionEllipse, Vec2, bulge_to_arc
from shapely.geometry import Polygon
from shapely.ops import unary_union

N = 4000  # points per full turn


def arc_points(cx, cy, r, start, end, ccw):
    # A clockwise edge keeps negated angles: as a counter-clockwise arc it
    # runs from -end to -start, and is walked backwards.
    if ccw:
        s, e = start, end
    else:
        s, e = -end, -start
    sweep = (e - s) % math.tau or math.tau
    arc = ConstructionArc((cx, cy), r, math.degrees(s), math.degrees(s + sweep))
    n = max(8, int(N * sweep / math.tau))
    pts = [Vec2(p) for p in arc.vertices([math.degrees(s + sweep * k / n) for k in range(n + 1)])]
    return pts if ccw else pts[::-1]


def ell_points(cx, cy, mx, my, ratio, start, end, ccw):
    if ccw:
        s, e = start, end
    else:
        s, e = -end, -start
    sweep = (e - s) % math.tau or math.tau
    ell = ConstructionEllipse((cx, cy, 0), (mx, my, 0), ratio=ratio, start_param=s, end_param=s + sweep)
    n = max(8, int(N * sweep / math.tau))
    pts = [Vec2(p) for p in ell.vertices([s + sweep * k / n for k in range(n + 1)])]
    return pts if ccw else pts[::-1]


def loop_points(loop):
    pts = []
    if "poly" in loop:
        v = loop["poly"]
        for i, (x, y, b) in enumerate(v):
            a, c = Vec2(x, y), Vec2(v[(i + 1) % len(v)][:2])
            if abs(b) < 1e-12:
                pts.append(a)
                continue
            center, sa, ea, r = bulge_to_arc(a, c, b)
            piece = arc_points(center.x, center.y, r, sa, ea, True)
            pts.extend(piece if b > 0 else piece[::-1])
        return pts
    for e in loop["edges"]:
        kind = e[0]
        if kind == "line":
            pts += [Vec2(e[1], e[2]), Vec2(e[3], e[4])]
        elif kind == "arc":
            pts += arc_points(*e[1:])
        elif kind == "ell":
            pts += ell_points(*e[1:])
        else:
            degree, knots, cps, weights = e[1], e[2], e[3], e[4]
            sp = BSpline(cps, order=degree + 1, knots=knots, weights=weights or None)
            pts += [Vec2(p) for p in sp.approximate(4000)]
    return pts


def area(hatch):
    polys = [Polygon([(p.x, p.y) for p in loop_points(l)]).buffer(0) for l in hatch["loops"]]
    depth = [sum(1 for j, q in enumerate(polys) if j != i and q.area > p.area and q.contains(p.representative_point()))
             for i, p in enumerate(polys)]
    style = hatch["style"]
    fill = None
    for level in sorted(set(depth)):
        layer = unary_union([p for p, d in zip(polys, depth) if d == level])
        if fill is None:
            fill = layer
        elif style == 0:
            fill = fill.symmetric_difference(layer)
        elif style == 1 and level == 1:
            fill = fill.difference(layer)
    return fill.area if fill is not None else 0.0


for line in sys.stdin:
    if line.strip():
        print("%.12g" % area(json.loads(line)))
