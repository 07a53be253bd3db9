#!/usr/bin/python3
"""The peer: loads and saves a drawing with ezdxf, printing the seconds for
each and the peak resident memory in MB.

Usage: ezdxf_loadsave.py IN.dxf OUT.dxf
"""
import resource
import sys
import time

import ezdxf

t0 = time.perf_counter()
doc = ezdxf.readfile(sys.argv[1])
t1 = time.perf_counter()
doc.saveas(sys.argv[2])
t2 = time.perf_counter()
peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024.0
print(f"load {t1 - t0:.3f} save {t2 - t1:.3f} peak {peak:.1f} entities {len(doc.modelspace())}")
