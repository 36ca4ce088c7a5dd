#!/usr/bin/env python3
"""Prints the Taylor coefficients of 1/Gamma(1+z) about z = 0 used by
kxcommonr/common/dist/internal/KXDistGammaFunction.cpp (reciprocal gamma on [0.5, 1.5]).

Degree 22 keeps the truncation below 1e-20 for |z| <= 0.5.
Usage: python3 make_rgamma_coefficients.py
"""
import mpmath as mp

mp.mp.dps = 50
coefficients = mp.taylor(lambda z: mp.rgamma(1 + z), 0, 22)
for k, c in enumerate(coefficients):
    print("    %s,  // z^%d" % (mp.nstr(c, 20, min_fixed=0, max_fixed=0), k))
