"""Selection geometry as shapely sees it. Each input line is a JSON case:
{"paths": [{"pts": [[x, y]...], "bulges": [...], "closed": bool}...],
 "filled": bool, "poly": [[x, y]...], "fence": [[x, y]...]}.
Arcs are drawn from their bulges here, finely. For each case one line:
inside crossing fence firm, each 0 or 1; firm is 0 for a case so near a
line that sampling may decide it differently."""
import json
import math
import sys

from shapely.geometry import LineString, Point, Polygon
from shapely.ops import unary_union


def arc_points(a, b, bulge):
    if abs(bulge) < 1e-12 or a == b:
        return [a, b]
    theta = 4 * math.atan(bulge)
    dx, dy = b[0] - a[0], b[1] - a[1]
    chord = math.hypot(dx, dy)
    r = chord / (2 * math.sin(abs(theta) / 2))
    # The centre lies at the apex angle from the chord's middle.
    h = math.sqrt(max(r * r - chord * chord / 4, 0.0))
    mx, my = (a[0] + b[0]) / 2, (a[1] + b[1]) / 2
    nx, ny = -dy / chord, dx / chord
    side = 1 if (bulge > 0) == (abs(theta) < math.pi) else -1
    cx, cy = mx + side * h * nx, my + side * h * ny
    a0 = math.atan2(a[1] - cy, a[0] - cx)
    n = max(8, int(abs(theta) / math.radians(0.25)))
    return [(cx + r * math.cos(a0 + theta * k / n), cy + r * math.sin(a0 + theta * k / n)) for k in range(n + 1)]


def path_geom(p):
    pts = [tuple(v) for v in p["pts"]]
    if len(pts) == 1:
        return Point(pts[0]), None
    bul = p.get("bulges", [])
    n = len(pts)
    segs = n if p["closed"] else n - 1
    out = [pts[0]]
    for i in range(segs):
        out += arc_points(pts[i], pts[(i + 1) % n], bul[i] if i < len(bul) else 0.0)[1:]
    line = LineString(out)
    ring = Polygon(out) if p["closed"] and len(out) >= 4 else None
    return line, ring


for text in sys.stdin:
    if not text.strip():
        continue
    c = json.loads(text)
    lines, area = [], None
    for p in c["paths"]:
        g, ring = path_geom(p)
        lines.append(g)
        if c["filled"] and ring is not None:
            ring = ring.buffer(0)
            area = ring if area is None else area.symmetric_difference(ring)
    shape = unary_union(lines)
    whole = shape if area is None else unary_union([shape, area])
    poly = Polygon(c["poly"])
    fence = LineString(c["fence"])
    inside = poly.contains(shape)
    crossing = whole.intersects(poly)
    fenced = whole.intersects(fence)
    # Sampled arcs lie within 1e-5 of the true ones: a case whose answer
    # changes when the shape grows or the polygon shrinks by more is one
    # only exact arithmetic decides.
    eps = 1e-4
    grown = whole.buffer(eps)
    firm = (poly.buffer(-eps).contains(shape) == inside == poly.buffer(eps).contains(shape)
            and grown.intersects(poly) == crossing and grown.intersects(fence) == fenced)
    margin = 1.0 if firm else 0.0
    print(int(inside), int(crossing), int(fenced), repr(margin))
