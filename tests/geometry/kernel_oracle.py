"""Answers the kernel tests' questions with ezdxf's own arithmetic, one JSON
request per line on standard input, one row of numbers per line out.

  {"op": "center", "s": [x, y], "e": [x, y], "b": bulge}  -> cx cy
  {"op": "mid", ...same}                                   -> mx my
  {"op": "bulge3", "s": .., "m": .., "e": ..}               -> bulge
  {"op": "poly", "v": [[x, y, b], ...], "closed": bool}     -> area length
      (area signed: Green's integral along ezdxf's arcs and chords)
  {"op": "near", "v": [...], "closed": bool, "p": [[x, y], ...]}
      -> the largest distance of the points from the polyline, and the
         largest distance of the middle of two consecutive points from it
"""
import json
import math
import sys

from ezdxf.math import Vec2, bulge_center, bulge_to_arc, bulge_3_points


def green(a, b, bulge):
    """Half the integral of x dy - y dx from a to b along the segment: the
    chord's share, and the circular segment between chord and arc (taken
    apart so that a nearly straight arc of a huge radius stays exact)."""
    chord = (a.x * b.y - a.y * b.x) / 2
    if abs(bulge) < 1e-12 or a.isclose(b):
        return chord
    _, sa, ea, r = bulge_to_arc(a, b, bulge)
    sweep = (ea - sa) % math.tau
    piece = r * r * (sweep - math.sin(sweep)) / 2
    # A counter-clockwise arc swells to the right of its chord.
    return chord + piece if bulge > 0 else chord - piece


def segments(v, closed):
    n = len(v)
    for i in range(n if closed else n - 1):
        yield Vec2(v[i][:2]), Vec2(v[(i + 1) % n][:2]), v[i][2]


def seg_length(a, b, bulge):
    if abs(bulge) < 1e-12 or a.isclose(b):
        return a.distance(b)
    _, sa, ea, r = bulge_to_arc(a, b, bulge)
    sweep = (ea - sa) % math.tau
    return r * sweep


def dist_to_segment(p, a, b, bulge):
    if abs(bulge) < 1e-12 or a.isclose(b):
        d = b - a
        t = 0.0 if d.magnitude == 0 else max(0.0, min(1.0, (p - a).dot(d) / d.dot(d)))
        return p.distance(a + d * t)
    c, sa, ea, r = bulge_to_arc(a, b, bulge)
    ang = (p - c).angle
    sweep = (ea - sa) % math.tau
    if (ang - sa) % math.tau <= sweep:
        return abs(p.distance(c) - r)
    return min(p.distance(a), p.distance(b))


def dist_to_poly(p, v, closed):
    return min(dist_to_segment(p, a, b, bulge) for a, b, bulge in segments(v, closed))


def answer(q):
    op = q["op"]
    if op == "center":
        c = bulge_center(q["s"], q["e"], q["b"])
        return [c.x, c.y]
    if op == "mid":
        s, e, b = Vec2(q["s"]), Vec2(q["e"]), q["b"]
        c, sa, ea, r = bulge_to_arc(s, e, b)
        sweep = (ea - sa) % math.tau
        m = c + Vec2.from_angle(sa + sweep / 2, r)
        return [m.x, m.y]
    if op == "bulge3":
        return [bulge_3_points(q["s"], q["e"], q["m"])]
    if op == "poly":
        area = sum(green(a, b, bulge) for a, b, bulge in segments(q["v"], True))
        length = sum(seg_length(a, b, bulge) for a, b, bulge in segments(q["v"], q["closed"]))
        return [area if q["closed"] else 0.0, length]
    if op == "near":
        pts = [Vec2(p) for p in q["p"]]
        on = max(dist_to_poly(p, q["v"], q["closed"]) for p in pts)
        mids = [a.lerp(b) for a, b in zip(pts, pts[1:])]
        chord = max((dist_to_poly(m, q["v"], q["closed"]) for m in mids), default=0.0)
        return [on, chord]
    raise SystemExit("unknown request " + op)


for line in sys.stdin:
    if line.strip():
        print(" ".join("%.17g" % x for x in answer(json.loads(line))))
