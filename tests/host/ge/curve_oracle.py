#!/usr/bin/python3
# Independent answers for the curve tests, from ezdxf.math and shapely. One
# JSON request per input line, one answer line of numbers per request.
#   bspline  p, knots, ctrl, w (or null), t: per parameter the point, and
#            for a non-rational curve the first and second derivatives
#   bulge    a, b, bulge: centre x y, start and end angle, radius
#   ellipse  c, major, ratio, s, e, t: the points at the parameters, then
#            the length of the arc (from 200001 vertices)
#   inter    a, b: the points where two polylines meet (shapely), sorted
#   buffer   pts, d: area of the polygon grown by d (shrunk for d < 0) with
#            mitred corners (shapely)
import json
import sys

import numpy as np
from ezdxf.math import BSpline, ConstructionEllipse, bulge_to_arc
from shapely.geometry import LineString, MultiPoint, Point, Polygon


def flat(vs):
    return [c for v in vs for c in (v.x, v.y, v.z)]


def main():
    for line in sys.stdin:
        r = json.loads(line)
        op = r["op"]
        out = []
        if op == "bspline":
            b = BSpline(r["ctrl"], order=r["p"] + 1, knots=r["knots"], weights=r["w"])
            for t in r["t"]:
                if r["w"]:
                    out += flat([b.point(t)])
                else:
                    # ezdxf gives derivatives up to the degree only.
                    d = list(b.derivative(t, n=min(2, r["p"])))
                    out += flat(d) + [0.0] * (9 - 3 * len(d))
        elif op == "bulge":
            c, s, e, rad = bulge_to_arc(r["a"], r["b"], r["bulge"])
            out = [c.x, c.y, s, e, rad]
        elif op == "ellipse":
            el = ConstructionEllipse(center=r["c"], major_axis=r["major"], ratio=r["ratio"],
                                     start_param=r["s"], end_param=r["e"])
            out += flat(el.vertices(r["t"]))
            e = r["e"] if r["e"] > r["s"] else r["e"] + 2 * np.pi
            pts = np.array([(v.x, v.y, v.z) for v in el.vertices(np.linspace(r["s"], e, 200001))])
            out.append(float(np.sum(np.linalg.norm(np.diff(pts, axis=0), axis=1))))
        elif op == "inter":
            g = LineString(r["a"]).intersection(LineString(r["b"]))
            pts = []
            if isinstance(g, Point):
                pts = [g]
            elif isinstance(g, MultiPoint):
                pts = list(g.geoms)
            elif hasattr(g, "geoms"):
                pts = [x for x in g.geoms if isinstance(x, Point)]
            for p in sorted(pts, key=lambda q: (q.x, q.y)):
                out += [p.x, p.y]
        elif op == "buffer":
            out = [Polygon(r["pts"]).buffer(r["d"], join_style=2, mitre_limit=1e9).area]
        print(" ".join(repr(float(v)) for v in out))


main()
