#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What ./dev bench has written, one JSON object a line.

bench_results.py compare OLD NEW     each figure beside the one of an earlier run; exits 1 where one is a quarter worse
bench_results.py growth NEW PICTURE  the growth of cost as an SVG, from the results of the group "growth"
bench_results.py report NEW DOCUMENT the tables of a document, each between "<!-- figures: PROGRAM -->" and
                                     "<!-- end of figures -->", written anew
"""
import json
import math
import pathlib
import re
import sys

WORSE = 1.25  # the figures are ratios to a peer of the same run, but a busy machine still moves them
COLOURS = ["#1b6ca8", "#c8553d", "#588157", "#8e5ea2", "#d4a017", "#3a7d7c", "#7f4f24"]


def results(path):
    lines = pathlib.Path(path).read_text().splitlines()
    return {(r["program"], r["what"], r["peer_name"]): r for r in map(json.loads, lines)}


def compare(old_path, new_path):
    old, new = results(old_path), results(new_path)
    worse = 0
    for key, result in new.items():
        before = old.get(key)
        change = ""
        if before and before["figure"] > 0:
            ratio = result["figure"] / before["figure"]
            change = f"{before['figure']:10.3g} -> {result['figure']:10.3g}   {(ratio - 1) * 100:+6.1f} %"
            if ratio > WORSE and result["goal"]:
                change += "   WORSE"
                worse += 1
        else:
            change = f"{'':10} -> {result['figure']:10.3g}   new"
        print(f"{result['program'][:-6]:8} {result['what'][:46]:46} {change}")
    for key in old.keys() - new.keys():
        print(f"{key[0][:-6]:8} {key[1][:46]:46} no longer measured")
    return 1 if worse else 0


def growth_lines(path):
    """name -> [(rows, milliseconds)]; the benchmark names each "name, rows"."""
    lines = {}
    for (program, what, _), result in results(path).items():
        name, _, rows = what.rpartition(", ")
        if program == "growth_bench" and rows.isdigit():
            lines.setdefault(name, []).append((int(rows), result["ours"]))
    return {name: sorted(points) for name, points in lines.items()}


def growth(path, picture):
    lines = growth_lines(path)
    width, height, left, top, inner_width, inner_height = 720, 440, 64, 24, 440, 360
    rows = sorted({x for points in lines.values() for x, _ in points})
    times = [y for points in lines.values() for _, y in points]
    low, high = math.floor(math.log10(min(times))), math.ceil(math.log10(max(times)))
    span = math.log10(rows[-1] / rows[0])

    def place(x, y):
        return (left + math.log10(x / rows[0]) / span * inner_width,
                top + (high - math.log10(y)) / (high - low) * inner_height)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           'font-family="Inter, sans-serif" font-size="12">', f'<rect width="{width}" height="{height}" fill="white"/>']
    for power in range(low, high + 1):
        _, y = place(rows[0], 10 ** power)
        out.append(f'<path d="M{left} {y:.1f}h{inner_width}" stroke="#ddd"/>'
                   f'<text x="{left - 6}" y="{y + 4:.1f}" text-anchor="end">{10 ** power:g} ms</text>')
    for x in rows:
        px, _ = place(x, 1)
        out.append(f'<path d="M{px:.1f} {top}v{inner_height}" stroke="#ddd"/>'
                   f'<text x="{px:.1f}" y="{top + inner_height + 18}" text-anchor="middle">{x:,}</text>')
    for number, (name, points) in enumerate(lines.items()):
        colour = COLOURS[number % len(COLOURS)]
        path_data = "M" + "L".join(f"{px:.1f} {py:.1f}" for px, py in (place(*p) for p in points))
        y = top + 12 + number * 22
        out.append(f'<path d="{path_data}" fill="none" stroke="{colour}" stroke-width="2"/>')
        out += [f'<circle cx="{px:.1f}" cy="{py:.1f}" r="3" fill="{colour}"/>' for px, py in (place(*p) for p in points)]
        out.append(f'<path d="M{left + inner_width + 16} {y - 4}h20" stroke="{colour}" stroke-width="2"/>'
                   f'<text x="{left + inner_width + 42}" y="{y}">{name}</text>')
    out.append(f'<text x="{left + inner_width / 2}" y="{height - 14}" text-anchor="middle">rows or photos</text></svg>')
    pathlib.Path(picture).write_text("\n".join(out) + "\n")
    return 0


def number(value):
    """Three digits that count, with no exponent."""
    if value == 0:
        return "0"
    digits = max(0, 2 - math.floor(math.log10(abs(value))))
    return f"{value:,.{digits}f}"


def measured(value, unit, spread):
    return f"{number(value)} {unit}".strip() + (f" ±{spread * 100:.0f} %" if spread >= 0.005 else "")


def goal_of(result):
    """What the figure is held against, and whether it holds."""
    if not result["goal"]:
        return "", ""
    ratio = bool(result["peer_name"])
    goal = f"{number(result['goal'])} ×" if ratio else f"{number(result['goal'])} {result['unit']}".strip()
    return f"≤ {goal}", "yes" if result["met"] else "**missed**"


def table(rows):
    lines = ["| work | ours | peer or limit | ours / peer | goal | met |", "|---|---:|---|---:|---:|---|"]
    for result in rows:
        peer = ""
        ratio = ""
        if result["peer_name"]:
            peer = f"{result['peer_name']}: {measured(result['peer'], result['unit'], 0)}"
            ratio = number(result["figure"])
        goal, met = goal_of(result)
        ours = measured(result["ours"], result["unit"], result["spread"])
        # What a benchmark sets in belongs to the line above, and so it shall look in a table.
        what = re.sub("^ +", "– ", result["what"])
        lines.append(f"| {what} | {ours} | {peer} | {ratio} | {goal} | {met} |")
    return "\n".join(lines)


def report(path, document):
    measurements = list(results(path).values())
    text = pathlib.Path(document).read_text()

    def filled(block):
        rows = [r for r in measurements if r["program"] == block[1]]
        # What has not been measured this time keeps the figures of the last.
        return f"<!-- figures: {block[1]} -->\n{table(rows)}\n<!-- end of figures -->" if rows else block[0]

    pathlib.Path(document).write_text(
        re.sub(r"<!-- figures: (\w+) -->\n.*?<!-- end of figures -->", filled, text, flags=re.DOTALL))
    return 0


if __name__ == "__main__":
    commands = {"compare": compare, "growth": growth, "report": report}
    if len(sys.argv) != 4 or sys.argv[1] not in commands:
        sys.exit(__doc__)
    sys.exit(commands[sys.argv[1]](*sys.argv[2:]))
