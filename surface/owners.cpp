#include "surface/owners.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>

#include "app/model/units.hpp"
#include "lib/atom.hpp"
#include "lib/message.hpp"
#include "surface/vectors.hpp"

namespace {

struct ElementRadius {
  unsigned atomic_number;
  double radius;  // ångström
};

// A. Bondi, J. Phys. Chem. 68, 441 (1964).
constexpr std::array bondi_radii = {
    ElementRadius{1, 1.20},  ElementRadius{2, 1.40},  ElementRadius{3, 1.82},  ElementRadius{6, 1.70},
    ElementRadius{7, 1.55},  ElementRadius{8, 1.52},  ElementRadius{9, 1.47},  ElementRadius{10, 1.54},
    ElementRadius{11, 2.27}, ElementRadius{12, 1.73}, ElementRadius{14, 2.10}, ElementRadius{15, 1.80},
    ElementRadius{16, 1.80}, ElementRadius{17, 1.75}, ElementRadius{18, 1.88}, ElementRadius{19, 2.75},
    ElementRadius{28, 1.63}, ElementRadius{29, 1.40}, ElementRadius{30, 1.39}, ElementRadius{31, 1.87},
    ElementRadius{33, 1.85}, ElementRadius{34, 1.90}, ElementRadius{35, 1.85}, ElementRadius{36, 2.02},
    ElementRadius{46, 1.63}, ElementRadius{47, 1.72}, ElementRadius{48, 1.58}, ElementRadius{49, 1.93},
    ElementRadius{50, 2.17}, ElementRadius{52, 2.06}, ElementRadius{53, 1.98}, ElementRadius{54, 2.16},
    ElementRadius{78, 1.75}, ElementRadius{79, 1.66}, ElementRadius{80, 1.55}, ElementRadius{81, 1.96},
    ElementRadius{82, 2.02}, ElementRadius{92, 1.86}};
static_assert(bondi_radii.size() == 38 &&
              std::ranges::is_sorted(bondi_radii, {}, &ElementRadius::atomic_number));

constexpr double other_radius = 2.0;  // ångström, of all other elements

constexpr std::size_t run_length = 128;  // points among which few atoms are looked for

}  // namespace

Owners::Owners(const Molecule* molecule, std::vector<double> radii) : radii_(std::move(radii)) {
  for (const Atom& atom : std::span(molecule->atoms, molecule->atom_count)) {
    places_.push_back({atom.coord[0], atom.coord[1], atom.coord[2]});
  }
  if (radii_.empty()) {
    radii_.assign(places_.size(), 1.0);  // 1 - distance is the largest for the nearest
  }
}

double Owners::weight(const Point& place, unsigned atom) const {
  return 1.0 - distance(place, places_[atom]) / radii_[atom];
}

std::vector<unsigned> Owners::of(std::span<const Point> points) const {
  std::vector<unsigned> owners, candidates;
  std::vector<double> ranges(places_.size());
  owners.reserve(points.size());
  for (; !points.empty(); points = points.subspan(std::min(run_length, points.size()))) {
    const auto run = points.first(std::min(run_length, points.size()));
    double radius = 0.0;
    for (const Point& point : run) {
      radius = std::max(radius, distance(point, run[0]));
    }
    radius *= 1.0 + 1e-12;
    // An atom that is worse all over the ball than another is worst in it owns nothing there.
    double worst = -std::numeric_limits<double>::infinity();
    for (std::size_t atom = 0; atom < places_.size(); ++atom) {
      ranges[atom] = distance(run[0], places_[atom]);
      worst = std::max(worst, 1.0 - (ranges[atom] + radius) / radii_[atom]);
    }
    candidates.clear();
    for (unsigned atom = 0; atom < places_.size(); ++atom) {
      if (1.0 - (ranges[atom] - radius) / radii_[atom] >= worst - 1e-9) {
        candidates.push_back(atom);
      }
    }
    for (const Point& point : run) {
      owners.push_back(
          *std::ranges::max_element(candidates, {}, [&](unsigned atom) { return weight(point, atom); }));
    }
  }
  return owners;
}

unsigned Owners::of(const Point& point, double slack) const {
  unsigned owner = 0;
  double most = weight(point, 0);
  for (unsigned atom = 1; atom < places_.size(); ++atom) {
    if (const double here = weight(point, atom); here > most) {
      most = here;
      owner = atom;
    }
  }
  for (unsigned atom = 0; slack > 0.0 && atom < owner; ++atom) {
    if (weight(point, atom) >= most - slack) {
      return atom;
    }
  }
  return owner;
}

std::vector<double> owners_radii(const Molecule* molecule) {
  std::vector<double> radii;
  std::set<unsigned> told;
  for (const Atom& atom : std::span(molecule->atoms, molecule->atom_count)) {
    const auto entry = std::ranges::find(bondi_radii, atom.atomic_number, &ElementRadius::atomic_number);
    if (entry != bondi_radii.end()) {
      radii.push_back(entry->radius / angstrom_per_bohr);
      continue;
    }
    radii.push_back(other_radius / angstrom_per_bohr);
    if (told.insert(atom.atomic_number).second) {
      char name[3];
      atom_name(name, static_cast<int>(std::min(atom.atomic_number, atom_last + 1)));
      msg_tell("Bondi has no radius of %s: its share of the surface is that of an atom of %.2f angstrom",
               name, other_radius);
    }
  }
  return radii;
}
