#pragma once

#include <bit>
#include <cstdint>
#include <utility>

// The number types of the field formulas. A formula is a template over Real: one double (the point-by-point
// functions) or a Pack of doubles, one point in each lane (the sweeps). In the exact sweep both round every
// operation once, in the same order, and so give the same bits; the kernels of the rows may fuse operations.

/// `Lanes` doubles. `Tag` is a type of an unnamed namespace: it keeps all that is made for a pack inside the
/// translation unit that is compiled for the pack's instruction set.
template <class Tag, unsigned Lanes>
struct Pack {
  typedef double Doubles __attribute__((vector_size(Lanes * sizeof(double))));
  typedef std::uint64_t Bits __attribute__((vector_size(Lanes * sizeof(double))));
  static constexpr unsigned lanes = Lanes;

  Doubles lane;

  Pack() = default;
  Pack(double value) : Pack(value, std::make_integer_sequence<unsigned, Lanes>{}) {}

  static Pack of(Doubles value) {
    Pack pack;
    pack.lane = value;
    return pack;
  }
  static Pack load(const double* from) {
    Pack pack;
    __builtin_memcpy(&pack.lane, from, sizeof pack.lane);
    return pack;
  }
  void store(double* to) const { __builtin_memcpy(to, &lane, sizeof lane); }

  friend Pack operator+(Pack a, Pack b) { return of(a.lane + b.lane); }
  friend Pack operator-(Pack a, Pack b) { return of(a.lane - b.lane); }
  friend Pack operator*(Pack a, Pack b) { return of(a.lane * b.lane); }
  friend Pack operator/(Pack a, Pack b) { return of(a.lane / b.lane); }

  friend Pack lower_of(Pack a, Pack b) { return of(a.lane < b.lane ? a.lane : b.lane); }
  friend Pack higher_of(Pack a, Pack b) { return of(a.lane > b.lane ? a.lane : b.lane); }
  friend double lowest(Pack a) {
    return reduce<Lanes>(a.lane, [](auto x, auto y) { return x < y ? x : y; });
  }
  friend double highest(Pack a) {
    return reduce<Lanes>(a.lane, [](auto x, auto y) { return x > y ? x : y; });
  }
  /// All bits set in the lanes where a < b.
  friend Bits is_below(Pack a, Pack b) { return reinterpret_cast<Bits>(a.lane < b.lane); }
  friend Bits bits_of(Pack a) { return reinterpret_cast<Bits>(a.lane); }
  friend Pack from_bits(Bits bits, Pack /*type*/) { return of(reinterpret_cast<Doubles>(bits)); }

 private:
  template <unsigned... I>
  Pack(double value, std::integer_sequence<unsigned, I...>) : lane{(static_cast<void>(I), value)...} {}

  // Halves the vector until one double is left.
  template <unsigned Count, class Vector, class Choose>
  static double reduce(Vector vector, Choose choose) {
    if constexpr (Count == 2) {
      return choose(vector[0], vector[1]);
    } else {
      typedef double Half __attribute__((vector_size(Count / 2 * sizeof(double))));
      Half half[2];
      __builtin_memcpy(half, &vector, sizeof vector);
      return reduce<Count / 2, Half>(choose(half[0], half[1]), choose);
    }
  }
};

inline double lower_of(double a, double b) { return a < b ? a : b; }
inline double higher_of(double a, double b) { return a > b ? a : b; }
inline std::uint64_t bits_of(double a) { return std::bit_cast<std::uint64_t>(a); }
inline double from_bits(std::uint64_t bits, double /*type*/) { return std::bit_cast<double>(bits); }
