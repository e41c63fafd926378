# SPDX-License-Identifier: MIT
"""Whole jobs: figures for their bars, a table, and a picture of where their time goes."""

from html import escape

from markdown import table
from records import Records

GIB = 1024**3
PHASES = ("reading", "making", "writing", "checking")
COLOURS = {"reading": "#4477aa", "making": "#228833", "writing": "#ccbb44", "checking": "#ee6677", "the rest": "#999999"}


def ours(records: Records, job: str) -> list[float]:
    return [line["seconds"]["ours"] for line in records.of("job", job=job)]


def over_parts(line: dict) -> float:
    """Time of the whole over that of its parts, each measured by itself."""
    return line["seconds"]["ours"] / sum(line["parts"].values())


def files_a_second(line: dict) -> float:
    return line["files"] / line["seconds"]["ours"]


def jobs_table(records: Records) -> str:
    rows = []
    for line in records.of("job"):
        title = f"`{line['job']}`, {line['side']} x {line['side']}"
        for program, seconds in line["seconds"].items():
            rows.append([title, program, f"{seconds:.3f} s"])
        for part, seconds in line.get("parts", {}).items():
            rows.append([title, f"{part}, by itself", f"{seconds:.3f} s"])
    for line in records.of("batch"):
        rows.append([f"`batch --{line['job']}`, {line['files']} files", "ours", f"{files_a_second(line):.1f} files/s"])
    for line in records.of("job_memory"):
        rows.append([f"`map`, {line['side']} x {line['side']}", "peak memory", f"{line['bytes'] / GIB:.2f} GiB"])
    return table(["job", "", "wall time, median"], rows)


def spans_of(line: dict) -> list[tuple[str, float]]:
    """The phases of a job in the order in which they come, and what the command line takes beside them."""
    spans = [(phase, line["phases"].get(phase, 0.0)) for phase in PHASES]
    rest = line["seconds"]["ours"] - sum(seconds for _, seconds in spans)
    return [*spans, ("the rest", max(0.0, rest))]


def jobs_picture(records: Records) -> str:
    """Bars of whole jobs, in parts as long as the phases of the job. SVG."""
    lines = records.of("job")
    left, width, row = 190, 560, 34
    longest = max((line["seconds"]["ours"] for line in lines), default=1.0)
    height = row * len(lines) + 50
    out = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {left + width + 80} {height}" font-family="sans-serif" font-size="14">',
        f'<rect width="100%" height="100%" fill="#ffffff"/>',
    ]
    for number, line in enumerate(lines):
        y, x = 8 + number * row, float(left)
        out.append(f'<text x="{left - 8}" y="{y + 17}" text-anchor="end">{escape(line["job"])}, {line["side"]}²</text>')
        for name, seconds in spans_of(line):
            part = width * seconds / longest
            out.append(
                f'<rect x="{x:.1f}" y="{y}" width="{part:.1f}" height="24" fill="{COLOURS[name]}">'
                f"<title>{name}: {1000 * seconds:.0f} ms</title></rect>"
            )
            x += part
        out.append(f'<text x="{x + 6:.1f}" y="{y + 17}">{line["seconds"]["ours"]:.2f} s</text>')
    x = left
    for name, colour in COLOURS.items():
        y = row * len(lines) + 18
        out.append(f'<rect x="{x}" y="{y}" width="14" height="14" fill="{colour}"/><text x="{x + 19}" y="{y + 12}">{name}</text>')
        x += 110
    return "\n".join([*out, "</svg>"]) + "\n"
