#!/usr/bin/env python3
"""Writes random_reference.txt: reference sequences of the uniform generators
and of the random variates, computed here independently of the library.

The twister words come from CPython's own MT19937 (the random module, its
state set to the reference single-integer initialisation); the algorithms
are written out below from their publications, in IEEE double arithmetic
with the C library's log, exp and sqrt (as CPython's math module calls
them), in the order of operations the library documents. A uniform is
(word + 0.5) * 2^-32, the twister mode of KXURandom.

Lines:
  portable SEED u1 ... u100      the portable congruential generator
  LABEL SEED DRAWS WIDTH : ...   DRAWS draws of the distribution LABEL (set
                                 as KXRandomValues_test.cpp sets it) from a
                                 twister seeded with SEED: for each draw its
                                 WIDTH values (a matrix: its packed lower
                                 triangle), then the uniforms it consumed

Usage: python3 make_random_reference.py > random_reference.txt
"""
import math
import random

N_WORDS = 624


def init_genrand(seed):
    mt = [seed & 0xFFFFFFFF]
    for i in range(1, N_WORDS):
        mt.append((1812433253 * (mt[-1] ^ (mt[-1] >> 30)) + i) & 0xFFFFFFFF)
    return mt


def portable(seed, count):
    out = []
    for _ in range(count):
        seed = seed * 397204094 % 2147483647
        out.append(seed * 2.0 ** -31)
    return out


class Uniforms:
    """KXURandom's twister mode on CPython's MT19937, counting draws."""

    def __init__(self, seed):
        self.gen = random.Random()
        self.gen.setstate((3, tuple(init_genrand(seed)) + (N_WORDS,), None))
        self.count = 0

    def __call__(self):
        self.count += 1
        return (self.gen.getrandbits(32) + 0.5) * 2.0 ** -32


# Kinderman and Ramage (1976), the region-1 candidate below 0 rejected.
XI = 2.216035867166471
HALF_XI2 = 2.455407482284127
REGIONS = {}


def auxf(t):
    if t == 0.0:
        return 0.0
    f = 0.3989422804014327 * math.exp(-t * t / 2.0) - 0.180025191068563 * max(XI - abs(t), 0.0)
    return max(f, 0.0)


def snor(U):
    u1 = U()
    if u1 < 0.884070402298758:
        REGIONS["center"] = REGIONS.get("center", 0) + 1
        return XI * (1.13113163544418 * u1 + U() - 1.0)
    while True:
        u2, u3 = U(), U()
        lo, hi, gap = min(u2, u3), max(u2, u3), abs(u2 - u3)
        sign = 1.0 if u2 < u3 else -1.0
        if u1 >= 0.973310954173898:
            t = HALF_XI2 - math.log(u3)
            if u2 * u2 * t <= HALF_XI2:
                REGIONS["tail"] = REGIONS.get("tail", 0) + 1
                x = math.sqrt(2.0 * t)
                return x if u1 < 0.986655477086949 else -x
        elif u1 >= 0.958720824790463:
            t = XI - 0.63083480192196 * lo
            if hi <= 0.755591531667601 or 0.034240503750111 * gap <= auxf(t):
                REGIONS["3"] = REGIONS.get("3", 0) + 1
                return sign * t
        elif u1 >= 0.911312780288703:
            t = 0.479727404222441 + 1.10547366102207 * lo
            if hi <= 0.87283497667179 or 0.049264496373128 * gap <= auxf(t):
                REGIONS["2"] = REGIONS.get("2", 0) + 1
                return sign * t
        else:
            t = 0.479727404222441 - 0.59550713801594 * lo
            if t >= 0.0 and (hi <= 0.805577924423817 or 0.053377549506886 * gap <= auxf(t)):
                REGIONS["1"] = REGIONS.get("1", 0) + 1
                return sign * t


def gamma(a, rate, U, method="fishman"):
    if a == 1.0:
        x = -math.log(1.0 - U()) / 1.0
    elif a < 1.0:  # Ahrens and Dieter, GS
        e = 2.718281828459045
        c = (a + e) / e
        while True:
            u = U()
            if u == 0.0:
                continue
            p = c * u
            if p <= 1.0:
                s = math.log(p) / a
                x = 0.0 if s < -708.39 else math.exp(s)
                if math.exp(-x) >= U():
                    break
            else:
                x = -math.log((c - p) / a)
                if x <= 0.0:
                    continue
                if (a - 1.0) * math.log(x) >= math.log(1.0 - U()):
                    break
    elif method == "mt":  # Marsaglia and Tsang
        d = a - 1.0 / 3.0
        c = 1.0 / math.sqrt(9.0 * d)
        while True:
            z = snor(U)
            v = 1.0 + c * z
            if v <= 0.0:
                continue
            v = v * v * v
            u = U()
            z2 = z * z
            if u < 1.0 - 0.0331 * (z2 * z2) or math.log(u) < 0.5 * z2 + d * (1.0 - v + math.log(v)):
                x = d * v
                break
    else:  # Fishman
        while True:
            e = -math.log(1.0 - U())
            l = math.log(1.0 - U())
            if (a - 1.0) * (math.log(e) + 1.0 - e) >= l:
                x = a * e
                break
    return x / rate


def packed(i, j):
    return i * (i + 1) // 2 + j


def cholesky(a, n, tol):
    """The rank-tolerant Cholesky, row by row, one product at a time."""
    l = list(a)
    for i in range(n):
        for j in range(i + 1):
            s = l[packed(i, j)]
            for m in range(j):
                s = s - l[packed(i, m)] * l[packed(j, m)]
            if j < i:
                l[packed(i, j)] = s / l[packed(j, j)] if l[packed(j, j)] != 0.0 else 0.0
            else:
                l[packed(i, i)] = math.sqrt(s) if s > tol * a[packed(i, i)] else 0.0
    return l


def mvn(mean, l, U):
    n = len(mean)
    z = [snor(U) for _ in range(n)]
    out = []
    for i in range(n):
        s = 0.0
        for j in range(i + 1):
            s = s + l[packed(i, j)] * z[j]
        out.append(s + mean[i])
    return out


def wishart(n, df, l, U):
    b = [0.0] * packed(n, 0)
    for i in range(n):
        for j in range(i):
            b[packed(i, j)] = snor(U)
        b[packed(i, i)] = math.sqrt(gamma((df - i) / 2.0, 0.5, U))
    if l is not None:
        for i in range(n - 1, -1, -1):
            for j in range(i + 1):
                s = 0.0
                for k in range(j, i + 1):
                    s = s + l[packed(i, k)] * b[packed(k, j)]
                b[packed(i, j)] = s
    w = [0.0] * len(b)
    for i in range(n):
        for j in range(i + 1):
            s = 0.0
            for m in range(j + 1):
                s = s + b[packed(i, m)] * b[packed(j, m)]
            w[packed(i, j)] = s
    return w


COV = [4.0, 1.0, 2.0, -0.5, 0.3, 1.5]          # order 3, positive definite
SINGULAR = [1.0, 1.0, 1.0, 0.0, 0.0, 2.0]      # order 3, rank 2
SCALE = [2.0, 0.5, 1.0]                        # order 2


def draw_line(label, seed, draws, draw):
    U = Uniforms(seed)
    parts = []
    width = None
    for _ in range(draws):
        before = U.count
        values = draw(U)
        width = len(values)
        parts.append(" ".join(repr(v) for v in values) + " %d" % (U.count - before))
    return "%s %d %d %d : %s" % (label, seed, draws, width, " ".join(parts))


def main():
    print("# Generated by make_random_reference.py; do not edit.")
    print("portable 123456789 " + " ".join(repr(x) for x in portable(123456789, 100)))
    lines = [
        ("uniform_2_5", 11, 200, lambda U: [2.0 + (5.0 - 2.0) * U()]),
        ("normal", 12, 3000, lambda U: [snor(U)]),
        ("normal_3_4", 13, 200, lambda U: [snor(U) * math.sqrt(4.0) + 3.0]),
    ]
    for df in (0.2, 1.0, 2.0, 3.0, 20.0, 20000.0):
        lines.append(("chi_%g" % df, 14, 200, lambda U, df=df: [gamma(df / 2.0, 0.5, U)]))
    for df in (3.0, 20.0, 2e9):
        lines.append(("mt_chi_%g" % df, 15, 200, lambda U, df=df: [gamma(df / 2.0, 0.5, U, "mt")]))
    lines += [
        ("uniform_vec", 16, 50, lambda U: [lo + (hi - lo) * U() for lo, hi in ((0, 1), (-1, 1), (10, 20))]),
        ("normal_vec", 17, 50, lambda U: [snor(U) for _ in range(3)]),
        ("mvn", 18, 50, lambda U: mvn([1.0, 2.0, 3.0], cholesky(COV, 3, 1e-12), U)),
        ("mvn_singular", 19, 50, lambda U: mvn([0.0, 0.0, 0.0], cholesky(SINGULAR, 3, 1e-10), U)),
        ("wishart", 20, 30, lambda U: wishart(3, 5.5, None, U)),
        ("wishart_scale", 21, 30, lambda U: wishart(2, 4.0, cholesky(SCALE, 2, 1e-12), U)),
    ]
    for label, seed, draws, draw in lines:
        print(draw_line(label, seed, draws, draw))
        if label == "normal":
            # The pinned normals take every region of the generator.
            assert sorted(REGIONS) == ["1", "2", "3", "center", "tail"], REGIONS


if __name__ == "__main__":
    main()
