#!/usr/bin/python3
"""The peer: loads a drawing with ezdxf and draws its model space with the
drawing add-on's matplotlib backend to a PNG of WIDTH x HEIGHT pixels, on
white. Prints the seconds to load and to draw (drawing and saving).

Usage: ezdxf_draw.py IN.dxf OUT.png WIDTH HEIGHT
"""
import logging
import sys
import time

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

import ezdxf  # noqa: E402
from ezdxf.addons.drawing import Frontend, RenderContext  # noqa: E402
from ezdxf.addons.drawing.matplotlib import MatplotlibBackend  # noqa: E402
from ezdxf.addons.drawing.properties import LayoutProperties  # noqa: E402

logging.getLogger("matplotlib.font_manager").setLevel(logging.ERROR)

src, out, width, height = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
t0 = time.perf_counter()
doc = ezdxf.readfile(src)
t1 = time.perf_counter()
fig = plt.figure(figsize=(width / 100, height / 100), dpi=100)
ax = fig.add_axes([0, 0, 1, 1])
msp = doc.modelspace()
props = LayoutProperties.from_layout(msp)
props.set_colors("#ffffff")
Frontend(RenderContext(doc), MatplotlibBackend(ax, adjust_figure=False)).draw_layout(
    msp, finalize=True, layout_properties=props)
fig.savefig(out, dpi=100, facecolor="#ffffff")
t2 = time.perf_counter()
print(f"load {t1 - t0:.3f} draw {t2 - t1:.3f} entities {len(msp)}")
