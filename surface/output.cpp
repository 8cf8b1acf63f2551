#include "surface/output.hpp"

#include <algorithm>
#include <span>

#include "lib/atom.hpp"
#include "lib/file.hpp"
#include "surface/quantities.hpp"

namespace {

constexpr const char* kind_of(const Extremum& extremum) {
  return extremum.is_maximum ? "maximum" : "minimum";
}

std::string symbol_of(const Atom& atom) {
  if (atom.atomic_number >= 1 && atom.atomic_number <= atom_last) {
    return atom_names[atom.atomic_number - 1];
  }
  return atom.symbol[0] != '\0' ? atom.symbol : "X";
}

std::string padded(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

// A value of a share, and whether none within it is as extreme: then it lies at the border.
struct Bound {
  double value;
  bool is_at_border;
};

// Where the values are the same but for rounding, none is at the border.
constexpr double same_value = 1e-7;  // hartree

Bound lowest_of(const Share& share) {
  const bool is_at_border = share.at_border.lowest < share.within.lowest - same_value;
  return {is_at_border ? share.at_border.lowest : share.within.lowest, is_at_border};
}

Bound highest_of(const Share& share) {
  const bool is_at_border = share.at_border.highest > share.within.highest + same_value;
  return {is_at_border ? share.at_border.highest : share.within.highest, is_at_border};
}

// What is written of one molecule.
struct Output {
  std::FILE* stream;
  const std::string& input;
  std::span<const Atom> atoms;
  const Molecule& molecule;
  const Surface& surface;
  const SurfaceOptions& options;
  Quantities units;

  std::string potential(double hartree, int decimals) const {
    return quantity_text(hartree * units.potential, decimals);
  }
  std::string area(double value, int decimals) const { return quantity_text(value * units.area(), decimals); }
  std::string volume(double value, int decimals) const {
    return quantity_text(value * units.volume(), decimals);
  }
  std::string curvature(double value, int decimals) const {
    return quantity_text(value * units.curvature(), decimals);
  }
  std::string coordinate(double bohr, int decimals) const {
    return quantity_text(bohr * units.length, decimals);
  }
  void put(const std::string& text) const { std::fputs(text.c_str(), stream); }
};

// For people

// More digits of a smaller unit.
int potential_decimals(const Output& to) { return to.options.uses_hartree ? 5 : 4; }

std::string atom_label(const Output& to, std::size_t atom) {
  const std::string number = std::to_string(atom + 1), symbol = symbol_of(to.atoms[atom]);
  return symbol + number +
         std::string(symbol.size() + number.size() < 7 ? 7 - symbol.size() - number.size() : 1, ' ');
}

void put_whole(const Output& to) {
  const Shares& shares = to.surface.shares;
  const int decimals = potential_decimals(to);
  const std::string length = to.units.length_unit, unit = to.units.potential_unit;
  char level[32];
  std::snprintf(level, sizeof level, "%g", to.options.settings.level);
  to.put(to.input + ": " + std::to_string(to.molecule.electron_count) + " electrons\n\n");
  to.put("Surface of " + std::string(level) + " bohr^-3: area " + to.area(shares.whole.area, 2) + ' ' +
         length + "^2, volume " + to.volume(shares.volume, 2) + ' ' + length + "^3\n");
  if (shares.pieces.size() > 1) {
    to.put("\npiece    area/" + length + "^2   volume/" + length + "^3   Euler characteristic\n");
    for (std::size_t n = 0; n < shares.pieces.size(); ++n) {
      const auto& [area, volume, euler, coarseness] = shares.pieces[n];
      to.put(padded(std::to_string(n + 1), 5) + padded(to.area(area, 2), 9 + length.size()) +
             padded(to.volume(volume, 2), 12 + length.size()) + padded(std::to_string(euler), 23) + '\n');
    }
    to.put("\n");
  } else if (shares.pieces[0].euler != 2) {
    to.put("Euler characteristic " + std::to_string(shares.pieces[0].euler) + '\n');
  }
  to.put("Average local ionization potential, " + unit + ": lowest " +
         to.potential(shares.range.lowest, decimals) + ", highest " +
         to.potential(shares.range.highest, decimals) + ", mean " +
         to.potential(shares.whole.mean, decimals) + ", deviation " +
         to.potential(shares.whole.deviation, decimals) + "\n\n");
}

void put_atoms(const Output& to) {
  const int decimals = potential_decimals(to);
  const std::string length = to.units.length_unit;
  to.put("atom   " + padded("area/" + length + "^2", 16) +
         padded(std::string("lowest/") + to.units.potential_unit, 16) +
         "         highest            mean       deviation\n");
  const auto bound = [&](const Bound& value) {
    return padded(to.potential(value.value, decimals), 15) + (value.is_at_border ? '*' : ' ');
  };
  bool has_border = false;
  for (std::size_t atom = 0; atom < to.atoms.size(); ++atom) {
    const Share& share = to.surface.shares.atoms[atom];
    to.put(atom_label(to, atom));
    if (share.is_empty) {
      to.put("no share of the surface\n");
      continue;
    }
    const Bound lowest = lowest_of(share), highest = highest_of(share);
    has_border = has_border || lowest.is_at_border || highest.is_at_border;
    to.put(padded(to.area(share.statistics.area, 2), 16) + bound(lowest) + bound(highest) +
           padded(to.potential(share.statistics.mean, decimals), 15) +
           padded(to.potential(share.statistics.deviation, decimals), 16) + '\n');
  }
  to.put(has_border ? "* at the border to another atom's share, not a minimum or maximum\n\n" : "\n");
}

void put_extrema(const Output& to) {
  const int decimals = potential_decimals(to);
  const std::string length = to.units.length_unit, unit = to.units.potential_unit;
  if (!to.surface.extrema.list.empty()) {
    to.put("extremum " + padded(unit, 12) + "  atom  " + padded("x/" + length, 12) +
           "           y           z" + padded("curvatures/(" + unit + '/' + length + "^2)", 33) + '\n');
  }
  for (const Extremum& extremum : to.surface.extrema.list) {
    to.put(kind_of(extremum) + padded(to.potential(extremum.value, decimals), 14) + "  " +
           atom_label(to, extremum.atom).substr(0, 7));
    for (const double x : extremum.position) {
      to.put(padded(to.coordinate(x, 3), 12));
    }
    to.put(padded(to.curvature(extremum.curvatures[0], 4), 18) +
           padded(to.curvature(extremum.curvatures[1], 4), 15) + '\n');
  }
  if (to.surface.extrema.flat_count > 0) {
    to.put("and " + std::to_string(to.surface.extrema.flat_count) +
           (to.surface.extrema.flat_count == 1 ? " place that is flat, or leads"
                                               : " places that are flat, or lead") +
           " to no minimum or maximum\n");
  }
}

// Tables of values between commas

std::string csv_text(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == text.npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c == '"' ? "\"\"" : std::string(1, c);
  }
  return quoted + '"';
}

void put_csv_atoms(const Output& to) {
  for (std::size_t atom = 0; atom < to.atoms.size(); ++atom) {
    const Share& share = to.surface.shares.atoms[atom];
    to.put(csv_text(to.input) + ',' + std::to_string(atom + 1) + ',' + csv_text(symbol_of(to.atoms[atom])));
    if (share.is_empty) {
      to.put(",0,,,,,,\n");
      continue;
    }
    const Bound lowest = lowest_of(share), highest = highest_of(share);
    to.put(',' + to.area(share.statistics.area, 6) + ',' + to.potential(lowest.value, 8) + ',' +
           to.potential(highest.value, 8) + (lowest.is_at_border ? ",1" : ",0") +
           (highest.is_at_border ? ",1," : ",0,") + to.potential(share.statistics.mean, 8) + ',' +
           to.potential(share.statistics.deviation, 8) + '\n');
  }
}

void put_csv_extrema(const Output& to) {
  for (const Extremum& extremum : to.surface.extrema.list) {
    to.put(csv_text(to.input) + ',' + kind_of(extremum) + ',' + to.potential(extremum.value, 8));
    for (const double x : extremum.position) {
      to.put(',' + to.coordinate(x, 6));
    }
    to.put(',' + std::to_string(extremum.atom + 1) + ',' + csv_text(symbol_of(to.atoms[extremum.atom])) +
           ',' + to.curvature(extremum.curvatures[0], 8) + ',' + to.curvature(extremum.curvatures[1], 8) +
           '\n');
  }
}

// JSON

// The items of a list by a function of the item's number, with commas between them.
template <class Text>
void put_list(const Output& to, const char* key, std::size_t count, Text text) {
  to.put(std::string(", \"") + key + "\": [");
  for (std::size_t n = 0; n < count; ++n) {
    to.put((n > 0 ? ", " : "") + text(n));
  }
  to.put("]");
}

std::string json_statistics(const Output& to, const Statistics& statistics, double lowest, double highest) {
  return "\"lowest\": " + to.potential(lowest, 8) + ", \"highest\": " + to.potential(highest, 8) +
         ", \"mean\": " + to.potential(statistics.mean, 8) +
         ", \"deviation\": " + to.potential(statistics.deviation, 8);
}

std::string json_position(const Output& to, const double* position) {
  return "\"position\": [" + to.coordinate(position[0], 6) + ", " + to.coordinate(position[1], 6) + ", " +
         to.coordinate(position[2], 6) + ']';
}

std::string json_atom(const Output& to, std::size_t number) {
  const Share& share = to.surface.shares.atoms[number];
  const Atom& atom = to.atoms[number];
  std::string text = "{\"number\": " + std::to_string(number + 1) +
                     ", \"symbol\": " + output_json_text(symbol_of(atom)) + ", " +
                     json_position(to, atom.coord) + ", ";
  if (share.is_empty) {
    return text +
           "\"area\": 0, \"lowest\": null, \"highest\": null, \"mean\": null, \"deviation\": null, "
           "\"lowest_at_border\": false, \"highest_at_border\": false}";
  }
  const Bound lowest = lowest_of(share), highest = highest_of(share);
  const auto truth = [](bool is_true) { return is_true ? "true" : "false"; };
  return text + "\"area\": " + to.area(share.statistics.area, 6) + ", " +
         json_statistics(to, share.statistics, lowest.value, highest.value) +
         ", \"lowest_at_border\": " + truth(lowest.is_at_border) +
         ", \"highest_at_border\": " + truth(highest.is_at_border) + '}';
}

std::string json_extremum(const Output& to, const Extremum& extremum) {
  return std::string("{\"kind\": \"") + kind_of(extremum) +
         "\", \"value\": " + to.potential(extremum.value, 8) + ", " +
         json_position(to, extremum.position.data()) + ", \"atom\": " + std::to_string(extremum.atom + 1) +
         ", \"curvatures\": [" + to.curvature(extremum.curvatures[0], 8) + ", " +
         to.curvature(extremum.curvatures[1], 8) + "]}";
}

void put_json(const Output& to) {
  const Shares& shares = to.surface.shares;
  char level[32];
  std::snprintf(level, sizeof level, "%.9g", to.options.settings.level);
  to.put(", \"electrons\": " + std::to_string(to.molecule.electron_count) + ", \"level\": " + level +
         ", \"units\": {\"potential\": \"" + to.units.potential_unit + "\", \"length\": \"" +
         to.units.length_unit + "\"}, \"area\": " + to.area(shares.whole.area, 6) +
         ", \"volume\": " + to.volume(shares.volume, 6) + ", " +
         json_statistics(to, shares.whole, shares.range.lowest, shares.range.highest));
  put_list(to, "pieces", shares.pieces.size(), [&](std::size_t n) {
    const auto& [area, volume, euler, coarseness] = shares.pieces[n];
    return "{\"area\": " + to.area(area, 6) + ", \"volume\": " + to.volume(volume, 6) +
           ", \"euler\": " + std::to_string(euler) + '}';
  });
  put_list(to, "atoms", to.atoms.size(), [&](std::size_t n) { return json_atom(to, n); });
  put_list(to, "extrema", to.surface.extrema.list.size(),
           [&](std::size_t n) { return json_extremum(to, to.surface.extrema.list[n]); });
  to.put(", \"flat\": " + std::to_string(to.surface.extrema.flat_count) + "}\n");
}

}  // namespace

void output_surface(std::FILE* stream, const std::string& input, const Molecule& molecule,
                    const Surface& surface, const SurfaceOptions& options) {
  const Output to = {
      stream, input, {molecule.atoms, molecule.atom_count}, molecule, surface, options, Quantities(options)};
  switch (options.form) {
    case Form::text:
      put_whole(to);
      put_atoms(to);
      put_extrema(to);
      break;
    case Form::csv:
      options.lists_extrema ? put_csv_extrema(to) : put_csv_atoms(to);
      break;
    case Form::json:
      put_json(to);
      break;
  }
}

std::string output_heading(const SurfaceOptions& options) {
  if (options.form != Form::csv) {
    return "";
  }
  const Quantities units(options);
  const std::string potential = std::string("_") + units.potential_unit,
                    length = std::string("_") + units.length_unit;
  if (options.lists_extrema) {
    return "input,kind,value" + potential + ",x" + length + ",y" + length + ",z" + length +
           ",atom,symbol,low_curvature" + potential + length + "-2,high_curvature" + potential + length +
           "-2\n";
  }
  return "input,number,symbol,area" + length + "2,lowest" + potential + ",highest" + potential +
         ",lowest_at_border,highest_at_border,mean" + potential + ",deviation" + potential + '\n';
}

std::string output_json_beginning(const std::string& input, const std::string& error,
                                  const std::vector<std::string>& warnings) {
  std::string text = "{\"input\": " + output_json_text(input);
  if (!error.empty()) {
    text += ", \"error\": " + output_json_text(error);
  }
  text += ", \"warnings\": [";
  for (std::size_t n = 0; n < warnings.size(); ++n) {
    text += (n > 0 ? ", " : "") + output_json_text(warnings[n]);
  }
  return text + ']';
}

void output_mesh(const std::string& path, const Surface& surface) {
  const Mesh& mesh = surface.mesh;
  std::FILE* const stream = file_open(path.c_str(), "w");
  std::fprintf(stream,
               "ply\nformat ascii 1.0\ncomment positions in bohr, values in hartree\nelement vertex %zu\n"
               "property double x\nproperty double y\nproperty double z\nproperty double value\n"
               "element face %zu\nproperty list uchar int vertex_indices\nend_header\n",
               mesh.points.size(), 4 * mesh.facets.size());
  for (std::size_t n = 0; n < mesh.points.size(); ++n) {
    for (const double x : mesh.points[n]) {
      std::fputs((quantity_text(x, 6) + ' ').c_str(), stream);
    }
    std::fputs((quantity_text(mesh.potential[n], 7) + '\n').c_str(), stream);
  }
  for (std::size_t facet = 0; facet < mesh.facets.size(); ++facet) {
    for (const auto& [a, b, c] : mesh.quarters(facet)) {
      std::fprintf(stream, "3 %u %u %u\n", a, b, c);
    }
  }
  file_close(stream);
}
