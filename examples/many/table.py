#!/usr/bin/env python3
"""table.py > table.csv: a row for each molecules/NAME.fchk and molecules/NAME.wfn, with its status (done; warned: done,
but something was told; failed; unfinished: not started, or still running, or killed), the atom with the lowest value,
the value and its unit, and what was told about the molecule."""

import csv
import sys
from pathlib import Path

rows = csv.writer(sys.stdout, lineterminator="\n")
rows.writerow(["molecule", "status", "atom", "lowest", "unit", "messages"])
for path in sorted(path for path in Path("molecules").glob("*") if path.suffix in (".fchk", ".wfn")):
    out = Path("out", path.stem)
    told = (out / "messages").read_text(errors="replace").split("\n")[:-1] if (out / "messages").exists() else []
    atom = value = unit = ""
    status = "failed" if told else "unfinished"
    if (out / "sites").exists():
        status = "warned" if told else "done"
        _, heading, lowest, *_ = (out / "sites").read_text().split("\n")
        unit, (atom, value) = heading.split()[1], lowest.split()[:2]
    rows.writerow([path.name, status, atom, value, unit, " | ".join(told)])
