#!/usr/bin/env python3
"""Reference values of rates and payments, by bisection and closed formulas in decimals of 60 digits.

Prints one line a case: its name and the values that the tests of the calculator state. A rate of
return stands there twice: exactly, and as the calculator's search finds it in doubles, step by step.
The payment is principal * rate * (1 + rate)^n / ((1 + rate)^n - 1), the rate of a period is
(1 + rate / compounded)^(compounded / paid) - 1, the worth is the sum of amount / (1 + rate)^time.
"""
from decimal import Decimal, getcontext

getcontext().prec = 60

FLOWS = {
    "Bond": ([0, 1, 2, 3, 4, 5], [-950, 40, 40, 40, 40, 1040]),
    "Saving": ([0, "0.25", "0.5", "0.75", 1], [-100, -100, -100, -100, 412]),
    "Loss": ([0, 1, 2], [-1000, 200, 300]),
    "Doubling": ([0, 10], [-1, 2]),
    "Ruin": ([0, 1], [-1000, 20]),
    "Lottery": ([0, 1], [-1, 500]),
    "Borrowing": ([0, 1, 2], [1000, -600, -600]),
    "NoRate": ([0, 1, 2], [100, -150, 100]),
}
PAYMENTS = [
    ("1000", "0.01", 12),
    ("250000", "0.00375", 360),
    ("1000", "0.01", 1),
    ("18500", "0.0725", 7),
    ("100", "-0.01", 10),
]
# Nominal rate of the interval, times compounded, times paid.
PERIOD_RATES = [("0.12", 12, 12), ("0.06", 2, 12), ("0.05", 365, 12), ("0.08", 1, 52), ("-0.1", 4, 1)]
# Times in years, amounts, rate.
WORTHS = [
    ([0, 1, 2, 3], [-1000, 400, 400, 400], "0.08"),
    ([0, 1, 2, 3], [-1000, 400, 400, 400], "-0.5"),
    (list(range(1, 31)), [100] * 30, "0.05"),
    ([0, "0.5", "1.25"], [10, 20, 30], "0.1"),
    ([-1, 0], [100, 50], "0.25"),
]


def worth(times, values, rate):
    growth = Decimal(1) + rate
    return sum(Decimal(v) / growth ** Decimal(t) for t, v in zip(times, values))


def search(times, values):
    """The rate by the calculator's own steps, in doubles, one after the other."""

    def f(x):
        total = 0.0
        for t, v in zip(times, values):
            total += float(v) / (x + 1.0) ** float(t)
        return total

    x1, x2 = 0.0, 0.2
    f1, f2 = f(x1), f(x2)
    for _ in range(50):
        if f1 * f2 < 0:
            break
        if abs(f2) > abs(f1):
            x1 = (x1 - 1.0) * 0.5
            f1 = f(x1)
        else:
            x2 = x2 + 1.6 * (x2 - x1)
            f2 = f(x2)
    if f1 * f2 > 0:
        return None
    r, d = (x1, x2 - x1) if f(x1) < 0 else (x2, x1 - x2)
    for _ in range(50):
        d *= 0.5
        m = r + d
        fm = f(m)
        if abs(d) < 0.00001 or abs(fm) < 0.00001:
            return f"{m:.17f}"
        if not fm > 0:
            r = m
    return None


def rate_of(times, values):
    low, high = Decimal("-0.99"), Decimal("1000")
    falling = worth(times, values, low) > 0
    if falling == (worth(times, values, high) > 0):
        return None
    for _ in range(150):
        middle = (low + high) / 2
        if (worth(times, values, middle) > 0) == falling:
            low = middle
        else:
            high = middle
    return low


for name, (times, values) in FLOWS.items():
    rate = rate_of(times, values)
    print(f"{name} {rate and format(rate, '.12f')} {search(times, values)}")
for rate, compounded, paid in PERIOD_RATES:
    growth = 1 + Decimal(rate) / compounded
    print(f"period {rate} {compounded} {paid} {growth ** (Decimal(compounded) / paid) - 1:.18f}")
for times, values, rate in WORTHS:
    print(f"worth {len(times)} {rate} {worth(times, values, Decimal(rate)):.14f}")
for principal, rate, periods in PAYMENTS:
    rate = Decimal(rate)
    growth = (1 + rate) ** periods
    print(f"{principal} {rate} {periods} {Decimal(principal) * rate * growth / (growth - 1):.16f}")
