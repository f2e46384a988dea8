"""What the double-precision table generators share: reading the hexadecimal
numbers Sollya and the C helpers print, writing them as C++ literals, and
the command line that writes a header or checks the committed one against
a fresh run (ctest runs every generator with --check)."""
import argparse
import pathlib
import sys


def num(tok):
    return float.fromhex(tok) if tok not in ("0", "-0") else 0.0


def lit(v):
    return "0x0p+0" if v == 0.0 else v.hex()


def write_or_check(out_dir, name, make_text, source):
    """`make_text()` gives the header; --check compares it with
    out_dir/name (the `source` it comes from names the mismatch), --out DIR
    writes it elsewhere."""
    ap = argparse.ArgumentParser()
    ap.add_argument("--check", action="store_true")
    ap.add_argument("--out")
    opts = ap.parse_args()
    t = make_text()
    if opts.check:
        if not (out_dir / name).exists() or (out_dir / name).read_text() != t:
            print(f"{name} differs from the {source}", file=sys.stderr)
            return 1
        print(f"{name} matches the {source}")
        return 0
    dest = pathlib.Path(opts.out) if opts.out else out_dir
    (dest / name).write_text(t)
    return 0
