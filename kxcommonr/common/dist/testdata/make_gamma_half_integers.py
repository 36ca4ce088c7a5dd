#!/usr/bin/env python3
"""Prints Gamma(k/2) for k = 1..40, correctly rounded to double, for the
table kGammaHalf in kxcommonr/common/dist/internal/KXDistGammaFunction.cpp (degrees of
freedom are mostly integers, so a = df/2 is mostly a half-integer).

Usage: python3 make_gamma_half_integers.py
"""
import mpmath as mp

mp.mp.dps = 50
for k in range(1, 41):
    print("    %r,  // Gamma(%g)" % (float(mp.gamma(mp.mpf(k) / 2)), k / 2))
