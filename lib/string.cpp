#include "string.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <string>

#include "message.hpp"

namespace {

const char* skip(const char* text, const char* characters) { return text + std::strspn(text, characters); }

}  // namespace

unsigned str_unum_len(std::int32_t value) { return str_lunum_len(static_cast<std::uint32_t>(value)); }

unsigned str_lunum_len(std::uint64_t value) {
  unsigned digits = 0;
  for (; value != 0; value /= 10) {
    ++digits;
  }
  return digits;
}

int str_compare(const char* first, const char* second) {
  if (*first == '\0' || *second == '\0') {
    return *first == *second;
  }
  first = skip(first, " ");
  second = skip(second, " ");
  while (*first != '\0' && *first == *second) {
    ++first;
    ++second;
  }
  const bool is_end_reached = *first == '\0' || *second == '\0';
  return is_end_reached && *skip(first, " \n") == '\0' && *skip(second, " \n") == '\0';
}

bool str_has_bare_exponent(std::string_view real, std::string_view behind) {
  const auto is_digit = [](unsigned char character) { return std::isdigit(character) != 0; };
  const auto is_space = [](unsigned char character) { return std::isspace(character) != 0; };
  const bool may_go_on = real.find('.') != real.npos && real.find_first_of("EeXx") == real.npos &&
                         std::ranges::any_of(real, is_digit);
  const std::string_view digits = behind.substr(std::min<std::size_t>(behind.size(), 1), 3);
  return may_go_on && (behind.starts_with('-') || behind.starts_with('+')) && digits.size() == 3 &&
         std::ranges::all_of(digits, is_digit) &&
         (behind.size() == str_exponent_length ||
          is_space(static_cast<unsigned char>(behind[str_exponent_length])));
}

const char* str_fortran_real(const char* text, double* value) {
  int length = 0;
  if (std::sscanf(text, "%lf%n", value, &length) != 1) {
    return nullptr;
  }
  const char* const rest = text + length;
  std::string number(text, rest);
  if (!str_has_bare_exponent(number, rest)) {
    return rest;
  }
  number.append("E").append(rest, str_exponent_length);
  std::sscanf(number.c_str(), "%lf", value);
  return rest + str_exponent_length;
}

double str_dsnum(char* word) {
  const std::size_t length = std::strlen(word);
  if (length < 2) {
    return 0.0;
  }
  for (char* letter = word; (letter = std::strpbrk(letter, "Dd")) != nullptr;) {
    *letter = *letter == 'D' ? 'E' : 'e';
  }
  double value = 0.0;
  const char* const end = word + length;
  const auto [rest, error] = std::from_chars(word, end, value);
  if (error == std::errc() && rest == end) {
    return value;
  }
  // All that is not a plain decimal number from end to end: signs, ranges and halves of exponents are the
  // C library's to judge.
  if (str_fortran_real(word, &value) == nullptr) {
    msg_fatal_format("cannot convert fortran double precision type \"%s\"", word);
  }
  return value;
}

int str_ffind(std::FILE* stream, const char* needle, char* line) {
  while (std::fgets(line, str_line_size, stream) != nullptr) {
    if (std::strstr(line, needle) != nullptr) {
      return 1;
    }
  }
  return 0;
}
