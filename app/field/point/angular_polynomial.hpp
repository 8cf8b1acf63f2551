#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "app/field/point/angular.hpp"

/// An angular factor written out as a polynomial in x, y and z. As the number type of the factors it turns
/// the formulas that evaluate a factor into its coefficients, and keeps what the formula's terms come to
/// where all of them are taken positive: that measures the rounding of the formula.
class AngularPolynomial {
 public:
  struct Term {
    std::array<unsigned char, 3> powers;  // of x, y and z
    double coefficient;
    double magnitude;
  };

  AngularPolynomial(double constant) : terms_{{{}, constant, std::fabs(constant)}} {}

  /// The polynomials x, y and z.
  static Vector<AngularPolynomial> coordinates() { return {axis(0), axis(1), axis(2)}; }

  const std::vector<Term>& terms() const { return terms_; }

  friend AngularPolynomial operator+(AngularPolynomial a, const AngularPolynomial& b) {
    for (const Term& term : b.terms_) {
      a.add(term);
    }
    return a;
  }
  friend AngularPolynomial operator-(AngularPolynomial a, const AngularPolynomial& b) {
    for (const auto& [powers, coefficient, magnitude] : b.terms_) {
      a.add({powers, -coefficient, magnitude});
    }
    return a;
  }
  friend AngularPolynomial operator*(const AngularPolynomial& a, const AngularPolynomial& b) {
    AngularPolynomial product;
    for (const Term& s : a.terms_) {
      for (const Term& t : b.terms_) {
        Term term = {s.powers, s.coefficient * t.coefficient, s.magnitude * t.magnitude};
        for (unsigned c = 0; c < 3; ++c) {
          term.powers[c] = static_cast<unsigned char>(s.powers[c] + t.powers[c]);
        }
        product.add(term);
      }
    }
    return product;
  }
  friend AngularPolynomial cubed(const AngularPolynomial& v) { return v * v * v; }

 private:
  AngularPolynomial() = default;

  static AngularPolynomial axis(unsigned number) {
    AngularPolynomial polynomial(1.0);
    polynomial.terms_[0].powers[number] = 1;
    return polynomial;
  }

  void add(const Term& term) {
    const auto same = std::ranges::find(terms_, term.powers, &Term::powers);
    if (same == terms_.end()) {
      terms_.push_back(term);
    } else {
      same->coefficient += term.coefficient;
      same->magnitude += term.magnitude;
    }
  }

  std::vector<Term> terms_;
};
