#include "app/input/convention.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "app/field/point/norm.hpp"
#include "app/input/options.hpp"
#include "app/input/overlap.hpp"
#include "app/model/memory.hpp"
#include "app/model/occupation.hpp"
#include "app/model/setup.hpp"
#include "app/model/shell.hpp"
#include "lib/message.hpp"

namespace {

constexpr unsigned checked_orbitals = 8;
constexpr unsigned orbitals_of_g_max = 16;
constexpr double norm_is_other = 0.01;   // with 0: so far from 1, and ten times nearer with 1
constexpr double norm_is_wrong = 0.001;  // with 1
constexpr double occupation_min = -0.01;

using Functions = std::span<BasisFunction>;
using Orbitals = std::span<Orbital>;

// Turns functions and orbitals that are as a file has them into this program's terms.
using Turn = void (*)(Functions functions, Orbitals orbitals);

// f functions.

// In the order of the type numbers 11 to 20.
constexpr std::string_view aim_f_monomials = "xxx yyy zzz xxy xxz yyz xyy xzz yzz xyz";

// This program's component of the function at each place of `monomials`, a list like those of
// shell_monomials.
template <unsigned L>
constexpr auto components_of(std::string_view monomials) {
  std::array<short, shell_function_count(L)> components{};
  for (unsigned place = 0; place < components.size(); ++place) {
    const std::string_view monomial = monomials.substr(std::size_t{place} * (L + 1), L);
    for (unsigned component = 0; component < components.size(); ++component) {
      if (shell_monomial(L, component) == monomial) {
        components[place] = static_cast<short>(component);
      }
    }
  }
  return components;
}
constexpr auto f_components = components_of<3>(aim_f_monomials);
static_assert(f_components[4] == 5 && f_components[5] == 8 && f_components[9] == 9);

void turn_wfn(Functions functions, Orbitals orbitals) {
  std::vector<double> norms;
  for (BasisFunction& function : functions) {
    if (function.type == 3) {
      function.component = f_components[static_cast<std::size_t>(function.component)];
    }
    norms.push_back(norm_fce(&function, 0));
  }
  for (const Orbital& orbital : orbitals) {
    for (std::size_t f = 0; f < norms.size(); ++f) {
      orbital.coefficients[f] /= norms[f];
    }
  }
}

// g functions.

// The other order of the Cartesian ones in checkpoint files.
constexpr auto g_components =
    components_of<4>("zzzz yzzz yyzz yyyz yyyy xzzz xyzz xyyz xyyy xxzz xxyz xxyy xxxz xxxy xxxx");
static_assert(g_components[0] == 2 && g_components[14] == 0);

// With this program's constants the squares of these pure functions integrate to 280/297 and 14/17.
void turn_pure_g(Functions functions, Orbitals orbitals) {
  for (std::size_t f = 0; f < functions.size(); ++f) {
    const auto [type, component] = std::pair(functions[f].type, functions[f].component);
    if (type == -4 && (component == 0 || component == 3)) {
      const double factor = std::sqrt(component == 0 ? 297.0 / 280.0 : 17.0 / 14.0);
      for (const Orbital& orbital : orbitals) {
        orbital.coefficients[f] *= factor;
      }
    }
  }
}

void turn_all_g(Functions functions, Orbitals orbitals) {
  turn_pure_g(functions, orbitals);
  for (std::size_t f = 0; f < functions.size(); ++f) {
    if (functions[f].type == 4 && functions[f].component == 0) {  // the others of the shell follow
      for (const Orbital& orbital : orbitals) {
        std::array<double, g_components.size()> listed;
        std::copy_n(orbital.coefficients + f, listed.size(), listed.begin());
        for (std::size_t place = 0; place < listed.size(); ++place) {
          orbital.coefficients[f + static_cast<std::size_t>(g_components[place])] = listed[place];
        }
      }
    }
  }
}

// Norms.

void turn_nothing(Functions, Orbitals) {}

// What the norms would be after each of the turns, one set behind the other. At most one turn may change
// functions.
// None if it would take too long.
std::vector<double> norms_after(std::initializer_list<Turn> turns, const Molecule* molecule,
                                std::span<const Orbital* const> orbitals) {
  if (orbitals.empty()) {
    return {};
  }
  std::vector<BasisFunction> functions(molecule->basis, molecule->basis + molecule->basis_count);
  std::vector<double> coefficients(functions.size() * orbitals.size() * turns.size());
  std::vector<Orbital> copies;
  for (const Turn turn : turns) {
    for (const Orbital* orbital : orbitals) {
      double* const own = coefficients.data() + copies.size() * functions.size();
      std::copy_n(orbital->coefficients, functions.size(), own);
      copies.push_back({orbital->energy, own, orbital->occupation});
    }
    turn(functions, std::span(copies).last(orbitals.size()));
  }
  Molecule turned = *molecule;
  turned.basis = functions.data();
  return overlap_norms(&turned, copies).value_or(std::vector<double>());
}

// Occupied orbitals, spread evenly, the first among them.
std::vector<const Orbital*> sample_of(const Molecule* molecule) {
  const std::vector<WeightedOrbital> occupied = occupation_of(molecule).orbitals;
  const std::size_t count = std::min<std::size_t>(checked_orbitals, occupied.size());
  std::vector<const Orbital*> sample;
  for (std::size_t i = 0; i < count; ++i) {
    sample.push_back(occupied[i * (occupied.size() - 1) / std::max<std::size_t>(count - 1, 1)].orbital);
  }
  return sample;
}

std::string name_of(const Orbital* orbital, const Molecule* molecule) {
  const std::span alpha(molecule->alpha_orbitals, molecule->alpha_orbital_count);
  const auto is_it = [&](const Orbital& other) { return &other == orbital; };
  const auto in_alpha = std::ranges::find_if(alpha, is_it);
  return in_alpha != alpha.end() ? "orbital " + std::to_string(in_alpha - alpha.begin() + 1)
                                 : "beta orbital " + std::to_string(orbital - molecule->beta_orbitals + 1);
}

void tell_if_unknown(std::span<const double> norms, std::span<const Orbital* const> sample) {
  if (norms.size() < sample.size()) {
    msg_tell("too many primitives to look at the norms of orbitals%s",
             conf_input_convention == 0 ? "; perhaps INPUT_CONVENTION 1 is meant" : "");
  }
}

// The first orbital whose norm shows that the file is meant otherwise.
void tell_if_other(const Molecule* molecule, std::span<const Orbital* const> sample,
                   std::span<const double> norms, std::span<const double> others) {
  tell_if_unknown(norms, sample);
  for (std::size_t i = 0; i < std::min(norms.size(), others.size()); ++i) {
    const double error = std::fabs(norms[i] - 1.0);
    if (error > norm_is_other && 10.0 * std::fabs(others[i] - 1.0) < error) {
      msg_tell("%s has the norm %.4f, with INPUT_CONVENTION 1 it has %.4f",
               name_of(sample[i], molecule).c_str(), norms[i], others[i]);
      return;
    }
  }
}

void tell_if_wrong(const Molecule* molecule) {
  const std::vector<const Orbital*> sample = sample_of(molecule);
  const std::vector<double> norms = norms_after({turn_nothing}, molecule, sample);
  tell_if_unknown(norms, sample);
  const auto wrong =
      std::ranges::find_if(norms, [](double norm) { return !(std::fabs(norm - 1.0) <= norm_is_wrong); });
  if (wrong != norms.end()) {
    msg_tell("%s has the norm %.4f in place of 1",
             name_of(sample[static_cast<std::size_t>(wrong - norms.begin())], molecule).c_str(), *wrong);
  }
}

bool has_type(const Molecule* molecule, short type) {
  return std::ranges::any_of(std::span(molecule->basis, molecule->basis_count),
                             [type](const BasisFunction& function) { return function.type == type; });
}

// The orbitals to which g functions matter most.
std::vector<const Orbital*> orbitals_of_g(const Molecule* molecule) {
  std::vector<std::pair<double, const Orbital*>> shares;
  for (const std::span orbitals : {std::span(molecule->alpha_orbitals, molecule->alpha_orbital_count),
                                   std::span(molecule->beta_orbitals, molecule->beta_orbital_count)}) {
    for (const Orbital& orbital : orbitals) {
      double squares = 0.0;
      for (unsigned f = 0; f < molecule->basis_count; ++f) {
        squares +=
            std::abs(molecule->basis[f].type) == 4 ? orbital.coefficients[f] * orbital.coefficients[f] : 0.0;
      }
      shares.emplace_back(std::isnan(squares) ? 0.0 : squares, &orbital);
    }
  }
  std::ranges::stable_sort(shares, std::greater<>{}, [](const auto& share) { return share.first; });
  std::vector<const Orbital*> orbitals;
  for (std::size_t i = 0; i < std::min<std::size_t>(shares.size(), orbitals_of_g_max); ++i) {
    orbitals.push_back(shares[i].second);
  }
  return orbitals;
}

// Turns g functions, whose Cartesian ones stand in one of two orders: in that with norms nearer to 1. Or
// tells if that is not as they are read.
void settle_g(Molecule* molecule) {
  std::vector<const Orbital*> sample = sample_of(molecule);
  const std::size_t occupied = sample.size();
  const std::vector<const Orbital*> rich = orbitals_of_g(molecule);
  sample.insert(sample.end(), rich.begin(), rich.end());
  const std::vector<double> norms = norms_after({turn_nothing, turn_pure_g, turn_all_g}, molecule, sample);
  const std::size_t count = norms.size() / 3;
  const auto set = [&](std::size_t turn) { return std::span(norms).subspan(turn * count, count); };
  const auto error_of = [&](std::size_t turn) {
    double error = 0.0;
    for (const double norm : set(turn).subspan(std::min(occupied, count))) {
      error += std::fabs(norm - 1.0);
    }
    return error;
  };
  const bool is_other_order = has_type(molecule, 4) && error_of(2) < error_of(1);
  if (conf_input_convention == 0) {
    tell_if_other(molecule, sample, set(0), set(is_other_order ? 2 : 1));
    return;
  }
  const Turn turn = is_other_order ? turn_all_g : turn_pure_g;
  const Functions functions(molecule->basis, molecule->basis_count);
  turn(functions, {molecule->alpha_orbitals, molecule->alpha_orbital_count});
  turn(functions, {molecule->beta_orbitals, molecule->beta_orbital_count});
}

// Occupations.

void settle_occupations(Molecule* molecule) {
  double sum = 0.0, negative = 0.0;
  for (const Orbital& orbital : std::span(molecule->alpha_orbitals, molecule->alpha_orbital_count)) {
    if (orbital.occupation < occupation_min) {
      msg_fatal_format("occupation number %g of %s is negative", orbital.occupation,
                       name_of(&orbital, molecule).c_str());
    }
    sum += orbital.occupation;
    negative += std::min(orbital.occupation, 0.0);
  }
  if (negative < -0.0001) {
    msg_tell("negative occupation numbers add up to %.6f", negative);
  }
  if (std::fabs(sum - std::round(sum)) > 0.001) {
    msg_tell("occupation numbers add up to %.4f, which is no number of electrons", sum);
  }
  molecule->has_occupations = true;
  molecule->electron_count = static_cast<unsigned>(std::clamp(std::round(sum), 0.0, 4294967295.0));
}

bool has_equal_spins(const Molecule* molecule) {
  const std::span alpha(molecule->alpha_orbitals, molecule->alpha_orbital_count);
  const std::span beta(molecule->beta_orbitals, molecule->beta_orbital_count);
  return std::ranges::equal(alpha, beta, [&](const Orbital& a, const Orbital& b) {
    return a.energy == b.energy &&
           std::equal(a.coefficients, a.coefficients + molecule->basis_count, b.coefficients);
  });
}

void tell_if_energies_are_odd(const Molecule* molecule) {
  const std::vector<WeightedOrbital> occupied = occupation_of(molecule).orbitals;
  const auto all = [&](auto is) {
    return std::ranges::all_of(occupied,
                               [&](const WeightedOrbital& entry) { return is(entry.orbital->energy); });
  };
  if (occupied.empty() || !all([](double energy) { return energy >= 0.0; })) {
    return;
  }
  if (!all([](double energy) { return energy == 0.0; })) {
    msg_tell(
        "no occupied orbital has a negative energy: are these natural orbitals, in an order of their own?");
  } else if (conf_print_cube != 0 && conf_cube_orva != 0) {
    msg_tell("all occupied orbitals have the energy 0: the ionization potential means nothing");
  }
}

}  // namespace

int convention_format_of(std::string_view beginning) {
  beginning = beginning.substr(0, convention_beginning);
  const auto has = [&](const char* text) { return beginning.find(text) != beginning.npos; };
  const bool is_fchk = has("\nNumber of atoms ") || has("\nNumber of electrons "),
             is_wfn = has(" MOL ORBITALS ");
  return is_fchk == is_wfn ? 0 : is_fchk ? input_fchk : input_wfn;
}

void convention_tell_format(std::string_view beginning) {
  const int format = convention_format_of(beginning);
  if (inp_format == input_wfn && format == input_fchk) {
    msg_tell("the input file looks like a formatted checkpoint file: -t fchk");
  } else if (inp_format == input_fchk && format == input_wfn) {
    msg_tell("the input file looks like a WFN file: -t wfn");
  }
}

void convention_settle_wfn(Molecule* molecule) {
  if (conf_input_convention == 0) {
    const std::vector<const Orbital*> sample = sample_of(molecule);
    const std::vector<double> others = norms_after({turn_wfn}, molecule, sample);
    tell_if_other(molecule, sample, others.empty() ? others : norms_after({turn_nothing}, molecule, sample),
                  others);
    return;
  }
  settle_occupations(molecule);
  turn_wfn({molecule->basis, molecule->basis_count},
           {molecule->alpha_orbitals, molecule->alpha_orbital_count});
  tell_if_energies_are_odd(molecule);
  tell_if_wrong(molecule);
}

void convention_place_electrons(Molecule* molecule) {
  const unsigned alpha = molecule->alpha_electron_count, beta = molecule->beta_electron_count;
  // What the method's name tells so far: a closed shell that lists its orbitals twice.
  if (molecule->is_restricted && alpha == beta && has_equal_spins(molecule)) {
    mem_free_beta_orbitals(molecule);
  }
  molecule->is_restricted = molecule->beta_orbitals == nullptr;
  inp_rest_scf = molecule->is_restricted ? 1 : 0;
  if (!molecule->is_restricted) {
    return;
  }
  molecule->electron_count = alpha + beta;
  molecule->has_occupations = alpha != beta;
  for (unsigned i = 0; i < molecule->alpha_orbital_count; ++i) {
    molecule->alpha_orbitals[i].occupation = (i < alpha ? 1.0 : 0.0) + (i < beta ? 1.0 : 0.0);
  }
}

void convention_settle_fchk(Molecule* molecule) {
  tell_if_energies_are_odd(molecule);
  if (has_type(molecule, 4) || has_type(molecule, -4)) {
    settle_g(molecule);
  }
  if (conf_input_convention != 0) {
    tell_if_wrong(molecule);
  }
}
