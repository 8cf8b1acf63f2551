#include "app/field/point/radial.hpp"

#include <cstring>
#include <map>
#include <span>
#include <tuple>

namespace {

int compare(const double* a, const double* b, unsigned count) {
  return count == 0 ? 0 : std::memcmp(a, b, count * sizeof(double));
}

struct ByRadial {
  bool operator()(const BasisFunction* a, const BasisFunction* b) const {
    const auto rank = [](const BasisFunction* function) {
      const unsigned count = function->primitive_count;
      return std::tuple(function->atom_index, count, count == 1 ? 0 : function->type);
    };
    if (rank(a) != rank(b)) {
      return rank(a) < rank(b);
    }
    const int exponents = compare(a->exponents, b->exponents, a->primitive_count);
    return exponents < 0 ||
           (exponents == 0 && compare(a->coefficients, b->coefficients, a->primitive_count) < 0);
  }
};

}  // namespace

std::vector<unsigned> radials_of(const Molecule* molecule) {
  std::map<const BasisFunction*, unsigned, ByRadial> numbers;
  std::vector<unsigned> radials;
  radials.reserve(molecule->basis_count);
  for (const BasisFunction& function : std::span(molecule->basis, molecule->basis_count)) {
    const auto next = static_cast<unsigned>(numbers.size());
    radials.push_back(numbers.try_emplace(&function, next).first->second);
  }
  return radials;
}
