# -*- coding: utf-8 -*-
"""The chart: for each work how long plain Python and the floor take, in times of ours, on a logarithmic scale."""

import math

from contenders import FLOOR, OURS, PLAIN

SHOWN = (
    ("load", u"load of the module"),
    ("catalogue-100", u"catalogue of 100 lines"),
    ("catalogue-10000", u"catalogue of 10,000 lines"),
    ("catalogue-1000000", u"catalogue of 1,000,000 lines"),
    ("rubbish", u"catalogue without an entry, 10 MB"),
    ("rows", u"list rows for 10,000 entries"),
    ("root-file", u"root file, 1,000 new references"),
    ("merge", u"merge of 500 bouquets"),
)
KEY = (
    ("floor", u"the floor in C"),
    ("ours", u"ours"),
    ("plain", u"plain Python, and how many times as long it takes"),
)
WIDTH, LEFT, RIGHT, TOP, STEP = 860, 270, 40, 78, 34
STYLE = u"""
    svg { background: #ffffff; font: 13px "DejaVu Sans", Verdana, sans-serif; }
    text { fill: #24292f; }
    .small { font-size: 11px; fill: #57606a; }
    .title { font-size: 16px; font-weight: bold; }
    .grid { stroke: #d0d7de; stroke-width: 1; }
    .one { stroke: #57606a; stroke-width: 1.5; }
    .span { stroke: #afb8c1; stroke-width: 4; stroke-linecap: round; }
    .ours { fill: #0b6e4f; }
    .plain { fill: #c2571a; }
    .floor { fill: #ffffff; stroke: #3b5b92; stroke-width: 3; }
    @media (prefers-color-scheme: dark) {
      svg { background: #0d1117; }
      text { fill: #e6edf3; }
      .small { fill: #9198a1; }
      .grid { stroke: #30363d; }
      .one { stroke: #9198a1; }
      .span { stroke: #484f58; }
      .ours { fill: #3fb68b; }
      .plain { fill: #f0883e; }
      .floor { fill: #0d1117; stroke: #79a6e8; }
    }
"""


class Scale(object):
    """Places on the axis, which reaches a little beyond the lowest and the highest ratio."""

    def __init__(self, ratios):
        self.low = math.log10(min(ratios)) - 0.15
        self.high = math.log10(max(ratios)) + 0.3

    def __call__(self, ratio):
        share = (math.log10(ratio) - self.low) / (self.high - self.low)
        return LEFT + share * (WIDTH - LEFT - RIGHT)

    def marks(self):
        """The ratios that have a line of the grid."""
        return [10.0 ** power for power in range(int(math.ceil(self.low)), int(math.floor(self.high)) + 1)]


def _text(x, y, text, kind=u"", anchor=u"start"):
    return u'  <text x="%.1f" y="%.1f" text-anchor="%s"%s>%s</text>\n' % (
        x, y, anchor, u' class="%s"' % kind if kind else u"", text)


def _line(x1, y1, x2, y2, kind):
    return u'  <line x1="%.1f" y1="%.1f" x2="%.1f" y2="%.1f" class="%s"/>\n' % (x1, y1, x2, y2, kind)


def _dot(x, y, kind):
    return u'  <circle cx="%.1f" cy="%.1f" r="6" class="%s"/>\n' % (x, y, kind)


def _times(ratio):
    return u"%g" % float(u"%.3g" % ratio) + u"×"


def _key():
    parts, x = [], LEFT
    for kind, words in KEY:
        parts.append(_dot(x + 6, 46, kind) + _text(x + 18, 50, words))
        x += 48 + 8 * len(words)
    return u"".join(parts)


def _grid(scale, bottom):
    parts = []
    for mark in scale.marks():
        parts.append(_line(scale(mark), TOP - 8, scale(mark), bottom, "one" if mark == 1 else "grid"))
        parts.append(_text(scale(mark), bottom + 18, _times(mark), "small", "middle"))
    return u"".join(parts)


def _row(scale, y, title, floor, plain):
    return (_text(LEFT - 24, y + 4, title, anchor="end")
            + _line(scale(min(1, floor)), y, scale(max(1, plain)), y, "span")
            + _dot(scale(1), y, "ours") + _dot(scale(floor), y, "floor") + _dot(scale(plain), y, "plain")
            + _text(scale(max(plain, 1)) + 12, y + 4, _times(plain), "small"))


def drawn(results):
    """The chart as SVG."""
    by_key = dict((result.row.key, result) for result in results)
    rows = [(title, by_key[key].ratio(FLOOR, OURS), by_key[key].ratio(PLAIN, OURS)) for key, title in SHOWN]
    scale = Scale([ratio for row in rows for ratio in row[1:]])
    bottom = TOP + STEP * len(rows)
    body = u"".join(_row(scale, TOP + STEP * (index + 0.5), *row) for index, row in enumerate(rows))
    return (u'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" role="img">\n' % (WIDTH, bottom + 34)
            + u"  <title>How long each takes, in times of ours</title>\n  <style>%s  </style>\n" % STYLE
            + _text(24, 26, u"How long each takes, in times of ours", "title")
            + _key() + _grid(scale, bottom) + body + u"</svg>\n").encode("utf-8")
