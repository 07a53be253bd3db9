#!/usr/bin/python3
"""The peers of the geometry benchmarks, through shapely (GEOS).

  peer_geos.py noding segs.txt     all intersections of the segments: the
                                   segments noded by unary_union; prints the
                                   count of new nodes (crossing points)
  peer_geos.py closest poly.txt    the nearest points of the query points on
                                   the polyline (arcs flattened to 16 chords)
  peer_geos.py union circles.txt   area of the union of the circles
"""
import math
import sys
import warnings

from shapely.geometry import LineString, MultiLineString, Point
from shapely.ops import unary_union
from shapely.strtree import STRtree

warnings.filterwarnings("ignore")


def noding(path):
    segs, ends = [], set()
    with open(path) as f:
        for line in f:
            p = line.split()
            a, b = (float(p[1]), float(p[2])), (float(p[3]), float(p[4]))
            segs.append((a, b))
            ends.add(a)
            ends.add(b)
    noded = unary_union(MultiLineString(segs))
    nodes = set()
    for g in noded.geoms:
        for c in (g.coords[0], g.coords[-1]):
            nodes.add(c)
    print(len(nodes - ends))


def closest(path):
    with open(path) as f:
        n, q = map(int, f.readline().split())
        verts = [tuple(map(float, f.readline().split())) for _ in range(n)]
        queries = [tuple(map(float, f.readline().split())) for _ in range(q)]
    pts = []
    for i in range(n - 1):
        (x0, y0, b), (x1, y1, _) = verts[i], verts[i + 1]
        pts.append((x0, y0))
        if b:
            th = 4 * math.atan(b)
            ch = math.hypot(x1 - x0, y1 - y0)
            r = ch / (2 * math.sin(abs(th) / 2))
            mx, my = (x0 + x1) / 2, (y0 + y1) / 2
            ux, uy = (x1 - x0) / ch, (y1 - y0) / ch
            h = r * math.cos(abs(th) / 2) * (1 if th > 0 else -1)
            cx, cy = mx - uy * h, my + ux * h
            a0 = math.atan2(y0 - cy, x0 - cx)
            for k in range(1, 16):
                a = a0 + th * k / 16
                pts.append((cx + r * math.cos(a), cy + r * math.sin(a)))
    pts.append(verts[-1][:2])
    # The chords in an STR tree; each query takes the nearest chord.
    chords = [LineString([pts[i], pts[i + 1]]) for i in range(len(pts) - 1)]
    tree = STRtree(chords)
    total = 0.0
    for x, y in queries:
        p = Point(x, y)
        total += tree.nearest(p).distance(p)
    print("%.3f" % total)


def union(path):
    with open(path) as f:
        discs = [Point(float(a), float(b)).buffer(float(r), 16) for a, b, r in (l.split() for l in f)]
    print("%.3f" % unary_union(discs).area)


if __name__ == "__main__":
    {"noding": noding, "closest": closest, "union": union}[sys.argv[1]](sys.argv[2])
