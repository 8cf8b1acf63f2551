#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

/// Buffered reading of one text file: lines in pieces, and numbers as the C library's formatted input takes
/// them, at the speed of memory. A read that fails ends the run with "cannot read file". While a Reader reads
/// a stream, nobody else may.
class Reader {
 public:
  /// Reads from the stream's current position; the stream stays the caller's.
  explicit Reader(std::FILE* stream);
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// Like fgets, into at least one character: at most piece.size() - 1 characters, up to and including a
  /// newline, terminated. False, with nothing stored, at the end of the file.
  bool line(std::span<char> piece);

  /// Skips up to `width` raw characters, newlines included; false if there is none left. A carriage return is
  /// skipped but not counted, so that a file with DOS line ends has the same columns.
  bool skip(unsigned width);

  /// A word: white space is skipped, then everything up to the next white space is stored, terminated.
  /// False if there is none, or if it does not fit (the rest is left unread).
  bool word(std::span<char> text);

  /// "%d", "%u" and "%lf": white space (line ends included) is skipped and the longest beginning of a number
  /// is taken; what follows it is left unread. False, with nothing stored, if no number is there. An integer
  /// that does not fit its type counts as none ("%u" takes a minus sign, as the C library does); a real
  /// beyond the largest is infinite. Beyond "%lf", a real may have an exponent without a letter
  /// (str_has_bare_exponent).
  bool number(int& value);
  bool number(unsigned& value);
  bool number(double& value);

  /// What is at hand of the text ahead, at least a byte of it unless it is at its end. The next read ends it.
  std::string_view at_hand();

  /// Whether all is read. A number that ends there may have been cut off.
  bool is_at_end();

  /// Upper bound on the bytes not yet read; the largest value if the file's size is unknown (a pipe).
  std::uint64_t remaining() const;

  /// False if the rest of the file is certainly too short for so many numbers of a digit and a separator
  /// each. Up to a million numbers are never doubted: their memory is small, and where a file was cut off is
  /// better told by the reading that meets its end.
  bool may_hold(std::uint64_t numbers) const;

 private:
  struct Integer {
    bool is_negative;
    std::uint64_t magnitude;  // 2^32 stands for all that is larger
  };

  void load();                                // fills the buffer behind what is unread
  bool fill();                                // false if no character is left
  int peek();                                 // the next character, or EOF
  std::string_view ahead(std::size_t count);  // the next characters; fewer only at the end of the file
  void skip_space();
  bool take_integer(Integer& integer);
  bool take_real(std::string& text);
  bool take_letters(std::string& text, std::string_view letters);
  void take(std::string& text);

  std::FILE* stream_;
  std::uint64_t unloaded_;  // bytes of the file that the buffer has not seen
  std::array<char, 65536> buffer_;
  const char* next_;  // [next_, end_) is the unread part of the buffer
  const char* end_;
};
