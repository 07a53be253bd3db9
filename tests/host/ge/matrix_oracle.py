#!/usr/bin/python3
# Independent answers for the matrix tests, computed with numpy. One request
# per input line ("op" then numbers), one answer line of numbers per request.
#   inv M       the inverse (16 numbers) and the condition number
#   det M       the determinant
#   mul A B     the product A @ B
#   rank M      the rank
#   rot a axis(3) center(3)   rotation by a about the axis through center,
#               as the matrix exponential of the skew matrix (through an
#               eigendecomposition), conjugated by the move to center
#   align fo fx fy fz to tx ty tz   To @ inv(From) of the two frames
#   mirplane p1 p2 p3   reflection in the plane through three points: the
#               foot of a point is found by least squares on the plane's span
#   mirline p1 p2       half turn about the line through two points, the same way
# Matrices are 16 numbers row by row; answers are repr() of doubles.
import sys

import numpy as np


def mat(vals):
    return np.array(vals, dtype=float).reshape(4, 4)


def affine_from(f):
    """The 4x4 matrix of an affine map given as a function of 3-vectors."""
    o = f(np.zeros(3))
    m = np.eye(4)
    for i in range(3):
        e = np.zeros(3)
        e[i] = 1.0
        m[:3, i] = f(e) - o
    m[:3, 3] = o
    return m


def foot_on_span(base, dirs, p):
    a = np.column_stack(dirs)
    coef, *_ = np.linalg.lstsq(a, p - base, rcond=None)
    return base + a @ coef


def answer(op, v):
    if op == "inv":
        m = mat(v)
        return list(np.linalg.inv(m).ravel()) + [np.linalg.cond(m)]
    if op == "det":
        return [np.linalg.det(mat(v))]
    if op == "mul":
        return list((mat(v[:16]) @ mat(v[16:32])).ravel())
    if op == "rank":
        return [float(np.linalg.matrix_rank(mat(v)))]
    if op == "rot":
        angle, axis, center = v[0], np.array(v[1:4]), np.array(v[4:7])
        axis = axis / np.linalg.norm(axis)
        k = angle * np.array([[0, -axis[2], axis[1]], [axis[2], 0, -axis[0]], [-axis[1], axis[0], 0]])
        w, vecs = np.linalg.eig(k)
        r = (vecs @ np.diag(np.exp(w)) @ np.linalg.inv(vecs)).real
        return list(affine_from(lambda p: center + r @ (p - center)).ravel())
    if op == "align":
        def frame(o, x, y, z):
            m = np.eye(4)
            m[:3, 0], m[:3, 1], m[:3, 2], m[:3, 3] = x, y, z, o
            return m
        a = [np.array(v[i:i + 3]) for i in range(0, 24, 3)]
        return list((frame(*a[4:]) @ np.linalg.inv(frame(*a[:4]))).ravel())
    if op == "mirplane":
        p1, p2, p3 = (np.array(v[i:i + 3]) for i in (0, 3, 6))
        return list(affine_from(lambda p: 2 * foot_on_span(p1, [p2 - p1, p3 - p1], p) - p).ravel())
    if op == "mirline":
        p1, p2 = np.array(v[0:3]), np.array(v[3:6])
        return list(affine_from(lambda p: 2 * foot_on_span(p1, [p2 - p1], p) - p).ravel())
    raise ValueError(op)


for line in sys.stdin:
    parts = line.split()
    if not parts:
        continue
    print(" ".join(repr(float(x)) for x in answer(parts[0], [float(x) for x in parts[1:]])))
