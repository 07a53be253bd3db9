"""The benchmark's polylines, made exactly as geometry_bench.cpp makes them:
star-shaped closed rings of V vertices with bulges from -0.5 to 0.5, from a
32-bit linear congruential generator, so that both sides work on the same
shapes without a file between them."""
import math


class Lcg:
    def __init__(self, seed):
        self.x = seed & 0xFFFFFFFF

    def next(self):
        """A number in [0, 1)."""
        self.x = (1664525 * self.x + 1013904223) & 0xFFFFFFFF
        return self.x / 4294967296.0


def polylines(count, vertices, seed=12345):
    rng = Lcg(seed)
    for _ in range(count):
        cx, cy = rng.next() * 1000.0, rng.next() * 1000.0
        ring = []
        for i in range(vertices):
            t = 2 * math.pi * (i + 0.2 + 0.6 * rng.next()) / vertices
            r = 20.0 + 40.0 * rng.next()
            b = rng.next() - 0.5
            ring.append((cx + r * math.cos(t), cy + r * math.sin(t), b))
        yield ring
