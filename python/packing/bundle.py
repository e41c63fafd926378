# SPDX-License-Identifier: MIT
"""bundle.py WHEEL FOLDER LIBTIFF: writes the wheel to the folder with all that its shared objects need, and checks it.

What the platform manylinux_2_36 promises is left out. Each library comes with the licence of its Debian package. JBIG,
whose licence is the GPL, must not be among them.
"""
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

PLATFORM = "manylinux_2_36_x86_64"
GLIBC = (2, 36)

# Of PEP 600: what every system of the platform has.
PROMISED = re.compile(r"(ld-linux-x86-64|libc|libm|libdl|librt|libpthread|libgcc_s|libstdc\+\+)\.so\.\d+$")


def needed(library: Path) -> list[str]:
    """Names of the libraries that one names itself."""
    text = subprocess.run(["readelf", "-d", library], check=True, capture_output=True, text=True).stdout
    return re.findall(r"\(NEEDED\).*\[(.+)\]", text)


def glibc_of(library: Path) -> tuple[int, ...]:
    """The latest version of the C library that one asks for."""
    text = subprocess.run(["readelf", "-V", library], check=True, capture_output=True, text=True).stdout
    versions = [tuple(map(int, found.split("."))) for found in re.findall(r"Name: GLIBC_([0-9.]+)", text)]
    return max(versions, default=(0,))


def paths_of(library: Path) -> dict[str, Path]:
    """Where the dynamic linker finds what a library needs, directly or not."""
    text = subprocess.run(["ldd", library], check=True, capture_output=True, text=True).stdout
    return {name: Path(path) for name, path in re.findall(r"^\s*(\S+) => (/\S+)", text, re.MULTILINE)}


def package_of(library: Path) -> str:
    """The Debian package that a file is from."""
    merged = Path(str(library).removeprefix("/usr"))  # as packages named it before /lib moved into /usr
    for path in (library, library.resolve(), merged, merged.resolve()):
        found = subprocess.run(["dpkg", "-S", path], capture_output=True, text=True)
        if found.returncode == 0:
            return found.stdout.split(":")[0]
    raise SystemExit(f"bundle: no package has {library}")


def copy_licence(package: str, licences: Path) -> None:
    text = Path("/usr/share/doc") / package / "copyright"
    shutil.copy(text, licences / f"{package}.txt")


def collect(own: Path, libtiff: Path, licences: Path) -> None:
    """Copies what is needed beside our own shared objects."""
    first = next(path for path in own.iterdir() if path.name.startswith("libumbrix-c.so"))
    places = {**paths_of(first), **paths_of(libtiff), libtiff.name: libtiff}
    pending = [path for path in own.iterdir() if ".so" in path.name]
    while pending:
        for name in needed(pending.pop()):
            target = own / name
            if target.exists() or PROMISED.match(name):
                continue
            if "jbig" in name:
                raise SystemExit("bundle: JBIG, whose licence is the GPL, would be part of the wheel")
            shutil.copy(places[name], target)
            copy_licence("libtiff6" if name == libtiff.name else package_of(places[name]), licences)
            pending.append(target)


def check(own: Path) -> None:
    present = {path.name for path in own.iterdir()}
    for path in sorted(own.glob("*.so*")):
        lacking = [name for name in needed(path) if name not in present and not PROMISED.match(name)]
        if lacking:
            raise SystemExit(f"bundle: {path.name} needs {', '.join(lacking)}")
        if glibc_of(path) > GLIBC:
            raise SystemExit(f"bundle: {path.name} needs a later C library than {GLIBC}")


def main(wheel: str, folder: str, libtiff: str) -> None:
    with tempfile.TemporaryDirectory() as scratch:
        with zipfile.ZipFile(wheel) as archive:
            archive.extractall(scratch)
        own = Path(scratch) / "umbrix" / "_library"
        licences = own / "licences"
        licences.mkdir()
        collect(own, Path(libtiff), licences)
        for path in own.glob("*.so*"):
            path.chmod(0o755)
            subprocess.run(["patchelf", "--set-rpath", "$ORIGIN", path], check=True)
        check(own)
        tags = next(Path(scratch).glob("*.dist-info")) / "WHEEL"
        tags.write_text(re.sub(r"^Tag: .*$", f"Tag: py3-none-{PLATFORM}", tags.read_text(), flags=re.MULTILINE))
        Path(folder).mkdir(parents=True, exist_ok=True)
        subprocess.run([sys.executable, "-m", "wheel", "pack", "--dest-dir", folder, scratch], check=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
