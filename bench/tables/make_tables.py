# SPDX-License-Identifier: MIT
"""Makes the tables of docs/performance.md from what the programs of bench/ print.

Usage: make_tables.py RECORDS BUILD_FOLDER --date DATE [--quick] [--docs FILE]
RECORDS holds one JSON object a line. Prints the tables and writes them to BUILD_FOLDER/table.md; with --docs
they also take the place of what is between the markers of FILE, and images/whole_jobs.svg beside it is drawn.
"""

import argparse
import json
from pathlib import Path

from bars import bars_table
from jobs import jobs_picture, jobs_table
from limits import limits_tables
from machine import machine
from measurements import differences_table, file_table, memory_table, scaling_tables, start_up_table
from records import Records

BEGIN, END = "<!-- bench: begin -->", "<!-- bench: end -->"


def document(records: Records, about: str) -> str:
    sections = [
        about,
        bars_table(records),
        "### Distance from the machine's limits",
        limits_tables(records),
        "### How far the peers' results are from ours",
        differences_table(records),
        "### Cost of the occlusion, ns a texel",
        scaling_tables(records),
        "### Where the time of a whole `UmbrixFile` goes",
        file_table(records),
        "### Whole jobs",
        "![Where the time of whole jobs goes](images/whole_jobs.svg)",
        jobs_table(records),
        "### Memory and start-up",
        memory_table(records),
        start_up_table(records),
    ]
    return "\n\n".join(sections)


def replace_between_markers(path: Path, text: str) -> None:
    page = path.read_text(encoding="utf-8")
    before, rest = page.split(BEGIN)
    after = rest.split(END)[1]
    path.write_text(f"{before}{BEGIN}\n\n{text}\n\n{END}{after}", encoding="utf-8")


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("records", type=Path)
    parser.add_argument("build", type=Path)
    parser.add_argument("--date", required=True)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--docs", type=Path)
    arguments = parser.parse_args()
    lines = arguments.records.read_text(encoding="utf-8").splitlines()
    records = Records([json.loads(line) for line in lines if line])
    text = document(records, machine(arguments.build, arguments.date, arguments.quick))
    (arguments.build / "table.md").write_text(text + "\n", encoding="utf-8")
    print(text)
    if arguments.docs:
        replace_between_markers(arguments.docs, text)
        (arguments.docs.parent / "images" / "whole_jobs.svg").write_text(jobs_picture(records), encoding="utf-8")


if __name__ == "__main__":
    main()
