#include "reader.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

#include "message.hpp"
#include "string.hpp"

namespace {

constexpr std::uint64_t unknown_size = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t undoubted_numbers = std::uint64_t{1} << 20;
constexpr std::uint64_t beyond_unsigned = std::uint64_t{1} << 32;

// As in the C locale, without its call.
constexpr bool is_space(int character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

constexpr bool is_digit(int character) { return character >= '0' && character <= '9'; }

std::uint64_t bytes_ahead(std::FILE* stream) {
  struct stat status;
  const off_t position = ftello(stream);
  if (fstat(fileno(stream), &status) != 0 || !S_ISREG(status.st_mode) || position < 0) {
    return unknown_size;
  }
  return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - position, 0));
}

}  // namespace

Reader::Reader(std::FILE* stream)
    : stream_(stream), unloaded_(bytes_ahead(stream)), next_(buffer_.data()), end_(next_) {}

void Reader::load() {
  char* const free = std::copy(next_, end_, buffer_.data());
  const auto room = static_cast<std::size_t>(buffer_.data() + buffer_.size() - free);
  const std::size_t loaded = std::fread(free, 1, room, stream_);
  if (std::ferror(stream_) != 0) {
    msg_fatal("cannot read file");  // what is missing must not pass for the end
  }
  if (unloaded_ != unknown_size) {
    unloaded_ -= std::min<std::uint64_t>(loaded, unloaded_);
  }
  next_ = buffer_.data();
  end_ = free + loaded;
}

bool Reader::fill() {
  if (next_ == end_) {
    load();
  }
  return next_ != end_;
}

std::string_view Reader::ahead(std::size_t count) {
  if (static_cast<std::size_t>(end_ - next_) < count) {
    load();
  }
  return {next_, std::min(count, static_cast<std::size_t>(end_ - next_))};
}

int Reader::peek() { return fill() ? static_cast<unsigned char>(*next_) : EOF; }

void Reader::skip_space() {
  while (is_space(peek())) {
    ++next_;
  }
}

bool Reader::line(std::span<char> piece) {
  const std::size_t room = piece.size() - 1;
  std::size_t length = 0;
  bool is_ended = false;
  while (!is_ended && length < room && fill()) {
    const std::size_t at_hand = std::min(static_cast<std::size_t>(end_ - next_), room - length);
    const void* newline = std::memchr(next_, '\n', at_hand);
    is_ended = newline != nullptr;
    const char* stop = is_ended ? static_cast<const char*>(newline) + 1 : next_ + at_hand;
    std::copy(next_, stop, piece.data() + length);
    length += static_cast<std::size_t>(stop - next_);
    next_ = stop;
  }
  if (length == 0) {
    return false;
  }
  piece[length] = '\0';
  return true;
}

bool Reader::skip(unsigned width) {
  const bool is_any_left = fill();
  while (width > 0 && fill()) {
    if (*next_++ != '\r') {
      --width;
    }
  }
  return is_any_left;
}

bool Reader::word(std::span<char> text) {
  skip_space();
  std::size_t length = 0;
  while (peek() != EOF && !is_space(peek())) {
    if (length + 1 == text.size()) {
      return false;
    }
    text[length++] = *next_++;
  }
  text[length] = '\0';
  return length > 0;
}

bool Reader::take_integer(Integer& integer) {
  skip_space();
  integer = {peek() == '-', 0};
  if (peek() == '-' || peek() == '+') {
    ++next_;
  }
  if (!is_digit(peek())) {
    return false;
  }
  for (; is_digit(peek()); ++next_) {
    const auto digit = static_cast<std::uint64_t>(*next_ - '0');
    integer.magnitude = std::min(integer.magnitude * 10 + digit, beyond_unsigned);
  }
  return true;
}

bool Reader::number(int& value) {
  Integer integer;
  if (!take_integer(integer)) {
    return false;
  }
  const auto magnitude = static_cast<std::int64_t>(integer.magnitude);
  const std::int64_t wide = integer.is_negative ? -magnitude : magnitude;
  if (wide < std::numeric_limits<int>::min() || wide > std::numeric_limits<int>::max()) {
    return false;
  }
  value = static_cast<int>(wide);
  return true;
}

bool Reader::number(unsigned& value) {
  Integer integer;
  if (!take_integer(integer) || integer.magnitude >= beyond_unsigned) {
    return false;
  }
  const auto magnitude = static_cast<unsigned>(integer.magnitude);
  value = integer.is_negative ? 0U - magnitude : magnitude;
  return true;
}

bool Reader::number(double& value) {
  skip_space();
  // Nearly every real is plain decimal and stands whole in the buffer with a blank behind it.
  const char* digits = peek() == '-' ? next_ + 1 : next_;
  if (digits != end_ && is_digit(*digits)) {
    double plain = 0.0;
    const auto [stop, error] = std::from_chars(next_, end_, plain);
    if (error == std::errc() && stop != end_ && is_space(*stop)) {
      value = plain;
      next_ = stop;
      return true;
    }
  }
  std::string text;
  if (!take_real(text)) {
    return false;
  }
  char* stop = nullptr;
  const double converted = std::strtod(text.c_str(), &stop);
  if (stop == text.c_str()) {
    return false;
  }
  value = converted;
  return true;
}

void Reader::take(std::string& text) {
  text += static_cast<char>(std::tolower(static_cast<unsigned char>(*next_++)));
}

// The letters in either case; the one that is not as expected is taken too.
bool Reader::take_letters(std::string& text, std::string_view letters) {
  return std::all_of(letters.begin(), letters.end(), [&](char letter) {
    if (peek() == EOF) {
      return false;
    }
    take(text);
    return text.back() == letter;
  });
}

// Takes what formatted input takes for a real, in lower case. It looks one character ahead, so an exponent
// without digits ("1e", "1e+") is taken, and a word that begins like "infinity" must be it.
bool Reader::take_real(std::string& text) {
  if (peek() == '-' || peek() == '+') {
    take(text);
  }
  const std::size_t sign = text.size();
  const int first = std::tolower(peek());
  if (first == 'n') {
    return take_letters(text, "nan");
  }
  if (first == 'i') {
    return take_letters(text, "inf") && (std::tolower(peek()) != 'i' || take_letters(text, "inity"));
  }

  bool is_hexadecimal = false;
  bool has_digit = false;
  bool has_point = false;
  bool has_exponent = false;
  for (int next = std::tolower(peek()); next != EOF; next = std::tolower(peek())) {
    const char marker = is_hexadecimal ? 'p' : 'e';
    if (is_digit(next) || (is_hexadecimal && !has_exponent && std::isxdigit(next) != 0)) {
      has_digit = true;
    } else if (next == 'x' && text.size() == sign + 1 && text.back() == '0') {
      is_hexadecimal = true;
      has_digit = false;
    } else if (next == marker && has_digit && !has_exponent) {
      has_exponent = has_point = true;
    } else if (next == '.' && !has_point) {
      has_point = true;
    } else if (!((next == '-' || next == '+') && has_exponent && text.back() == marker)) {
      break;
    }
    take(text);
  }
  if (is_hexadecimal) {
    return text.size() > sign + 2;
  }
  if (str_has_bare_exponent(text, ahead(str_exponent_length + 1))) {
    text += 'e';
    for (unsigned i = 0; i < str_exponent_length; ++i) {
      take(text);
    }
  }
  return true;
}

std::string_view Reader::at_hand() {
  fill();
  return {next_, static_cast<std::size_t>(end_ - next_)};
}

bool Reader::is_at_end() { return !fill(); }

std::uint64_t Reader::remaining() const {
  return unloaded_ == unknown_size ? unknown_size : unloaded_ + static_cast<std::uint64_t>(end_ - next_);
}

bool Reader::may_hold(std::uint64_t numbers) const {
  // The last number needs no separator.
  const std::uint64_t bytes = remaining();
  return numbers <= undoubted_numbers || numbers <= bytes / 2 + bytes % 2;
}
