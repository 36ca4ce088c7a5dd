#!/usr/bin/env python3
"""Writes dist_reference.csv: high-precision reference values of the
distribution functions of KXDistFun, computed with mpmath.

Every argument is a double, printed with 17 significant digits; mpmath reads
back exactly that double, so the reference is the exact function value at
the argument the C++ test passes. Values are printed with 40 significant
digits. Points whose value is below 1e-300 (or whose quantile is outside
[1e-300, 1e300]) are dropped.

Columns: function,arg1,arg2,arg3,value (unused arguments are 0).
Functions: erf, erfc, cdfnorm, idfnorm, cdft, sigt, idft, cdfchi, sigchi,
idfchi, cdff, sigf, idff, lgamma.

Usage: python3 make_dist_reference.py > dist_reference.csv
"""
import random
import signal
import sys

import mpmath as mp

mp.mp.dps = 50
SQRT2 = mp.sqrt(2)


def d(x):
    """The double nearest to x, as printed in the table and read by C++."""
    return float("%.17g" % float(x))


def mpf(x):
    return mp.mpf(d(x))


# --- The functions, in extended precision --------------------------------

def ncdf(x):
    return mp.erfc(-mpf(x) / SQRT2) / 2


def beta_continued_fraction(a, b, x):
    """I_x(a, b) by its continued fraction (modified Lentz) at 30 extra
    digits, for x below (a+1)/(a+b+2); used for the very large parameters
    where mpmath's hypergeometric series gives up."""
    with mp.workdps(mp.mp.dps + 30):
        a, b, x = mp.mpf(a), mp.mpf(b), mp.mpf(x)
        apb = a + b
        c = mp.mpf(1)
        d = 1 / (1 - apb * x / (a + 1))
        h = d
        m = 0
        while True:
            m += 1
            aa = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m))
            d = 1 / (1 + aa * d)
            c = 1 + aa / c
            h *= d * c
            aa = -(a + m) * (apb + m) * x / ((a + 2 * m) * (a + 2 * m + 1))
            d = 1 / (1 + aa * d)
            c = 1 + aa / c
            delta = d * c
            h *= delta
            if abs(delta - 1) < mp.mpf(10) ** (-mp.mp.dps + 5):
                break
        front = mp.exp(a * mp.log(x) + b * mp.log1p(-x) - mp.log(a) -
                       mp.log(mp.beta(a, b)))
        return front * h


def beta_lower_by_fraction(a, b, x):
    if x < (a + 1) / (a + b + 2):
        return +beta_continued_fraction(a, b, x)
    with mp.workdps(mp.mp.dps + 30):
        return +(1 - beta_continued_fraction(b, a, 1 - x))


def beta_is_negligible(a, b, x, lower):
    """True when the requested tail of the beta distribution at x is far
    below 1e-300 (its power term x^a y^b / B(a, b) is below e^-1000 and x is
    on that tail's side of the mode): mpmath can take very long to certify
    such values, and the table leaves them out anyway."""
    if x <= 0 or x >= 1:
        return False
    log_term = a * mp.log(x) + b * mp.log1p(-x) - mp.log(mp.beta(a, b))
    below_mode = x < a / (a + b)
    return log_term < -1000 and below_mode == lower


class Timeout(Exception):
    pass


def _on_alarm(signum, frame):
    raise Timeout()


signal.signal(signal.SIGALRM, _on_alarm)


def beta_lower(a, b, x):
    """I_x(a, b): mpmath's betainc, or the continued fraction where mpmath
    gives up or takes more than 2 seconds (very large parameters)."""
    if beta_is_negligible(a, b, x, True):
        return mp.mpf(0)
    signal.alarm(2)
    try:
        return mp.betainc(a, b, 0, x, regularized=True)
    except (mp.libmp.NoConvergence, ValueError, Timeout):
        pass
    finally:
        signal.alarm(0)
    return beta_lower_by_fraction(a, b, x)


def t_tails(t, df):
    """(P(T <= t), P(T > t)) with the small tail computed directly."""
    t, df = mpf(t), mpf(df)
    if t == 0:
        return mp.mpf(0.5), mp.mpf(0.5)
    x = df / (df + t * t)
    tail = beta_lower(df / 2, mp.mpf(0.5), x) / 2  # P(T > |t|)
    if t > 0:
        return 1 - tail, tail
    return tail, 1 - tail


def chi_tails(x, df):
    x, df = mpf(x), mpf(df)
    a, h = df / 2, x / 2
    if a * mp.log(h) - h - mp.loggamma(a) < -1000:
        # The tail on h's side of the mode is far below 1e-300.
        return (mp.mpf(0), mp.mpf(1)) if h < a else (mp.mpf(1), mp.mpf(0))
    try:
        lower = mp.gammainc(a, 0, h, regularized=True)
        upper = mp.gammainc(a, h, mp.inf, regularized=True)
    except mp.libmp.NoConvergence:
        # Very large a: the series for P below the mode, Legendre's continued
        # fraction for Q above, at 30 extra digits.
        with mp.workdps(mp.mp.dps + 30):
            eps = mp.mpf(10) ** (-mp.mp.dps + 5)
            front = mp.exp(a * mp.log(h) - h - mp.loggamma(a))
            if h < a:
                term = total = 1 / a
                n = 0
                while term > total * eps:
                    n += 1
                    term *= h / (a + n)
                    total += term
                lower = front * total
                upper = 1 - lower
            else:
                tiny = mp.mpf(10) ** -400
                bb = h + 1 - a
                c = 1 / tiny
                d = 1 / bb
                f = d
                i = 0
                while True:
                    i += 1
                    an = -i * (i - a)
                    bb += 2
                    d = 1 / (an * d + bb)
                    c = bb + an / c
                    delta = d * c
                    f *= delta
                    if abs(delta - 1) < eps:
                        break
                upper = front * f
                lower = 1 - upper
        lower, upper = +lower, +upper
    return lower, upper


def f_tails(f, df1, df2):
    f, df1, df2 = mpf(f), mpf(df1), mpf(df2)
    # x and its complement y formed separately (1 - x would round to 0 for
    # huge f); the upper tail is I_y(df2/2, df1/2), computed directly since
    # mpmath's upper form subtracts from 1.
    x = df1 * f / (df2 + df1 * f)
    y = df2 / (df2 + df1 * f)
    return beta_lower(df1 / 2, df2 / 2, x), beta_lower(df2 / 2, df1 / 2, y)


def solve_increasing(fn, target, lo, hi, logscale):
    """Bisection for fn(x) = target, fn increasing on [lo, hi] (the normal
    quantile; the function is cheap)."""
    lo, hi = mp.mpf(lo), mp.mpf(hi)
    for _ in range(400):
        mid = mp.sqrt(lo * hi) if logscale else (lo + hi) / 2
        if fn(mid) < target:
            lo = mid
        else:
            hi = mid
        if hi - lo <= abs(hi) * mp.mpf(10) ** (-45):
            break
    return (lo + hi) / 2


def solve_tail(tail_fn, target, lo, hi):
    """x in [lo, hi] with tail_fn(x) = target, for a positive monotone tail
    function: bisection on log(tail_fn) against log x down to a bracket of
    relative width 1e-3, then Anderson-Bjorck to full precision."""
    log_target = mp.log(target)

    def h(s):
        v = tail_fn(mp.exp(s))
        return (mp.log(v) if v > 0 else -mp.mpf(10) ** 6) - log_target
    a, b = mp.log(lo), mp.log(hi)
    ha, hb = h(a), h(b)
    if (ha < 0) == (hb < 0):
        return None  # the quantile is outside [lo, hi]
    while b - a > mp.mpf(1e-3):
        m = (a + b) / 2
        hm = h(m)
        if (hm < 0) == (ha < 0):
            a, ha = m, hm
        else:
            b = m
    try:
        return mp.exp(mp.findroot(h, (a, b), solver="anderson",
                                  tol=mp.mpf(10) ** (-90)))
    except ValueError:
        pass
    while b - a > abs(b) * mp.mpf(10) ** (-47) + mp.mpf(10) ** (-60):
        m = (a + b) / 2
        hm = h(m)
        if (hm < 0) == (ha < 0):
            a, ha = m, hm
        else:
            b = m
    return mp.exp((a + b) / 2)


def quantile(lower_fn, upper_fn, p, lo, hi):
    """x > 0 with lower_fn(x) = p, solving on the smaller tail (1 - p is
    exact)."""
    p = mpf(p)
    if p <= 0.5:
        return solve_tail(lower_fn, p, lo, hi)
    return solve_tail(upper_fn, 1 - p, lo, hi)


# --- The argument sets ----------------------------------------------------

rows = []


def emit(name, args, value):
    if value is None:
        return
    v = mp.mpf(value)
    if name.startswith("idf"):
        if not (mp.mpf(10) ** -300 <= abs(v) <= mp.mpf(10) ** 300):
            return
    elif name != "lgamma" and abs(v) < mp.mpf(10) ** -300:
        return
    a = list(args) + [0.0] * (3 - len(args))
    rows.append("%s,%s,%s,%s,%s" % (name, *["%.17g" % d(x) for x in a],
                                    mp.nstr(v, 40, min_fixed=1, max_fixed=0)))


def progress(message):
    sys.stderr.write(message + "\n")
    sys.stderr.flush()


random.seed(20261122)

# Error function pair and the normal CDF / quantile.
for x in [1e-300, 1e-10, 0.01, 0.3, 0.7071, 1.0, 1.5, 2.1, 2.2, 3.0, 4.5,
          5.9, 6.0, 6.8999, 6.9, 10.0, 20.0, 26.0]:
    emit("erf", [x], mp.erf(mpf(x)))
    emit("erf", [-x], mp.erf(mpf(-x)))
    emit("erfc", [x], mp.erfc(mpf(x)))
    emit("erfc", [-x], mp.erfc(mpf(-x)))
norm_x = [-37.5, -37.0, -35.25, -30.0, -25.5, -20.0, -15.0, -10.0, -8.0,
          -6.0, -5.0, -4.0, -3.0, -2.0, -1.0, -0.5, -0.01, 0.01, 0.5, 1.0,
          2.0, 3.0, 5.0, 8.0]
norm_x += [d(random.uniform(-38.0, 8.0)) for _ in range(60)]
norm_x += [d(random.uniform(-5.0, 5.0)) for _ in range(60)]
for x in norm_x:
    emit("cdfnorm", [x], ncdf(x))
norm_p = [1e-300, 1e-200, 1e-100, 1e-50, 1e-20, 1e-10, 3e-7, 1e-5, 0.001,
          0.01, 0.02425, 0.025, 0.1, 0.3, 0.45, 0.4999999, 0.5000001, 0.55,
          0.7, 0.9, 0.975, 0.97575, 0.999, 1 - 3e-7, 1 - 1e-12,
          1 - 2.0 ** -53]
norm_p += [d(random.uniform(3e-7, 1 - 3e-7)) for _ in range(60)]
norm_p += [d(10.0 ** random.uniform(-300, -7)) for _ in range(30)]
for p in norm_p:
    emit("idfnorm", [p], solve_increasing(ncdf, mpf(p), -40, 40, False))

# Degrees of freedom from 0.1 to 1e8.
DFS = [0.1, 0.5, 1.0, 1.5, 2.0, 3.0, 5.0, 10.0, 30.0, 100.0, 1e3, 1e4, 1e5,
       1e6, 1e7, 1e8]

T_VALUES = [0.001, 0.3, 0.9, 1.0, 1.2, 2.0, 3.0, 5.0, 8.0, 12.0, 30.0,
            100.0, 1e3, 1e5, 1e10, 1e40]
for df in DFS:
    progress("t %g" % df)
    for t in T_VALUES:
        for s in (t, -t):
            lower, upper = t_tails(s, df)
            emit("cdft", [s, df], lower)
            emit("sigt", [s, df], upper)

P_VALUES = [1e-300, 1e-30, 1e-10, 0.001, 0.025, 0.3, 0.4999, 0.5001, 0.6,
            0.975, 0.999, 1 - 1e-10]
for df in DFS:
    progress("idft %g" % df)
    for p in P_VALUES:
        def t_lower(t, df=df):
            return t_tails(t, df)[0]

        def t_upper(t, df=df):
            return t_tails(t, df)[1]
        if p < 0.5:  # t < 0: solve for |t| on the upper tail
            v = solve_tail(t_upper, mpf(p), 1e-300, 1e300)
            v = None if v is None else -v
        else:
            v = quantile(t_lower, t_upper, p, 1e-300, 1e300)
        emit("idft", [p, df], v)

for df in DFS:
    progress("chi %g" % df)
    sd = (2.0 * df) ** 0.5
    xs = [df * 1e-6, df * 0.01, df * 0.3, 1e-5, 0.5, 1.0, 5.0, 50.0, 500.0,
          1200.0]
    xs += [df + k * sd for k in (-8, -5, -3, -1, -0.3, 0.3, 1, 3, 5, 8, 12,
                                 20, 30)]
    for x in xs:
        x = d(x)
        if x <= 0:
            continue
        lower, upper = chi_tails(x, df)
        emit("cdfchi", [x, df], lower)
        emit("sigchi", [x, df], upper)
    chi_p = [1e-100, 1e-10, 0.001, 0.3, 0.5, 0.95, 1 - 1e-10]
    if df >= 1e7:
        chi_p = [1e-100, 0.3, 1 - 1e-10]  # slow near the mode
    for p in chi_p:
        v = quantile(lambda x, df=df: chi_tails(x, df)[0],
                     lambda x, df=df: chi_tails(x, df)[1], p, 1e-300, 1e300)
        emit("idfchi", [p, df], v)

F_DFS = [0.1, 1.0, 2.5, 10.0, 100.0, 1e4, 1e6, 1e8]
F_PAIRS = [(a, b) for a in F_DFS for b in F_DFS]
for df1, df2 in F_PAIRS:
    progress("f %g %g" % (df1, df2))
    for f in [1e-6, 0.001, 0.1, 0.5, 0.9, 1.0, 1.1, 2.0, 5.0, 20.0, 1e3,
              1e6]:
        lower, upper = f_tails(f, df1, df2)
        emit("cdff", [f, df1, df2], lower)
        emit("sigf", [f, df1, df2], upper)
F_QUANTILE_DFS = [0.1, 2.5, 100.0, 1e6, 1e8]
# (Both degrees of freedom 1e6 or more: left out, each point would take
# minutes of extended-precision continued fractions.)
for df1, df2 in [(a, b) for a in F_QUANTILE_DFS for b in F_QUANTILE_DFS
                 if min(a, b) < 1e6]:
    progress("idff %g %g" % (df1, df2))
    for p in [1e-100, 1e-10, 0.001, 0.5, 0.95, 1 - 1e-10]:
        v = quantile(lambda f, a=df1, b=df2: f_tails(f, a, b)[0],
                     lambda f, a=df1, b=df2: f_tails(f, a, b)[1], p, 1e-300,
                     1e300)
        emit("idff", [p, df1, df2], v)

for x in [1e-300, 1e-10, 0.1, 0.5, 0.9, 0.99, 1.0, 1.01, 1.25, 1.5, 1.99,
          2.0, 2.01, 2.5, 3.0, 4.5, 9.99, 10.0, 10.5, 50.0, 1e3, 1e6, 1e15,
          1e300]:
    emit("lgamma", [x], mp.loggamma(mpf(x)))

sys.stdout.write("function,arg1,arg2,arg3,value\n")
sys.stdout.write("\n".join(rows) + "\n")
