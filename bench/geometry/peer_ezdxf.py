"""The peer of the geometry benchmark: ezdxf samples each polyline (its
arcs flattened to the chord tolerance) and takes the area of the samples.
Usage: peer_ezdxf.py COUNT VERTICES TOLERANCE
Prints "polylines N vertices V samples S area A seconds T pervertex NS"."""
import sys
import time

from ezdxf.math import OCS, area
from ezdxf.path import Path
from ezdxf.path.tools import add_2d_polyline

from polys import polylines

count, vertices, tolerance = int(sys.argv[1]), int(sys.argv[2]), float(sys.argv[3])
shapes = list(polylines(count, vertices))
t0 = time.perf_counter()
samples = 0
total = 0.0
ocs = OCS()
for ring in shapes:
    path = Path()
    add_2d_polyline(path, ring, close=True, ocs=ocs, elevation=0.0)
    pts = list(path.flattening(tolerance))
    samples += len(pts)
    total += area(pts)
dt = time.perf_counter() - t0
print(f"polylines {count} vertices {count * vertices} samples {samples} area {total:.6f} "
      f"seconds {dt:.4f} pervertex {dt / (count * vertices) * 1e9:.1f}")
