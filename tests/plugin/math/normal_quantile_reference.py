#!/usr/bin/env python3
# Computes normal_quantile_reference.inc with mpmath: quantiles of the normal distribution to 30 digits, for
# arguments that are exactly Doubles. Usage: normal_quantile_reference.py > normal_quantile_reference.inc
import random

import mpmath as mp

mp.mp.dps = 60


def cumulative(x):
    return mp.erfc(-x / mp.sqrt(2)) / 2


def quantile(p):
    """Newton's method on the smaller of both tails, from an asymptotic guess."""
    exact = mp.mpf(p)
    if exact == mp.mpf("0.5"):
        return mp.mpf(0)
    tail = min(exact, 1 - exact)
    x = -mp.sqrt(-2 * mp.log(2 * tail))
    for _ in range(200):
        # On log(cumulative), which is nearly straight in the square.
        value = cumulative(x)
        density = mp.exp(-x * x / 2) / mp.sqrt(2 * mp.pi)
        step = (mp.log(value) - mp.log(tail)) * value / density
        x -= step
        if abs(step) < mp.mpf(10) ** -50:
            break
    else:
        raise RuntimeError(f"no quantile found for {p!r}")
    return x if exact < mp.mpf("0.5") else -x


random.seed(20240229)
arguments = [0.025, 0.975, 0.02425, 0.97575, 0.25, 0.75, 0.5 + 2.0**-53, 0.5 - 2.0**-54, 1e-300, 5e-324, 2.0**-1022,
             1e-310, 1 - 2.0**-53, 0.001, 0.999]
arguments += [random.uniform(0.02425, 0.97575) for _ in range(120)]
arguments += [0.5 + random.choice([-1, 1]) * 10 ** random.uniform(-14, -2) for _ in range(20)]
arguments += [10 ** random.uniform(-307, -2) for _ in range(60)]
arguments += [random.uniform(0, 0.02425) for _ in range(40)]
arguments += [random.uniform(0.97575, 1) for _ in range(40)]
arguments += [1 - 10 ** random.uniform(-15, -2) for _ in range(30)]
for p in sorted(arguments):
    print(f"{{{p.hex()}, {mp.nstr(quantile(p), 30, strip_zeros=False)}L}},")
