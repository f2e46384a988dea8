#!/usr/bin/env python3
"""The coverage check catches what it is there to catch.

  coverage_check_test.py BUILD_DIR

Plants, in copies of the export table: a new row marked done whose export
is only a stub, and an implemented row whose named test does not look at
it; the check must reject both, naming why.  The real rows it checks must
pass, so the planted failures are not the check failing on everything.
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TABLE = ROOT / "src/exports/exports.tab"
BUILD = None


def check(table_text, *names):
    with tempfile.TemporaryDirectory() as tmp:
        table = pathlib.Path(tmp) / "exports.tab"
        table.write_text(table_text)
        p = subprocess.run([sys.executable, str(ROOT / "tools/check_coverage.py"), "--build", str(BUILD),
                            "--table", str(table), *names], capture_output=True, text=True)
        return p.returncode, p.stdout + p.stderr


class CoverageCheck(unittest.TestCase):
    def test_a_new_row_marked_done_with_a_stub_is_rejected(self):
        planted = TABLE.read_text() + \
            "g_plantedstub r8 r8 elementary 230 mpfr trig_tests done\n"
        status, out = check(planted, "g_plantedstub")
        self.assertEqual(status, 1, out)
        self.assertIn("g_plantedstub: trig_tests passes with g_plantedstub stubbed", out)
        self.assertIn("g_plantedstub: no golden digest", out)
        self.assertIn("g_plantedstub: oracle mpfr, but `mivor accuracy` has no reference", out)
        self.assertIn("g_plantedstub: no report case for error(s) 230", out)

    def test_a_test_that_does_not_look_at_the_export_is_rejected(self):
        lines = []
        for line in TABLE.read_text().splitlines():
            if line.startswith("g_dexp "):
                line = line.replace("exp_log_tests", "model_tests    ")
            lines.append(line)
        status, out = check("\n".join(lines) + "\n", "g_dexp")
        self.assertEqual(status, 1, out)
        self.assertIn("g_dexp: model_tests passes with g_dexp stubbed (returning its argument)", out)
        self.assertIn("g_dexp: model_tests passes with g_dexp stubbed (returning zero)", out)

    def test_covered_rows_pass(self):
        status, out = check(TABLE.read_text(), "g_dexp", "g_aqdq", "g_neareq2")
        self.assertEqual(status, 0, out)
        self.assertIn("3 of 3 implemented exports covered", out)


if __name__ == "__main__":
    BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
