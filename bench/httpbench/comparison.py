# SPDX-License-Identifier: MIT
"""The figures of one measure, as lines of results."""

from . import peers


class Failed(Exception):
    """A measure has failed; says why."""


class Figure:
    """One figure of a measure, and what it is compared with. `beside` is "nginx", the better of the two
    configurations, or "fastest", the best of all peers. `wanted` bounds the ratio: from below if more is
    better, otherwise from above."""

    def __init__(self, name, unit, digits, beside="nginx", wanted=None, more_is_better=False, note=None):
        self.name, self.unit, self.digits, self.beside = name, unit, digits, beside
        self.wanted, self.more_is_better, self.note = wanted, more_is_better, note

    def lines(self, values):
        """The comparison that counts first, then one with each peer, whose name is appended."""
        ours = values["brevane"]
        others = {name: value for name, value in values.items() if name != "brevane"}
        named = {name: value for name, value in others.items()
                 if name != peers.LIMIT and self.beside in ("fastest", peers.product(name))}
        if named:
            best = (max if self.more_is_better else min)(named, key=named.get)
            yield self.line(self.name, ours, peers.product(best), named[best], wanted=self.wanted, note=self.note)
        for name, value in others.items():
            yield self.line(f"{self.name}.{name}", ours, name, value)

    def beside_itself(self, ours, undisturbed, condition):
        """The line of a measure whose peer is Brevane itself under another condition."""
        yield self.line(self.name, ours, f"brevane, {condition}", undisturbed, wanted=self.wanted, note=self.note)

    def line(self, name, ours, peer, value, wanted=None, note=None):
        line = {"name": name, "value": round(ours, self.digits), "unit": self.unit, "peer": peer,
                "peer_value": round(value, self.digits), "ratio": round(ours / value, 3) if value else None}
        if wanted is not None:
            line["wanted"] = f"{'>=' if self.more_is_better else '<='} {wanted}"
        if note is not None:
            line["note"] = note
        return line

    def failure(self, reason):
        """The line that replaces the figures of a failed measure."""
        return {"name": self.name, "failed": str(reason)}
