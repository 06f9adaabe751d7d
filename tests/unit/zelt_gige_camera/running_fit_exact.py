#!/usr/bin/env python3
"""Works out running_fit_exact.inc: the line that the running fit must publish, in exact arithmetic.

Evaluates the five decayed sums about absolute zero, as the formula states them, with rational numbers:
no rounding, no moving origin. Points and weights are made from integers only, so that the test can make the
very same ones. Run it from this folder to write the table again; the numbers depend on nothing else.
"""
from fractions import Fraction

N = 20
DECAY = Fraction(N - 1, N)
# Weights fall by 5 % per point: what lies further back than this changes no digit that is compared.
WINDOW = 2200


def noise(index):
    """A fixed pseudo-random integer in -50000 .. 50000 (the test holds the same formula)."""
    state = (index * 6364136223846793005 + 1442695040888963407) % 2**64
    return (state >> 33) % 100001 - 50000


def point(case, index):
    """Camera time, host time, weight in hundredths of one point."""
    camera = case["camera"] + index * case["camera_step"]
    host = case["host"] + index * case["host_step"] + noise(index)
    weight = [100, 100, 50, 1][index % 4]
    return camera, host, weight


def line(case):
    """Slope, and host time at the newest camera time, as fractions."""
    last = case["points"] - 1
    first = max(0, last + 1 - WINDOW)
    newest_camera, newest_host, _ = point(case, last)
    s = sh = sc = shc = scc = 0  # scaled by 100 * 20**(last - index) * 19**-(last - index)
    # All weights over one denominator: w_i * 19**(last-i) * 20**(i-first).
    for index in range(first, last + 1):
        camera, host, weight = point(case, index)
        c = camera - newest_camera
        h = host - newest_host
        w = weight * 19 ** (last - index) * 20 ** (index - first)
        s += w
        sh += w * h
        sc += w * c
        shc += w * h * c
        scc += w * c * c
    slope = Fraction(shc * s - sh * sc, scc * s - sc * sc)
    at_newest = (Fraction(sh) - slope * sc) / s + newest_host
    return slope, at_newest


def decimal(value, digits=25):
    """A fraction in decimal, truncated."""
    sign = "-" if value < 0 else ""
    value = abs(value)
    whole = value.numerator // value.denominator
    rest = value - whole
    return f"{sign}{whole}.{int(rest * 10**digits):0{digits}d}"


CASES = []
for camera in (0, 10**13, 2**62):
    for host in (1, 1_700_000_000_000_000_000):
        for points in (20, 21, 300, 864_000):
            # One second apart; the camera runs 12 millionths fast.
            CASES.append(dict(camera=camera, host=host, points=points, camera_step=1_000_012_000,
                              host_step=1_000_000_000))

with open("running_fit_exact.inc", "w", encoding="ascii") as out:
    out.write("// Made by running_fit_exact.py. Camera start, host start, points; slope; host time at the newest\n"
              "// camera time: whole units and the fraction.\n")
    for case in CASES:
        slope, at_newest = line(case)
        whole = at_newest.numerator // at_newest.denominator
        fraction = at_newest - whole
        out.write(f"{{{case['camera']}, {case['host']}u, {case['points']}, {decimal(slope, 30)}, "
                  f"{whole}u, {decimal(fraction, 20)}}},\n")
