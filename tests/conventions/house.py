# SPDX-License-Identifier: MIT
"""The house: its parts, their rooms from the ground up, and what a part may take from the others."""

from dataclasses import dataclass, field
from fnmatch import fnmatch
from pathlib import Path

from source_tree import files

CODE = {".cpp", ".h", ".cu"}


@dataclass(frozen=True)
class Part:
    folder: str
    levels: list[list[str]]  # rooms, from the ground up; those of one level do not know each other
    uses: list[str]  # patterns of files of other parts; PUBLIC stands for the public headers of src/
    include_roots: list[str] = field(default_factory=list)  # besides the root of the tree
    exceptions: list[tuple[str, str]] = field(default_factory=list)  # (who includes, what is included)


PUBLIC = "public headers"

PARTS = [
    Part("common", [], []),
    Part(
        "src",
        [["foundation"], ["boundary"], ["filters"], ["normals"], ["layers"], ["umbrix"], ["files", "texels", "worklist"]],
        ["common/*"],
        ["src"],
        [
            # The boundary declares functions that take the plain record of the options.
            ("src/boundary/*.h", "src/umbrix/umbrix_options.h"),
        ],
    ),
    # A companion takes from src/ the declarations that it implements, and the plain records in them.
    Part(
        "velloric/src",
        [["bilateral", "blend", "depth", "normals", "occlusion", "rays"]],
        ["common/*", "src/boundary/texture_kernels.h"],
        ["velloric/src", "src"],
    ),
    Part(
        "coralith/src",
        [["kernels"], ["device"], ["cuda", "host", "opencl", "stages"], ["session"]],
        ["common/*", "src/boundary/gpu_library.h", "src/umbrix/umbrix_options.h"],
        ["coralith/src", "src"],
    ),
    Part(
        "toolkit",
        [
            ["base"],
            ["files", "integration", "pages", "relief"],
            ["pictures"],
            ["checks", "settings", "textures"],
            ["lists"],
            ["tasks"],
            ["workers"],
            ["batch"],
        ],
        [PUBLIC, "common/vector_targets.h", "common/lanes-inl.h"],
        ["src"],
        [
            ("toolkit/files/file_search.cpp", "toolkit/pictures/input_formats.h"),
        ],
    ),
    # The interface for C. No code of ours knows it.
    Part("capi", [], ["toolkit/*", PUBLIC], ["src", "capi"]),
    Part(
        "apps/umbrix",
        [["interrupts"], ["terminal"], ["options"], ["options/describe"], ["commands"], ["commands/light", "commands/list", "commands/pack", "commands/relief", "commands/tell"]],
        ["toolkit/*"],
        ["apps/umbrix"],
        [
            # The words of the toolkit, without its name.
            ("apps/umbrix/*", "apps/umbrix/toolkit_names.h"),
            # The line of commands has those of the rooms above among them.
            ("apps/umbrix/commands/command_line.cpp", "apps/umbrix/commands/light/*"),
            ("apps/umbrix/commands/command_line.cpp", "apps/umbrix/commands/list/list_command.h"),
            ("apps/umbrix/commands/command_line.cpp", "apps/umbrix/commands/pack/*"),
            ("apps/umbrix/commands/command_line.cpp", "apps/umbrix/commands/relief/*"),
            ("apps/umbrix/commands/command_line.cpp", "apps/umbrix/commands/tell/*"),
        ],
    ),
    # What a user changes, the work on it, and the window around both. Qt is known above the work.
    Part(
        "apps/desktop",
        [["document"], ["work"], ["views"], ["panels"]],
        ["toolkit/*", PUBLIC],
        ["apps/desktop", "src"],
    ),
    Part("examples", [], [PUBLIC, "toolkit/*"], ["src"]),
]


def part_of(path: str) -> Part | None:
    return next((part for part in PARTS if path.startswith(part.folder + "/")), None)


def room_of(part: Part, path: str) -> str:
    """The innermost declared room of a file; "" for a file at the door of its part."""
    folder = Path(path).parent.relative_to(part.folder).as_posix()
    rooms = [room for level in part.levels for room in level]
    inside = [room for room in rooms if folder == room or folder.startswith(room + "/")]
    return max(inside, key=len, default="")


def is_declared(part: Part, path: str) -> bool:
    """Whether a file lies at the door of its part or in a declared room. A part without rooms may have any folders."""
    return not part.levels or room_of(part, path) != "" or Path(path).parent.as_posix() == part.folder


def level_of(part: Part, room: str) -> int:
    """A room's height in its part; the door, with the files that stand before all rooms, is above them."""
    return next((i for i, level in enumerate(part.levels) if room in level), len(part.levels))


def is_allowed(part: Part, includer: str, included: str, public: set[str]) -> bool:
    if any(fnmatch(includer, who) and fnmatch(included, what) for who, what in part.exceptions):
        return True
    if included.startswith(part.folder + "/"):
        own, other = room_of(part, includer), room_of(part, included)
        return own == other or level_of(part, other) < level_of(part, own)
    return any(
        included in public if pattern == PUBLIC else fnmatch(included, pattern) for pattern in part.uses
    )


def sources(root: Path, part: Part) -> list[Path]:
    return files(root, [part.folder], CODE)
