# SPDX-License-Identifier: MIT
"""What the programs of bench/ printed, and what is reckoned from it."""

from math import exp, log


class Records:
    def __init__(self, lines: list[dict]):
        self.lines = lines

    def of(self, what: str, **wanted) -> list[dict]:
        def fits(line: dict) -> bool:
            return line["what"] == what and all(line.get(key) == value for key, value in wanted.items())

        return [line for line in self.lines if fits(line)]


def ratio(line: dict, slower: str, ours: str = "ours") -> float:
    return line["seconds"][slower] / line["seconds"][ours]


def geometric_mean(values: list[float]) -> float:
    return exp(sum(log(value) for value in values) / len(values))
