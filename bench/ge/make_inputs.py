#!/usr/bin/python3
"""Writes the inputs of the geometry benchmarks into a folder: 100000
random segments (segs.txt), 100000 segments and arcs (mixed.txt), a
50000-vertex polyline with bulges and 10000 query points (poly.txt), and
1000 overlapping circles (circles.txt). Fixed seed: the same inputs each run.

Usage: make_inputs.py FOLDER
"""
import math
import os
import random
import sys


def main(out):
    rnd = random.Random(20261122)
    os.makedirs(out, exist_ok=True)

    def seg():
        x, y = rnd.uniform(0, 1000), rnd.uniform(0, 1000)
        a, l = rnd.uniform(0, 2 * math.pi), rnd.expovariate(1 / 6.0)
        return x, y, x + l * math.cos(a), y + l * math.sin(a)

    with open(os.path.join(out, "segs.txt"), "w") as f:
        for _ in range(100000):
            f.write("L %.17g %.17g %.17g %.17g\n" % seg())
    with open(os.path.join(out, "mixed.txt"), "w") as f:
        for i in range(100000):
            if i % 2:
                f.write("L %.17g %.17g %.17g %.17g\n" % seg())
            else:
                cx, cy, r = rnd.uniform(0, 1000), rnd.uniform(0, 1000), rnd.expovariate(1 / 3.0) + 0.1
                f.write("A %.17g %.17g %.17g %.17g %.17g\n" % (cx, cy, r, rnd.uniform(0, 2 * math.pi),
                                                             rnd.uniform(-2 * math.pi, 2 * math.pi)))
    with open(os.path.join(out, "poly.txt"), "w") as f:
        x = y = 0.0
        f.write("50000 10000\n")
        for i in range(50000):
            f.write("%.17g %.17g %.17g\n" % (x, y, rnd.uniform(-0.5, 0.5) if i % 3 == 0 else 0.0))
            a = rnd.uniform(0, 2 * math.pi)
            x += 10 * math.cos(a) + 3
            y += 10 * math.sin(a)
        for _ in range(10000):
            f.write("%.17g %.17g\n" % (rnd.uniform(0, x), rnd.uniform(-300, 300)))
    with open(os.path.join(out, "circles.txt"), "w") as f:
        for _ in range(1000):
            f.write("%.17g %.17g %.17g\n" % (rnd.uniform(0, 300), rnd.uniform(0, 300), rnd.uniform(5, 20)))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    main(sys.argv[1])
