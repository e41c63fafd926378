# SPDX-License-Identifier: MIT
"""Lines and branches reached, by folder, and the lines that no test reaches. scripts/coverage.sh calls it."""

import json
import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
OURS = ("common", "src", "velloric/src", "coralith/src", "toolkit", "apps")
COUNTS = (("lines", "covered"), ("lines", "count"), ("branches", "covered"), ("branches", "count"))


def has_counts(program: Path) -> bool:
    return b"__llvm_covmap" in program.read_bytes()


def instrumented(build: Path) -> list[Path]:
    """The programs and shared libraries of the build that count."""
    found = (path for path in build.rglob("*") if "CMakeFiles" not in path.parts)
    files = [path for path in found if path.is_file() and not path.is_symlink()]
    binaries = [path for path in files if path.suffix not in (".o", ".a") and path.open("rb").read(4) == b"\x7fELF"]
    return sorted(path for path in binaries if has_counts(path))


def read_by_llvm(build: Path, *options: str) -> str:
    first, *others = instrumented(build)
    objects = [part for path in others for part in ("--object", str(path))]
    command = ["llvm-cov", "export", f"--instr-profile={build / 'all.profdata'}", f"--compilation-dir={build}", *options]
    return subprocess.run([*command, str(first), *objects], check=True, stdout=subprocess.PIPE, text=True).stdout


def own_source(name: str) -> Path | None:
    """Of a source that is ours, its place in the tree."""
    path = Path(os.path.normpath(name))
    return path.relative_to(ROOT) if any(path.is_relative_to(ROOT / folder) for folder in OURS) else None


def share(covered: int, total: int) -> str:
    return f"{100 * covered / total:.1f} %" if total else "-"


def table(summaries: list[dict]) -> str:
    folders: dict[str, list[int]] = {}
    for file in summaries:
        source = own_source(file["filename"])
        for name in (str(source.parent), "all") if source else ():
            sums = folders.setdefault(name, [0] * len(COUNTS))
            for i, (kind, count) in enumerate(COUNTS):
                sums[i] += file["summary"][kind][count]
    rows = ["| folder | lines | reached | branches | reached |", "| --- | --- | --- | --- | --- |"]
    for folder in sorted(folders, key=lambda name: (name == "all", name)):
        lines, all_lines, branches, all_branches = folders[folder]
        rows.append(f"| {folder} | {all_lines} | {share(lines, all_lines)} | {all_branches} | {share(branches, all_branches)} |")
    return "\n".join(rows) + "\n"


def unreached(lines_of_llvm: str) -> str:
    """The lines with a count of zero, as `file:line: text`, from the tracefile that llvm-cov writes."""
    found, source, texts = [], None, []
    for record in lines_of_llvm.splitlines():
        kind, _, value = record.partition(":")
        if kind == "SF":
            source = own_source(value)
            texts = (ROOT / source).read_text(encoding="utf-8").splitlines() if source else []
        elif source and kind == "DA" and value.endswith(",0"):
            line = int(value.split(",")[0])
            found.append(f"{source}:{line}: {texts[line - 1].strip()}")
    return "\n".join(found) + "\n"


def main(build: Path) -> None:
    summaries = json.loads(read_by_llvm(build, "--summary-only"))["data"][0]["files"]
    (build / "folders.md").write_text(table(summaries))
    (build / "unreached.txt").write_text(unreached(read_by_llvm(build, "--format=lcov")))
    print((build / "folders.md").read_text())


if __name__ == "__main__":
    main(Path(sys.argv[1]).resolve())
