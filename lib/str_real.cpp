#include "str_real.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

__extension__ using Wide = unsigned __int128;

// Powers of ten as the text needs them: 10^q = significand · 2^(floor(log2 10^q) - 63), cut off after 64
// bits.
constexpr int lowest_power = -323;
constexpr int highest_power = 329;

constexpr unsigned limb_count = 20;                        // 1280 bits
using BigInteger = std::array<std::uint64_t, limb_count>;  // lowest limb first

constexpr std::uint64_t top_bits(const BigInteger& number) {
  unsigned top = limb_count - 1;
  while (number[top] == 0) {
    --top;
  }
  const int shift = std::countl_zero(number[top]);
  const Wide pair = (Wide{number[top]} << 64) | (top > 0 ? number[top - 1] : 0);
  return static_cast<std::uint64_t>((pair << shift) >> 64);
}

constexpr auto significands = [] {
  std::array<std::uint64_t, highest_power - lowest_power + 1> table{};
  BigInteger number{1};
  for (int power = 0; power <= highest_power; ++power) {
    table[static_cast<unsigned>(power - lowest_power)] = top_bits(number);
    std::uint64_t carry = 0;
    for (std::uint64_t& limb : number) {
      const Wide product = Wide{limb} * 10 + carry;
      limb = static_cast<std::uint64_t>(product);
      carry = static_cast<std::uint64_t>(product >> 64);
    }
  }
  number = {};
  number[limb_count - 1] = 1;
  for (int power = -1; power >= lowest_power; --power) {
    std::uint64_t rest = 0;
    for (unsigned i = limb_count; i-- > 0;) {
      const Wide dividend = (Wide{rest} << 64) | number[i];
      number[i] = static_cast<std::uint64_t>(dividend / 10);
      rest = static_cast<std::uint64_t>(dividend % 10);
    }
    table[static_cast<unsigned>(power - lowest_power)] = top_bits(number);
  }
  return table;
}();
static_assert(significands[-lowest_power] == 0x8000000000000000 &&
              significands[1 - lowest_power] == 0xA000000000000000 &&
              significands[-1 - lowest_power] == 0xCCCCCCCCCCCCCCCC);

constexpr std::uint64_t significand(int power) {
  return significands[static_cast<unsigned>(power - lowest_power)];
}
constexpr bool is_exact(int power) { return power >= 0 && power <= 27; }  // 5^27 < 2^64 < 5^28

// Right for all exponents that a double has: floor(log10 2^n) and floor(log2 10^n).
constexpr int floor_log10_of_power2(int n) { return (n * 1262611) >> 22; }
constexpr int floor_log2_of_power10(int n) { return (n * 1741647) >> 19; }

constexpr char digit(std::size_t number) { return static_cast<char>('0' + number % 10); }

// Three digits as they stand in a text, first ("1.00" to "9.99", by 100 to 999) and last ("000e" to "999e").
constexpr auto first_digits = [] {
  std::array<std::array<char, 4>, 1000> table{};
  for (std::size_t i = 100; i < 1000; ++i) {
    table[i] = {digit(i / 100), '.', digit(i / 10), digit(i)};
  }
  return table;
}();
constexpr auto last_digits = [] {
  std::array<std::array<char, 4>, 1000> table{};
  for (std::size_t i = 0; i < 1000; ++i) {
    table[i] = {digit(i / 100), digit(i / 10), digit(i), 'e'};
  }
  return table;
}();

// 100000 <= digits <= 999999, value = digits · 10^(exponent - 5).
void put(bool negative, std::size_t digits, int exponent, char* text) {
  const auto magnitude = static_cast<std::size_t>(exponent < 0 ? -exponent : exponent);
  text[0] = ' ';
  char* const start = magnitude < 100 ? text + 1 : text;
  start[0] = negative ? '-' : ' ';
  std::memcpy(start + 1, &first_digits[digits / 1000], 4);
  std::memcpy(start + 5, &last_digits[digits % 1000], 4);
  start[9] = exponent < 0 ? '-' : '+';
  // Two digits, the second of which is the last, or three.
  std::memcpy(start + 10, &last_digits[magnitude][magnitude < 100 ? 1 : 0], 2);
  text[12] = digit(magnitude);
}

// Infinity, NaN, and values too near to a tie of two texts: right-aligned.
void put_rare(double value, char* text) {
  std::memset(text, ' ', str_scientific_width);
  char buffer[32];
  char* end = buffer;
  if (std::isfinite(value)) {
    end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 5).ptr;
  } else {
    const char* const name = std::isnan(value) ? "nan" : "inf";
    if (std::signbit(value)) {
      *end++ = '-';
    }
    std::memcpy(end, name, 3);
    end += 3;
  }
  const auto length = static_cast<std::size_t>(end - buffer);
  std::memcpy(text + str_scientific_width - length, buffer, length);
}

// Writes the text of a number that is neither 0 nor infinite nor NaN, unless a tie of two texts may lie
// within `margin` units of it, of which the number has between 2^62 and 2^64.
bool put_unless_tied(double value, std::uint64_t margin, char* text) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const bool negative = (bits >> 63) != 0;
  const unsigned biased = static_cast<unsigned>(bits >> 52) & 0x7FF;
  const std::uint64_t stored = bits & 0xFFFFFFFFFFFFF;
  // |value| = mantissa · 2^(log2 - 63), mantissa with its top bit set.
  const std::uint64_t whole = biased == 0 ? stored : stored | (std::uint64_t{1} << 52);
  const int shift = std::countl_zero(whole);
  const std::uint64_t mantissa = whole << shift;
  const int log2 = (biased == 0 ? 1 : static_cast<int>(biased)) - 1012 - shift;

  // The decimal exponent from the binary one, one more where the value reaches the next power of ten.
  int exponent = floor_log10_of_power2(log2);
  const int next = exponent + 1;
  const int same_binade = static_cast<int>(floor_log2_of_power10(next) == log2);
  exponent += same_binade & static_cast<int>(mantissa >= significand(next) + (is_exact(next) ? 0U : 1U));

  // |value| · 10^(5 - exponent), six digits before the point. What was cut off of the power and of the
  // product is less than 2 in the last bit of `scaled`.
  const int power = 5 - exponent;
  const auto scaled = static_cast<std::uint64_t>((Wide{mantissa} * significand(power)) >> 64);
  const int point = 62 - log2 - floor_log2_of_power10(power);  // bits of `scaled` after the point
  const std::uint64_t half = std::uint64_t{1} << (point - 1);
  const std::uint64_t fraction = scaled & (2 * half - 1);
  if (fraction - (half - margin) <= 2 * margin) {
    return false;
  }
  unsigned digits = static_cast<unsigned>(scaled >> point) + (fraction > half ? 1U : 0U);
  if (digits == 1000000) {
    digits = 100000;
    ++exponent;
  }
  put(negative, digits, exponent, text);
  return true;
}

// What put_unless_tied itself cuts off is less.
constexpr std::uint64_t cut_off = 2;

// 10^power as a double, to one rounding.
constexpr double power_of_ten(int power) {
  const auto biased = std::uint64_t{1022} + static_cast<std::uint64_t>(floor_log2_of_power10(power));
  return std::bit_cast<double>((biased << 52) + ((significand(power) + (1U << 10)) >> 11));
}

// What numbers between two powers of 2 need: where their decimal exponent goes up, if there; and below and
// above it the power that leaves six digits before the point, and the exponent's text.
struct Binade {
  double next;
  double scale[2];
  char exponent[2][4];
};

// Those with exponents of two digits.
constexpr unsigned first_binade = 1023 - 325, end_binade = 1023 + 325;
constexpr auto binades = [] {
  std::array<Binade, end_binade - first_binade> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    const int exponent = floor_log10_of_power2(static_cast<int>(i + first_binade) - 1023);
    table[i].next = power_of_ten(exponent + 1);
    for (const int up : {0, 1}) {
      const int of_text = exponent + up;
      const auto magnitude = static_cast<std::size_t>(of_text < 0 ? -of_text : of_text);
      table[i].scale[up] = power_of_ten(5 - of_text);
      table[i].exponent[up][0] = 'e';
      table[i].exponent[up][1] = of_text < 0 ? '-' : '+';
      table[i].exponent[up][2] = digit(magnitude / 10);
      table[i].exponent[up][3] = digit(magnitude);
    }
  }
  return table;
}();

// Above 2.01 roundings of a scaled number, and those of what is made of it here.
constexpr double scaled_error = 0x1p-50;

}  // namespace

void str_scientific(double value, char* text) {
  if (value == 0.0) {
    std::copy_n(std::signbit(value) ? " -0.00000e+00" : "  0.00000e+00", str_scientific_width, text);
  } else if (!std::isfinite(value) || !put_unless_tied(value, cut_off, text)) {
    put_rare(value, text);
  }
}

bool str_scientific_sure(double value, double tolerance, char* text) {
  const double magnitude = std::fabs(value);
  const auto place = static_cast<unsigned>(std::bit_cast<std::uint64_t>(magnitude) >> 52) - first_binade;
  if (!(tolerance < 1e-7)) {
    return false;
  }
  if (place < binades.size()) {
    const Binade& binade = binades[place];
    // Next to a power of ten both sides give the same text.
    const auto up = static_cast<unsigned>(magnitude >= binade.next);
    const double scaled = magnitude * binade.scale[up];
    const double shifted = scaled + 0x1p52;  // the nearest integer in the lowest bits
    const double distance = std::fabs(scaled - (shifted - 0x1p52));
    if (!(0.5 - distance > scaled * (tolerance + scaled_error))) {
      return false;
    }
    const auto digits = static_cast<unsigned>(std::bit_cast<std::uint64_t>(shifted));
    if (digits < 1000000) {
      text[0] = ' ';
      text[1] = value < 0.0 ? '-' : ' ';
      std::memcpy(text + 2, &first_digits[digits / 1000], 4);
      std::memcpy(text + 6, &last_digits[digits % 1000], 4);
      std::memcpy(text + 9, binade.exponent[up], 4);
      return true;
    }
  }
  return magnitude >= 1e-250 && magnitude < HUGE_VAL &&
         put_unless_tied(value, static_cast<std::uint64_t>(tolerance * 0x1p64) + cut_off + 1, text);
}
