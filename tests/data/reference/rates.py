#!/usr/bin/env python3
"""Reference values of rates and payments, by bisection and closed formulas in decimals of 60 digits.

Prints one line a case: its name and the value that the tests of the calculator state.
"""
from decimal import Decimal, getcontext

getcontext().prec = 60

FLOWS = {
    "Bond": ([0, 1, 2, 3, 4, 5], [-950, 40, 40, 40, 40, 1040]),
    "Saving": ([0, "0.25", "0.5", "0.75", 1], [-100, -100, -100, -100, 412]),
    "Loss": ([0, 1, 2], [-1000, 200, 300]),
    "Doubling": ([0, 10], [-1, 2]),
}
PAYMENTS = [("1000", "0.01", 12), ("250000", "0.00375", 360), ("1000", "0.01", 1)]


def worth(times, values, rate):
    growth = Decimal(1) + rate
    return sum(Decimal(v) / growth ** Decimal(t) for t, v in zip(times, values))


def rate_of(times, values):
    low, high = Decimal("-0.99"), Decimal("10")
    falling = worth(times, values, low) > 0
    for _ in range(150):
        middle = (low + high) / 2
        if (worth(times, values, middle) > 0) == falling:
            low = middle
        else:
            high = middle
    return low


for name, (times, values) in FLOWS.items():
    print(f"{name} {rate_of(times, values):.12f}")
for principal, rate, periods in PAYMENTS:
    rate = Decimal(rate)
    growth = (1 + rate) ** periods
    print(f"{principal} {rate} {periods} {Decimal(principal) * rate * growth / (growth - 1):.16f}")
