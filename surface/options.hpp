#pragma once

#include <string>
#include <vector>

#include "surface/surface.hpp"

enum class Form { text, csv, json };

/// What the command line asks for.
struct SurfaceOptions {
  std::vector<std::string> inputs;
  SurfaceSettings settings;
  bool shares_by_radii = true;  // else by the nearest nucleus
  Form form = Form::text;
  bool lists_extrema = false;  // in a table of values between commas, in the place of atoms
  bool uses_hartree = false;   // else eV
  bool uses_bohr = false;      // else ångström
  std::string mesh;            // name of a file; empty: none
  int input_format = 0;        // input_fchk or input_wfn; 0: as its contents tell
};

/// Reads the command line, and sets conf_input_convention. Help and the version end the process with status
/// 0, what cannot be with one line on standard error and status 1.
SurfaceOptions surface_options(int argc, char** argv);
