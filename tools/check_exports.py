#!/usr/bin/env python3
"""Check a built library against the export table.

  check_exports.py LIBRARY [--objdump OBJDUMP] [--nm NM]

For an ELF shared object: the dynamic symbols it defines are exactly the
implemented rows of src/exports/exports.tab and the reference-BLAS entries
of the Linux builds (dgemm_, dgemv_ and a weak xerbla_); it leaves jwe_lca,
jwe_x_init and jwe_xint undefined (the core run-time provides them) and
calls nothing from the platform's maths library.

For a PE DLL: its export table is exactly the implemented rows; it imports
only from KERNEL32, msvcrt and mivori.dll, and no maths function from msvcrt.
"""
import argparse
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools"))
import gen_exports  # noqa: E402

LIBM = re.compile(
    r"^_*(exp|exp2|exp10|expm1|log|log2|log10|log1p|logb|sin|cos|tan|sincos|asin|acos|atan|atan2|"
    r"sinh|cosh|tanh|asinh|acosh|atanh|pow|pow10|sqrt|cbrt|hypot|floor|ceil|trunc|round|lround|"
    r"llround|fmod|remainder|remquo|erf|erfc|tgamma|lgamma|gamma|ldexp|frexp|modf|scalbn|scalbln|"
    r"nearbyint|rint|lrint|llrint|fma|fdim|fmax|fmin|nextafter|nexttoward|ilogb|j0|j1|jn|y0|y1|yn)"
    r"[fl]?(_finite)?$")
CORE = {"jwe_lca", "jwe_x_init", "jwe_xint"}
# Linux only, outside the table: the Windows library exports exactly the table.
ELF_BLAS = {"dgemm_", "dgemv_", "xerbla_"}
ALLOWED_DLLS = {"kernel32.dll", "msvcrt.dll", "mivori.dll"}


def check_elf(path, nm):
    defined = subprocess.run([nm, "-D", "--defined-only", path], capture_output=True, text=True,
                             check=True).stdout.split("\n")
    undefined = subprocess.run([nm, "-D", "--undefined-only", path], capture_output=True, text=True,
                               check=True).stdout.split("\n")
    exported = {line.split()[-1] for line in defined if line.strip() and line.split()[-2] in "TWiD"}
    exported = {s for s in exported if not s.startswith("_") or s.startswith("_jwe")}
    needed = {line.split()[-1].split("@")[0] for line in undefined if line.strip()}
    problems = []
    if not CORE <= needed:
        problems.append(f"does not import the core run-time's {sorted(CORE - needed)}")
    maths = sorted(s for s in needed if LIBM.match(s))
    if maths:
        problems.append(f"calls the platform's maths library: {maths}")
    missing_blas = sorted(ELF_BLAS - exported)
    if missing_blas:
        problems.append(f"misses the reference-BLAS entries {missing_blas}")
    weak = {line.split()[-1] for line in defined if line.strip() and line.split()[-2] == "W"}
    if "xerbla_" not in weak:
        problems.append("xerbla_ is not weak: a program's own could not take precedence")
    return exported - ELF_BLAS, problems


def check_pe(path, objdump):
    text = subprocess.run([objdump, "-p", path], capture_output=True, text=True, check=True).stdout
    dlls = {m.lower() for m in re.findall(r"DLL Name: (\S+)", text)}
    problems = []
    if not dlls <= ALLOWED_DLLS:
        problems.append(f"imports from {sorted(dlls - ALLOWED_DLLS)}")
    if "mivori.dll" not in dlls:
        problems.append("does not import mivori.dll")
    # Imported names: lines "\t   <hint>  <name>" inside the import tables.
    imports = set(re.findall(r"^\s+[0-9a-f]+\s+(\S+)\s*$", text.split("The Export Tables")[0], re.M))
    maths = sorted(s for s in imports if LIBM.match(s))
    if maths:
        problems.append(f"calls the C run-time's maths functions: {maths}")
    export_part = text.split("[Ordinal/Name Pointer] Table")[-1] if "[Ordinal/Name Pointer] Table" in text \
        else text.split("[Name Pointer/Ordinal] Table")[-1]
    exported = set(re.findall(r"^\s+\[\s*\d+\]\s+(\w+)\s*$", export_part, re.M))
    return exported, problems


def main():
    p = argparse.ArgumentParser()
    p.add_argument("library")
    p.add_argument("--objdump", default="objdump")
    p.add_argument("--nm", default="nm")
    opts = p.parse_args()
    rows = gen_exports.read_table()
    implemented = {r.name for r in rows if r.done}
    listed = {r.name for r in rows}
    with open(opts.library, "rb") as f:
        magic = f.read(4)
    if magic == b"\x7fELF":
        exported, problems = check_elf(opts.library, opts.nm)
    elif magic[:2] == b"MZ":
        exported, problems = check_pe(opts.library, opts.objdump)
    else:
        print(f"{opts.library}: neither ELF nor PE", file=sys.stderr)
        return 2
    unlisted = sorted(exported - listed)
    not_done = sorted((exported & listed) - implemented)
    missing = sorted(implemented - exported)
    if unlisted:
        problems.append(f"exports names the table does not list: {unlisted}")
    if not_done:
        problems.append(f"exports names the table marks todo: {not_done}")
    if missing:
        problems.append(f"misses implemented exports: {missing}")
    for line in problems:
        print(f"{opts.library}: {line}", file=sys.stderr)
    if not problems:
        print(f"{opts.library}: {len(exported)} exports, as the table lists")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
