"""psi4 benzenes.py: writes benzene and ten substituted benzenes (RHF/6-31G*) as formatted checkpoint files.

The geometries are standard ones, not optimised: the same ring everywhere, usual bond lengths and angles.
"""
from math import cos, pi, sin

import psi4

# What takes the place of the first hydrogen, behind the ring's carbons (1 to 6) and its other hydrogens (7 to 11).
SUBSTITUENTS = {
    "benzene": "H 1 1.08 2 120 3 180",
    "aniline": "N 1 1.40 2 120 3 176; H 12 1.01 1 113 2 26; H 12 1.01 1 113 6 -26",
    "phenol": "O 1 1.37 2 120 3 180; H 12 0.96 1 109 2 0",
    "anisole": "O 1 1.36 2 120 3 180; C 12 1.42 1 118 2 0; H 13 1.09 12 106 1 180; H 13 1.09 12 111 1 61; "
               "H 13 1.09 12 111 1 -61",
    "toluene": "C 1 1.51 2 120 3 180; H 12 1.09 1 111 2 90; H 12 1.09 1 111 2 -150; H 12 1.09 1 111 2 -30",
    "fluorobenzene": "F 1 1.35 2 120 3 180",
    "chlorobenzene": "Cl 1 1.74 2 120 3 180",
    "benzaldehyde": "C 1 1.48 2 120 3 180; O 12 1.21 1 124 2 0; H 12 1.11 1 115 2 180",
    "trifluoromethylbenzene": "C 1 1.50 2 120 3 180; F 12 1.34 1 112 2 90; F 12 1.34 1 112 2 -150; "
                              "F 12 1.34 1 112 2 -30",
    "benzonitrile": "C 1 1.44 2 120 3 180; X 12 1.0 1 90 2 0; N 12 1.15 13 90 1 180",
    "nitrobenzene": "N 1 1.47 2 120 3 180; O 12 1.22 1 118 2 0; O 12 1.22 1 118 2 180",
}


def circle(symbol, radius, first):
    return [f"{symbol} {radius * cos(k * pi / 3)} {radius * sin(k * pi / 3)} 0" for k in range(first, 6)]


psi4.set_options({"basis": "6-31G*"})
for name, substituent in SUBSTITUENTS.items():
    atoms = circle("C", 1.395, 0) + circle("H", 2.475, 1) + substituent.split("; ")
    molecule = psi4.geometry("\n".join(["symmetry c1", *atoms]))
    _, wavefunction = psi4.energy("scf", molecule=molecule, return_wfn=True)
    psi4.fchk(wavefunction, f"{name}.fchk")
    psi4.core.clean()
