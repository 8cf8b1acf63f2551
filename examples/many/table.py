#!/usr/bin/env python3
"""table.py all.jsonl > table.csv: a row for each molecule of what orva-surface --json has written;
table.py > table.csv: a row for each molecules/NAME.fchk and molecules/NAME.wfn of what molecule.sh has made.

A row has the molecule, its status (done; warned: done, but something was told; failed; unfinished: not started, still
running, or killed), the atom with the lowest value, the value and its unit, and what was told about the molecule."""

import csv
import json
import sys
from pathlib import Path


def row(name, is_done, told, lowest=("", "", "")):
    status = ("warned" if told else "done") if is_done else "failed" if told else "unfinished"
    return [name, status, *lowest, " | ".join(told)]


def surface_row(record):
    name, told = Path(record["input"]).name, record["warnings"]
    if "error" in record:
        return row(name, False, [*told, record["error"]])
    minima = [extremum for extremum in record["extrema"] if extremum["kind"] == "minimum"]
    number = minima[0]["atom"] if minima else ""
    atom = next((f"{atom['symbol']}{number}" for atom in record["atoms"] if atom["number"] == number), "")
    return row(name, True, told, (atom, f"{record['lowest']:.4f}", record["units"]["potential"]))


def directory_row(path):
    out = Path("out", path.stem)
    told = (out / "messages").read_text(errors="replace").split("\n")[:-1] if (out / "messages").exists() else []
    if not (out / "sites").exists():
        return row(path.name, False, told)
    _, heading, lowest, *_ = (out / "sites").read_text().split("\n")
    return row(path.name, True, told, (*lowest.split()[:2], heading.split()[1]))


rows = csv.writer(sys.stdout, lineterminator="\n")
rows.writerow(["molecule", "status", "atom", "lowest", "unit", "messages"])
if len(sys.argv) > 1:
    with open(sys.argv[1]) as file:
        rows.writerows(surface_row(json.loads(line)) for line in file)
else:
    inputs = (path for path in Path("molecules").glob("*") if path.suffix in (".fchk", ".wfn"))
    rows.writerows(map(directory_row, sorted(inputs)))
