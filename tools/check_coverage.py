#!/usr/bin/env python3
"""Check that every implemented export of the table is covered.

  check_coverage.py --build DIR [--table FILE] [--golden FILE] [--cases FILE]
                    [--jobs N] [NAME...]

For every row marked `done` (or the NAMEs given):
  * its oracle is one the table knows; an `mpfr` row has a reference in
    `mivor accuracy` (`mivor accuracy --list`);
  * it has a committed golden digest;
  * every error number it lists has a directed case in the report cases;
  * its `test` exists in the build, and FAILS when the export is replaced by
    a stub, twice: once by a stub returning its argument (its first
    argument, when that has the result's kind; otherwise a fixed bit
    pattern), once by one returning zero.  The stubs come from a small library generated
    from the table and preloaded (LD_PRELOAD) into the test: every export of
    the table forwards to the real one except the one named by MIVOR_STUB.
    Calls inside the library are not diverted; what is checked is that the
    test looks at the export's own results.

Exit status 0 when every row is covered, 1 otherwise.  Linux builds only
(the host flavour without sanitizers: a sanitizer runtime must come first
in the preload list).
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools"))
import gen_exports  # noqa: E402

# C types of the argument kinds, and the bytes a stub copies from them.
POINTED = {"i4": "int32_t", "i8": "int64_t", "l4": "int32_t", "r4": "float", "r8": "double",
           "r16": "mivor_real16", "c4": "mivor_complex4", "c8": "mivor_complex8",
           "c16": "mivor_complex16", "wk": "mivor_work", "anyreal": "float", "desc": "uint32_t",
           "argblk": "uint32_t"}


def stub_source(rows):
    out = ["#define _GNU_SOURCE",
           "#include <dlfcn.h>", "#include <stdint.h>", "#include <stdlib.h>", "#include <string.h>",
           "#include <emmintrin.h>", '#include "mivor/types.h"', "",
           "static const char *stubbed;", "static int zero_stub;",
           "__attribute__((constructor)) static void read_choice(void) {",
           '    const char *kind = getenv("MIVOR_STUB_KIND");',
           '    stubbed = getenv("MIVOR_STUB");',
           '    zero_stub = kind && strcmp(kind, "zero") == 0;',
           "}",
           "static int is_stubbed(const char *name) { return stubbed && strcmp(stubbed, name) == 0; }",
           "#define MIN(a, b) ((a) < (b) ? (a) : (b))", ""]
    for r in rows:
        params, forward = [], []
        pointer_result = r.result in gen_exports.POINTER_RESULTS
        if pointer_result:
            rtype = gen_exports.POINTER_RESULTS[r.result]
            params.append(f"{rtype} *result")
            forward.append("result")
            ret = f"{rtype} *"
        else:
            ret = gen_exports.VALUE_RESULTS[r.result]
        first_src = first_size = None
        same_kind = bool(r.args) and gen_exports.VALUE_MEMBER.get(r.args[0].rstrip("v")) == \
            gen_exports.VALUE_MEMBER.get(r.result)
        for i, a in enumerate(r.args):
            if a == "v2r8":
                params.append(f"__m128d a{i}")
                src, size = f"&a{i}", f"sizeof a{i}"
            elif a in gen_exports.BY_VALUE_ARGS:
                params.append(f"{gen_exports.BY_VALUE_ARGS[a]} a{i}")
                src, size = f"&a{i}", f"sizeof a{i}"
            else:
                params.append(f"const void *a{i}")
                src, size = f"a{i}", f"sizeof({POINTED[a]})"
            forward.append(f"a{i}")
            if i == 0:
                first_src, first_size = src, size
        plist = ", ".join(params) or "void"
        body = []
        if r.result == "void":
            body.append("return;")
        elif pointer_result:
            body.append("memset(result, 0, sizeof *result);")
            if same_kind:
                body.append(f"if (!zero_stub) memcpy(result, {first_src}, MIN(sizeof *result, {first_size}));")
            else:
                body.append("if (!zero_stub) memset(result, 0x5A, sizeof *result);")
            body.append("return result;")
        else:
            body.append(f"{ret} r; memset(&r, 0, sizeof r);")
            if same_kind:
                body.append(f"if (!zero_stub) memcpy(&r, {first_src}, MIN(sizeof r, {first_size}));")
            else:
                body.append("if (!zero_stub) memset(&r, 0x5A, sizeof r);")
            body.append("return r;")
        stub = " ".join(body)
        call = f"real({', '.join(forward)})"
        out += [f"{ret} {r.name}({plist}) {{",
                f"    typedef {ret} (*fn)({plist});",
                "    static fn real;",
                f'    if (!is_stubbed("{r.name}")) {{',
                f'        if (!real) real = (fn)dlsym(RTLD_NEXT, "{r.name}");',
                f"        if (real) {{ {'' if r.result == 'void' else 'return '}{call}; {'return;' if r.result == 'void' else ''} }}",
                "    }",
                f"    {stub}",
                "}", ""]
    return "\n".join(out)


def build_stubs(rows, directory):
    source = pathlib.Path(directory) / "stubs.c"
    library = pathlib.Path(directory) / "libmivor_stubs.so"
    source.write_text(stub_source(rows))
    cc = os.environ.get("CC", "cc")
    subprocess.run([cc, "-shared", "-fPIC", "-O1", "-msse2", "-w", f"-I{ROOT / 'include'}", f"-I{ROOT / 'core'}",
                    "-o", str(library), str(source), "-ldl"], check=True)
    return library


def ctest_tests(build):
    text = subprocess.run(["ctest", "--test-dir", str(build), "--show-only=json-v1"], capture_output=True,
                          text=True, check=True).stdout
    tests = {}
    for t in json.loads(text)["tests"]:
        props = {p["name"]: p["value"] for p in t.get("properties", [])}
        tests[t["name"]] = (t.get("command"), props)
    return tests


def passes(test, env):
    """True when the test passes as ctest would judge it."""
    command, props = test
    run_env = dict(os.environ)
    for item in props.get("ENVIRONMENT", []):
        key, _, value = item.partition("=")
        run_env[key] = value
    run_env.update(env)
    try:
        p = subprocess.run(command, cwd=props.get("WORKING_DIRECTORY"), env=run_env, capture_output=True,
                           text=True, errors="replace", timeout=float(props.get("TIMEOUT", 300)))
    except subprocess.TimeoutExpired:
        return False
    output = p.stdout + p.stderr
    if any(re.search(rx, output) for rx in props.get("FAIL_REGULAR_EXPRESSION", [])):
        ok = False
    elif props.get("PASS_REGULAR_EXPRESSION"):
        ok = any(re.search(rx, output) for rx in props["PASS_REGULAR_EXPRESSION"])
    else:
        ok = p.returncode == 0
    return ok != bool(props.get("WILL_FAIL", False))


def report_case_numbers(path):
    numbers = {}
    for line in pathlib.Path(path).read_text().splitlines():
        words = line.split("#", 1)[0].split()
        if "->" in words:
            arrow = words.index("->")
            if arrow + 1 < len(words):
                numbers.setdefault(words[0], set()).update(words[arrow + 1].split(","))
    return numbers


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--build", required=True, help="a host build directory (not sanitized)")
    p.add_argument("--table", default=str(gen_exports.TABLE))
    p.add_argument("--golden", default=str(ROOT / "tests/exports/golden.txt"))
    p.add_argument("--cases", default=str(ROOT / "tests/exports/report_cases.tab"))
    p.add_argument("--jobs", type=int, default=2)
    p.add_argument("names", nargs="*")
    opts = p.parse_args()
    build = pathlib.Path(opts.build).resolve()

    rows = gen_exports.read_table(opts.table)
    done = [r for r in rows if r.done and (not opts.names or r.name in opts.names)]
    problems = {r.name: [] for r in done}

    mivor = build / "bin" / "mivor"
    listed = subprocess.run([str(mivor), "accuracy", "--list"], capture_output=True, text=True)
    if listed.returncode != 0:
        print(f"check_coverage: {mivor} accuracy --list failed (built without MPFR?)", file=sys.stderr)
        return 1
    references = set(listed.stdout.split())
    golden = {line.split()[0] for line in pathlib.Path(opts.golden).read_text().splitlines()
              if line.strip() and not line.startswith("#")}
    cases = report_case_numbers(opts.cases)
    tests = ctest_tests(build)

    for r in done:
        if r.oracle == "mpfr" and r.name not in references:
            problems[r.name].append("oracle mpfr, but `mivor accuracy` has no reference for it")
        if r.name not in golden:
            problems[r.name].append(f"no golden digest in {opts.golden}")
        missing = [e for e in r.errors if e not in cases.get(r.name, set())]
        if missing:
            problems[r.name].append(f"no report case for error(s) {', '.join(missing)}")
        if r.test not in tests:
            problems[r.name].append(f"test '{r.test}' is not a test of this build")

    with tempfile.TemporaryDirectory() as tmp:
        stubs = build_stubs([r for r in rows if r.done], tmp)
        jobs = []
        for r in done:
            if r.test not in tests:
                continue
            for kind in ("identity", "zero"):
                env = {"LD_PRELOAD": str(stubs), "MIVOR_STUB": r.name, "MIVOR_STUB_KIND": kind}
                if r.test_filter:
                    env["GTEST_FILTER"] = r.test_filter
                jobs.append((r, kind, env))
        with concurrent.futures.ThreadPoolExecutor(max_workers=max(1, opts.jobs)) as pool:
            results = pool.map(lambda job: (job, passes(tests[job[0].test], job[2])), jobs)
            for (r, kind, _), survived in results:
                if survived:
                    what = "its argument" if kind == "identity" else "zero"
                    test = r.test + (f":{r.test_filter}" if r.test_filter else "")
                    problems[r.name].append(f"{test} passes with {r.name} stubbed (returning {what})")

    bad = {name: p for name, p in problems.items() if p}
    for name, lines in bad.items():
        for line in lines:
            print(f"{name}: {line}")
    print(f"coverage: {len(done) - len(bad)} of {len(done)} implemented exports covered "
          f"(oracle, golden digest, report cases, a test that fails on a stub)")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
