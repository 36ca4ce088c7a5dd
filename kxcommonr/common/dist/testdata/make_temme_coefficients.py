"""Taylor coefficients in eta of C0, C1, C2 of Temme's uniform expansion of
the incomplete gamma ratio (used by IncGammaTemme in internal/KXDistIncGamma.cpp).

lambda - 1 = mu(eta) solves eta^2 / 2 = mu - log(1 + mu) (series reversion);
C0 = 1/mu - 1/eta, C1 = 1/eta^3 - 1/mu^3 - 1/mu^2 - 1/(12 mu),
C2 = C1'(eta) / eta + 1/(288 mu).
Run with sympy installed: python3 make_temme_coefficients.py
"""
import sympy as sp

eta = sp.symbols("eta")
N = 12
c = sp.symbols("c2:%d" % (N + 2))
mu = eta + sum(c[i] * eta ** (i + 2) for i in range(N))
expr = sp.series(mu - sp.log(1 + mu) - eta**2 / 2, eta, 0, N + 3).removeO()
solution = {}
for k in range(3, N + 3):
    coefficient = sp.expand(expr.coeff(eta, k)).subs(solution)
    solution[c[k - 3]] = sp.solve(coefficient, c[k - 3])[0]
mu = sp.expand(mu.subs(solution))
c0 = sp.series(1 / mu - 1 / eta, eta, 0, 10).removeO()
c1 = sp.series(1 / eta**3 - 1 / mu**3 - 1 / mu**2 - sp.Rational(1, 12) / mu,
               eta, 0, 9).removeO()
c2 = sp.series(sp.diff(c1, eta) / eta + sp.Rational(1, 288) / mu,
               eta, 0, 6).removeO()
for name, series, n in (("C0", c0, 10), ("C1", c1, 8), ("C2", c2, 6)):
    print(name, [series.coeff(eta, k) for k in range(n)])
