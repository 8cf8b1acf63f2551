"""Runs orva-grid and orva-view. Environment: ORVA_PROGRAM, words of the shell."""

import itertools
import json
import math
import os
import re
import runpy
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path
from types import SimpleNamespace

TOP = Path(__file__).resolve().parent.parent
ANILINE = TOP / "examples/aniline.fchk"
orva_view = SimpleNamespace(**runpy.run_path(str(TOP / "tools/orva-view")))
WATER, WFN = TOP / "examples/water.fchk", TOP / "examples/water_cation.wfn"


def run(*command, status=0):
    os.environ.setdefault("NODE_PATH", str(TOP / "build/node_modules"))
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    assert done.returncode == status, (command, done)
    return done.stdout + done.stderr


def grid(*arguments, status=0):
    return run(TOP / "tools/orva-grid", *arguments, status=status)


def view(*arguments, status=0):
    return run(TOP / "tools/orva-view", *arguments, status=status)


def cubes_of_aniline(*grid_arguments):
    Path("config").write_text(grid(ANILINE, *grid_arguments))
    run(*shlex.split(os.environ["ORVA_PROGRAM"]), "-q", "-i", ANILINE, "-t", "fchk")
    return "out.tot", "out.orva"


class Companion(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        os.chdir(directory.name)

    def check_errors(self, program, files, rows):
        for name, text in files.items():
            Path(name).write_text(text)
        for expected, arguments in rows:
            with self.subTest(expected):
                self.assertRegex(program(*arguments, status=1), rf"^orva-\w+: .*{expected}.*\n$")


class Grid(Companion):
    def test_orva_reads_the_grid_and_its_faces_keep_the_margin(self):
        fchk, wfn = WATER.read_text(), WFN.read_text()
        geometry = re.search(r"Current cartesian coordinates.*\n(?: .*\n)*", fchk)[0]
        other = geometry.replace("e-01", "e+00")
        for name, text in (
            ("plain.fchk", fchk),
            ("no_count.fchk", re.sub("Number of atoms.*\n", "", fchk)),
            ("steps_of_an_optimisation.fchk", fchk.replace(geometry, other + geometry) + other),
            ("geometry_behind_the_orbitals.fchk", fchk.replace(geometry, "") + geometry + other),
            ("plain.wfn", wfn),
            ("counts_in_line_3.wfn", "a second title\n" + wfn),
            ("no_bracket.wfn", re.sub(r"\((CENTRE +\d+)\)", r" \1 ", wfn)),
            ("ten_decimals.wfn", re.sub(r"(\.\d{8})(?= )", r"\g<1>01", wfn)),
            ("from_column_24_without_blanks.wfn", re.sub(
                r"(?<=\)).*(?=  CHARGE)", lambda xyz: "".join(f"{float(x) - 110:.8f}" for x in xyz[0].split()), wfn)),
        ):
            with self.subTest(name):
                Path(name).write_text(text)
                Path("config").write_text(grid(name, 2.5, 0.4))
                run(*shlex.split(os.environ["ORVA_PROGRAM"]), "-q", "-i", name, "-t", name.split(".")[1])
                lines = [line.split() for line in Path("out.tot").read_text().split("\n")]
                for k in range(3):
                    origin, (count, *step) = float(lines[2][1 + k]), lines[3 + k]
                    end = origin + (int(count) - 1) * 0.4
                    atoms = [float(line[2 + k]) for line in lines[6 : 6 + int(lines[2][0])]]
                    self.assertEqual([float(x) for x in step], [0.4 * (k == axis) for axis in range(3)])
                    for margin in (min(atoms) - origin, end - max(atoms)):
                        self.assertTrue(2.5 - 1e-5 < margin < 2.5 + 0.2 + 1e-5, margin)

    def test_errors(self):
        fchk, wfn = ANILINE.read_text(), WFN.read_text()
        self.check_errors(grid, {
            "text": "some\ntext\n", "short.fchk": fchk[:1000], "count": fchk.replace("I               14", "I 15"),
            "length": fchk.replace("N=          14", "N= 13"), "word": fchk.replace("4.41024381e+00", "nan"),
            "short.wfn": "\n".join(wfn.split("\n")[:3]), "label.wfn": wfn.replace("MOL ORBITALS", "ORBITALS"),
            "bad.wfn": wfn.replace("0.10304187", "CHARGE"), "two.wfn": wfn.replace("0.00000000  CHARGE =  8.0", ""),
        }, [
            ("cannot read none: No such file", ["none"]), ("neither", ["text"]), ("no coordinates", ["short.fchk"]),
            ("42 coordinates for 15 atoms", ["count"]), ("42 coordinates for 13 atoms", ["length"]),
            ("not finite", ["word"]), ("1 of 3 nuclei", ["short.wfn"]), ("no number of nuclei", ["label.wfn"]),
            ("bad coordinate", ["bad.wfn"]), ("no coordinates in line", ["two.wfn"]),
            ("give a larger step", [ANILINE, 6, 0.01])])
        for numbers in ([-1], ["inf"], [6, 0], [6, "nan"], [6, 0.2, 3]):
            self.assertIn("orva-grid: error:", grid(ANILINE, *numbers, status=2))


# Step vectors that are neither perpendicular nor right-handed, and two atoms: exp(-r^2) falls to 0.001 at RADIUS.
STEPS = ((0.0, 0.2, 0.05), (0.2, 0.0, 0.0), (0.02, 0.0, 0.2))
RADIUS = math.sqrt(math.log(1000))


def write_cube(name, function, count=37, atom_count=2, steps=STEPS):
    origin = [-sum(step[k] for step in steps) * (count - 1) / 2 for k in range(3)]
    lines = ["title", "Averaged local ionization potential", f"{atom_count} {origin[0]} {origin[1]} {origin[2]}"]
    lines += [f"{count} {x} {y} {z}" for x, y, z in steps]
    lines += ["7 7.0 -0.5 0 0", "1 1.0 0.5 0 0"] + ["1 5"] * (atom_count < 0)
    for index in itertools.product(range(count), repeat=3):
        lines.append(repr(function(*(origin[k] + sum(i * step[k] for i, step in zip(index, steps)) for k in range(3)))))
    Path(name).write_text("\n".join(lines))


def gaussian(x, y, z):
    return math.exp(-x * x - y * y - z * z)


# In place of the program: an octahedron, its lowest value at x = -1. Broken is what is empty.
SURFACE = f"""#!{sys.executable}
import json, pathlib, sys
options = dict(zip(sys.argv[2:-1:2], sys.argv[3:-1:2]))
assert sys.argv[1] == "--json" and (options["--unit"], options["--length"]) == ("hartree", "bohr")
print("a warning", file=sys.stderr)
if not pathlib.Path(sys.argv[-1]).read_text():
    print(json.dumps({{"input": sys.argv[-1], "error": "empty", "warnings": []}}))
    sys.exit(1)
corners = [[sign * (i == k) for k in range(3)] for i in range(3) for sign in (-1, 1)]
faces = [(x, y, z)[::1 if (x + y + z) % 2 else -1] for x in (0, 1) for y in (2, 3) for z in (4, 5)]
with open(options["--mesh"], "w") as mesh:
    print("ply\\nformat ascii 1.0\\nelement vertex 6\\nproperty double x\\nelement face 8\\nend_header", file=mesh)
    for corner in corners:
        print(*corner, 0.45 + 0.05 * corner[0], file=mesh)
    for face in faces:
        print(3, *face, file=mesh)
print(json.dumps({{
    "level": float(options.get("--level", 0.001)),
    "atoms": [{{"number": i + 1, "symbol": "OH"[i], "position": [i, 0, 0]}} for i in (0, 1)],
    "extrema": [{{"kind": kind, "value": 0.45 + 0.05 * x, "position": [x, 0, 0], "atom": atom}}
                for kind, x, atom in (("maximum", 1, 2), ("minimum", -1, 1))]}}))
"""


class View(Companion):
    def test_sites_of_a_sphere_have_their_closed_form(self):
        write_cube("density", gaussian)
        write_cube("field", lambda x, y, z: 0.3 + 0.02 * x)
        for unit, hartree, delta in (("hartree", 1.0, 0.002), ("eV", 27.2114, 0.05)):
            lines = view("--sites", "-u", unit, "density", "field").split("\n")
            self.assertEqual([line.split()[:2] for line in lines[1:4:2]], [["atom", unit], ["H2", lines[3].split()[1]]])
            for line, x in zip(lines[2:], (-RADIUS, 0.0)):  # the second atom's part begins at x = 0
                value, *position = map(float, line.split()[1:])
                self.assertAlmostEqual(value, (0.3 + 0.02 * x) * hartree, delta=delta)
                self.assertAlmostEqual(math.hypot(*position), RADIUS, delta=0.01)
                self.assertAlmostEqual(position[0], x, delta=0.1)
        low, high = ((0.3 + x * 0.02 * RADIUS) * 27.2114 for x in (-1, 1))
        name, *ends = view("--print-range", "density", "field", "density", "field").split()
        self.assertEqual([name, *(f"{round(float(end), 1)}" for end in ends)], ["--range", f"{low:.1f}", f"{high:.1f}"])
        view("density", "field", "-r", *ends)
        self.assertIn(f"they go from {low:.1f}", view("density", "field", "-r", 0.2, 0.4, status=1))
        self.assertIn("eV or hartree, not 'kJ'",
                      view("density", "field", "-u", "kJ", status=1))
        Path("other").write_text(Path("field").read_text().replace("Averaged local ionization", "Electrostatic"))
        self.assertRegex(view("--sites", "-u", "eV", "density", "other"), r"eV .*\nN1 +0\.247")  # not converted

    def test_sites_of_aniline(self):
        rows = [line.split() for line in view("--sites", "-u", "hartree", *cubes_of_aniline(4.5)).split("\n")[2:-1]]
        lowest = {row[0]: float(row[1]) for row in rows}
        self.assertEqual(list(lowest.values()), sorted(lowest.values()))
        # Nitrogen, ortho, para, meta: read off columns of points 0.002 bohr apart (meta: steps of 0.1).
        for atom, value in {"N1": 0.2904, "C3": 0.3103, "C7": 0.3103, "C5": 0.3106, "C4": 0.3184, "C6": 0.3184}.items():
            self.assertAlmostEqual(lowest[atom], value, delta=0.0005, msg=atom)

    def test_meshes_of_both_lobes_are_closed_and_face_outwards(self):
        write_cube("lobes", lambda x, y, z: x * gaussian(x, y, z), atom_count=-2)
        cube = orva_view.read_cube("lobes")
        for level, surface in orva_view.find_surfaces(cube, None, None).items():
            points, quads = surface.vertices, list(zip(*[iter(surface.quads)] * 4))
            for x, y, z in surface.points:
                self.assertAlmostEqual(x * gaussian(x, y, z), level, delta=0.006)
            edges = {(quad[k - 1], quad[k]) for quad in quads for k in range(4)}
            self.assertEqual(edges, {(end, start) for start, end in edges})
            triangles = [[points[k] for k in corners] for a, b, c, d in quads for corners in ((a, b, c), (a, c, d))]
            self.assertGreater(sum(map(orva_view.determinant, triangles)), 6.0)  # six times the volume

    def test_bad_cubes(self):
        x, y, z = (0.8, 0, 0), (0, 0.8, 0), (0, 0, 0.8)
        write_cube("good", gaussian, 9, steps=(x, y, z))
        write_cube("nan", lambda x, y, z: math.nan if x > 2 else 1.0, 9, steps=(x, y, z))
        write_cube("shift", gaussian, 9, steps=(x, y, (0, 0, 0.7)))
        write_cube("flat", gaussian, 9, steps=(x, y, y))
        good = Path("good").read_text()
        orbitals = good.replace("\n2 ", "\n-2 ").replace("\n1 1.0 0.5 0 0", "\n1 1.0 0.5 0 0\n2 5 6")
        self.check_errors(view, {
            "text": "a\nb\n", "short": good[:-30], "word": good + "x", "two": orbitals,
            "line": good.replace("9 0.8", "1 0.8"),
        }, [
            ("cannot read none", ["none"]), ("cannot read none", ["good", "--library", "none"]),
            ("text is no cube file", ["text"]), ("values for 9 x 9 x 9", ["short"]), ("bad value", ["word"]),
            ("2 are needed", ["line"]), ("plane", ["flat"]), ("2 orbitals", ["two"]),
            ("different grids", ["good", "shift"]), ("no surface at 2: .* to 1", ["good", "-i", 2]),
            ("nan has no number on the surface at", ["--sites", "good", "nan"]),
            ("nan has values that are no finite", ["nan"])])
        write_cube("slope", lambda x, y, z: 1.03 + 0.1 * z, 9, steps=(x, y, z))
        self.assertIn("cut the surface open", view("slope", "-i", 1, "-o", "page.html"))
        for point in orva_view.find_surface(orva_view.read_cube("slope"), 1.0, None).points:
            self.assertAlmostEqual(point[2], -0.3, delta=0.01)  # an edge ends with its row of points
        for wrong in (["--labels", "good"], ["--labels", 0, "good"], ["--size", 9, 9, "good"], ["good"] * 3):
            self.assertIn("orva-view: error:", view(*wrong, status=2))

    def test_a_wavefunction_is_shown_as_orva_surface_finds_it(self):
        Path("tools").mkdir()
        shutil.copy(TOP / "tools/orva-view", "tools")
        self.assertIn("needs orva-surface", run("env", "PATH=", sys.executable, "tools/orva-view", WATER, status=1))
        Path("tools/orva-surface").write_text(SURFACE)
        Path("tools/orva-surface").chmod(0o755)
        lines = run("tools/orva-view", "--sites", WATER, "-i", 0.002).split("\n")
        self.assertEqual(lines[-2], "a warning")
        self.assertRegex(lines[0], r"surface of 0\.002 bohr\^-3: minima and maxima")
        self.assertEqual([line.split() for line in lines[2:-2]], [
            ["O1", "10.88", "-1.000", "0.000", "0.000", "minimum"],
            ["H2", "13.61", "1.000", "0.000", "0.000", "maximum"]])
        self.assertEqual(run("tools/orva-view", "--print-range", WATER, "-u", "hartree", WATER).split("\n")[0],
                         "--unit hartree --range 0.400 0.500")
        run("tools/orva-view", WATER, "--labels", 3)
        page = json.loads(re.search(r'id="data">(.*)</script>', Path("water.html").read_text())[1])
        self.assertEqual([(site["name"], site["value"], site["point"]["x"]) for site in page["sites"]],
                         [("O1", "10.88", -0.529177)])
        self.assertEqual([axis["low"] for axis in page["surfaces"][0]["axes"]], [-0.529177] * 3)
        Path("broken.fchk").write_text("")
        self.assertEqual(run("tools/orva-view", "broken.fchk", status=1), "a warning\n")


def pixels(path):
    """Rows of (red, green, blue) of a PNG file with 8 bits a channel."""
    data, at, chunks = Path(path).read_bytes(), 8, b""
    width, height, _, kind = struct.unpack(">IIBB", data[16:26])
    while at < len(data):
        size, name = struct.unpack(">I4s", data[at : at + 8])
        chunks += data[at + 8 : at + 8 + size] if name == b"IDAT" else b""
        at += size + 12
    raw, wide = zlib.decompress(chunks), {2: 3, 6: 4}[kind]
    rows, above = [], bytes(width * wide)
    for start in range(0, len(raw), width * wide + 1):
        row = bytearray(raw[start + 1 : start + 1 + width * wide])
        for i in range(len(row)):
            a, b, c = (row[i - wide], above[i], above[i - wide]) if i >= wide else (0, above[i], 0)
            paeth = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
            row[i] = (row[i] + (0, a, b, (a + b) // 2, paeth)[raw[start]]) % 256
        rows.append([tuple(row[i : i + 3]) for i in range(0, len(row), wide)])
        above = row
    return rows


# Shows what the button saves.
PRESS = """<script>
HTMLAnchorElement.prototype.click = function () {
  document.body.innerHTML = `<img src="${this.href}" style="position: absolute; left: 0; top: 0">`;
};
setTimeout(() => document.getElementById("save").click(), 9000);
</script>"""


class Browser(Companion):
    def test_saves_a_picture_of_aniline(self):
        if subprocess.run(["which", "chromium"], capture_output=True).returncode != 0:
            self.skipTest("chromium is not installed")
        if "no 3Dmol.js" in view(*cubes_of_aniline(4.5), "-r", 7.9, 12.2, "--turn", 188, 12, 0, "--labels", 2,
                                 "--colors", "rainbow", "--size", 900, 600, "-o", "page.html"):
            self.skipTest("the npm package 3dmol is not installed")
        Path("page.html").write_text(Path("page.html").read_text() + PRESS)
        run(TOP / "scripts/draw", "page.html", "page.png", 1000, 700)
        rows = pixels("page.png")
        for place, x, y, hue in (("lone pair", 600, 345, "R"), ("ortho", 380, 400, "R"), ("para", 270, 355, "R"),
                                 ("NH2", 630, 230, "B"), ("CH", 460, 120, "G"), ("beside", 100, 400, "RGB"),
                                 ("lowest number", 554, 343, "RGB"), ("scale's low end", 877, 420, "R")):
            colour = rows[y][x]
            strong = "".join(name for name, part in zip("RGB", colour) if part > 0.9 * max(colour))
            self.assertEqual(strong, hue, (place, colour))


if __name__ == "__main__":
    sys.exit(unittest.main())
