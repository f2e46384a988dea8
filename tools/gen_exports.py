#!/usr/bin/env python3
"""Generate the files that follow from the export table src/exports/exports.tab.

    include/mivor/mivor.h          public C header: every implemented export
    src/exports/mivorgsse2.def     the DLL's export list (implemented exports)
    src/exports/registry.inc       the table as C++ rows, with a call thunk per
                                   implemented export (tests, golden runs and
                                   the `mivor` command use it)

  gen_exports.py            rewrite the three files
  gen_exports.py --check    exit 1 if any of them differs from what the table gives
  gen_exports.py --names [--all]   print the implemented (or all) export names
"""
import argparse
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "src/exports/exports.tab"
HEADER = ROOT / "include/mivor/mivor.h"
DEF = ROOT / "src/exports/mivorgsse2.def"
REGISTRY = ROOT / "src/exports/registry.inc"

FAMILIES = ("quad", "elementary", "quadfunc", "power", "complex", "model", "matmul")

# What an implemented export's results are checked against (see the table's
# header); `-` only for rows not implemented yet.
ORACLES = ("mpfr", "float128", "gfortran", "definition", "reference", "scalar")

# Argument kinds: C type pointed to (every argument is passed by address,
# except the packed vector).
ARG_TYPES = {
    "i4": "int32_t", "i8": "int64_t", "l4": "int32_t",
    "r4": "float", "r8": "double", "r16": "mivor_real16",
    "c4": "mivor_complex4", "c8": "mivor_complex8", "c16": "mivor_complex16",
    "wk": "mivor_work",
    "anyreal": "void", "desc": "void", "argblk": "void",
}
# Arguments passed by value rather than by address (a few kernels that
# sibling libraries call with their operands on the stack).
BY_VALUE_ARGS = {"r8v": "double", "r16v": "mivor_real16"}
# Value kinds returned by value.
VALUE_RESULTS = {
    "r4": "float", "r8": "double", "r8x": "long double",
    "i4": "int32_t", "i8": "int64_t", "l4": "int32_t", "void": "void",
    "v2r8": "__m128d",
}
# Kinds returned through the explicit first result pointer.
POINTER_RESULTS = {
    "r16": "mivor_real16", "c4": "mivor_complex4", "c8": "mivor_complex8",
    "c16": "mivor_complex16", "wk": "mivor_work",
}
# Union member of mivor::exports::Value holding each kind (registry thunks).
VALUE_MEMBER = {
    "i4": "i4", "i8": "i8", "l4": "i4", "r4": "r4", "r8": "r8", "r8x": "r8x",
    "r16": "r16", "c4": "c4", "c8": "c8", "c16": "c16", "v2r8": "v2r8",
    "wk": "wk",
}


class Row:
    def __init__(self, fields, line_no, where="exports.tab"):
        if len(fields) != 8:
            raise SystemExit(f"{where}:{line_no}: expected 8 columns, got {len(fields)}")
        self.name, self.result, args, self.family, errors, self.oracle, test, state = fields
        self.args = [] if args == "-" else args.split(",")
        self.errors = [] if errors == "-" else errors.split(",")
        if state not in ("done", "todo"):
            raise SystemExit(f"{where}:{line_no}: state must be done or todo")
        self.done = state == "done"
        # "TEST" or "TEST:GTEST_FILTER"
        self.test, _, self.test_filter = ("" if test == "-" else test).partition(":")
        if self.done and self.oracle not in ORACLES:
            raise SystemExit(f"{where}:{line_no}: {self.name} is done but its oracle is "
                             f"'{self.oracle}' (one of {', '.join(ORACLES)})")
        if self.done and not self.test:
            raise SystemExit(f"{where}:{line_no}: {self.name} is done but names no test "
                             "that fails when it is replaced by a stub")
        if self.family not in FAMILIES:
            raise SystemExit(f"exports.tab:{line_no}: unknown family {self.family}")
        if self.result not in VALUE_RESULTS and self.result not in POINTER_RESULTS:
            raise SystemExit(f"exports.tab:{line_no}: unknown result kind {self.result}")
        for a in self.args:
            if a not in ARG_TYPES and a != "v2r8" and a not in BY_VALUE_ARGS:
                raise SystemExit(f"exports.tab:{line_no}: unknown argument kind {a}")
        for e in self.errors:
            if not e.isdigit():
                raise SystemExit(f"exports.tab:{line_no}: bad error number {e}")

    @property
    def vector(self):
        return self.result == "v2r8" or "v2r8" in self.args

    def prototype(self):
        params = []
        if self.result in POINTER_RESULTS:
            ctype = POINTER_RESULTS[self.result]
            params.append(f"{ctype} *result")
            ret = f"{ctype} *"
        else:
            ret = VALUE_RESULTS[self.result] + " "
        for i, a in enumerate(self.args):
            if a == "v2r8":
                params.append(f"__m128d x{i}")
            elif a in BY_VALUE_ARGS:
                params.append(f"{BY_VALUE_ARGS[a]} a{i}")
            else:
                params.append(f"const {ARG_TYPES[a]} *a{i}")
        return f"MIVOR_API {ret}{self.name}({', '.join(params) or 'void'});"


def read_table(path=TABLE):
    rows, seen = [], set()
    path = pathlib.Path(path)
    for n, line in enumerate(path.read_text().splitlines(), 1):
        line = line.split("#", 1)[0].strip()
        if not line:
            continue
        row = Row(line.split(), n, path.name)
        if row.name in seen:
            raise SystemExit(f"exports.tab:{n}: {row.name} listed twice")
        seen.add(row.name)
        rows.append(row)
    return rows


GENERATED = "Generated by tools/gen_exports.py from src/exports/exports.tab; do not edit."


def header_text(rows):
    out = [f"/* {GENERATED} */",
           "/*",
           " * mivorgsse2: the mathematical-intrinsic library of the Fortran run-time.",
           " *",
           " * Every argument is passed by address.  REAL(4)/REAL(8) results come back",
           " * by value (the x87 top of stack on 32-bit x86); `long double` results are",
           " * REAL(8) values left in x87 extended precision.  REAL(16) and COMPLEX",
           " * results are written through the first argument, which is also returned.",
           " * Errors are reported through the core run-time's control area",
           " * (<mivor/control_area.h>).",
           " */",
           "#ifndef MIVOR_MIVOR_H",
           "#define MIVOR_MIVOR_H",
           "",
           "#include <stdint.h>",
           "",
           "#include \"mivor/types.h\"",
           "",
           "#if defined(__SSE2__)",
           "#include <emmintrin.h>",
           "#endif",
           "",
           "#if defined(_WIN32) && !defined(MIVOR_BUILDING)",
           "#  define MIVOR_API __declspec(dllimport)",
           "#elif defined(_WIN32)",
           "#  define MIVOR_API",
           "#else",
           "#  define MIVOR_API __attribute__((visibility(\"default\")))",
           "#endif",
           "",
           "#ifdef __cplusplus",
           "extern \"C\" {",
           "#endif",
           ""]
    for family in FAMILIES:
        members = [r for r in rows if r.family == family and r.done]
        if not members:
            continue
        out.append(f"/* {family} */")
        plain = [r for r in members if not r.vector]
        vector = [r for r in members if r.vector]
        out.extend(r.prototype() for r in plain)
        if vector:
            out.append("#if defined(__SSE2__)")
            out.extend(r.prototype() for r in vector)
            out.append("#endif")
        out.append("")
    out += ["#ifdef __cplusplus", "}", "#endif", "", "#endif /* MIVOR_MIVOR_H */", ""]
    return "\n".join(out)


def def_text(rows):
    out = [f"; {GENERATED}", "LIBRARY mivorgsse2.dll", "EXPORTS"]
    out += [f"    {r.name}" for r in rows if r.done]
    return "\n".join(out) + "\n"


def thunk(row):
    """A call with arguments taken from Value slots, the result stored in a Value."""
    call_args = []
    if row.result in POINTER_RESULTS:
        call_args.append(f"&r.{VALUE_MEMBER[row.result]}")
    for i, a in enumerate(row.args):
        if a == "v2r8":
            call_args.append(f"a[{i}].v2r8")
        elif a in BY_VALUE_ARGS:
            call_args.append(f"a[{i}].{a[:-1]}")
        elif a in ("anyreal", "desc", "argblk"):
            call_args.append(f"a[{i}].bytes")
        else:
            call_args.append(f"&a[{i}].{VALUE_MEMBER[a]}")
    call = f"{row.name}({', '.join(call_args)})"
    if row.result in POINTER_RESULTS or row.result == "void":
        body = f"{call};"
    else:
        body = f"r.{VALUE_MEMBER[row.result]} = {call};"
    return f"[](const Value* a, Value& r) {{ (void)a; (void)r; {body} }}"


def registry_text(rows):
    out = [f"// {GENERATED}",
           "// MIVOR_EXPORT_ROW(name, result, arguments, family, errors, oracle, thunk)",
           "// The thunk is null for exports that are not implemented yet."]
    for r in rows:
        args = ",".join(r.args) or "-"
        errors = ",".join(r.errors) or "-"
        t = thunk(r) if r.done else "nullptr"
        if r.done and r.vector:
            out.append("#if defined(__SSE2__)")
            out.append(f'MIVOR_EXPORT_ROW("{r.name}", "{r.result}", "{args}", "{r.family}", "{errors}", "{r.oracle}", {t})')
            out.append("#else")
            out.append(f'MIVOR_EXPORT_ROW("{r.name}", "{r.result}", "{args}", "{r.family}", "{errors}", "{r.oracle}", nullptr)')
            out.append("#endif")
        else:
            out.append(f'MIVOR_EXPORT_ROW("{r.name}", "{r.result}", "{args}", "{r.family}", "{errors}", "{r.oracle}", {t})')
    return "\n".join(out) + "\n"


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--check", action="store_true")
    p.add_argument("--names", action="store_true")
    p.add_argument("--all", action="store_true")
    opts = p.parse_args()
    rows = read_table()
    if opts.names:
        for r in rows:
            if r.done or opts.all:
                print(r.name)
        return 0
    outputs = {HEADER: header_text(rows), DEF: def_text(rows), REGISTRY: registry_text(rows)}
    stale = []
    for path, text in outputs.items():
        current = path.read_text() if path.exists() else None
        if current != text:
            if opts.check:
                stale.append(path.relative_to(ROOT))
            else:
                path.write_text(text)
    if stale:
        print("out of date with src/exports/exports.tab (run tools/gen_exports.py):",
              *map(str, stale), file=sys.stderr)
        return 1
    if opts.check:
        print(f"export files match the table ({len(rows)} rows, "
              f"{sum(r.done for r in rows)} implemented)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
