#include "app/cube/cube_text.hpp"

#include <algorithm>

#include "lib/str_real.hpp"

namespace {

constexpr std::size_t text_room = 65536;
constexpr unsigned in_line = 6;

// Writes values one after the other with write(value number, place), and ends lines and rows. Returns the end
// of the text.
template <class Write>
char* put_values(std::size_t count, unsigned in_row, unsigned row_length, char* text, Write write) {
  unsigned left = in_line - in_row % in_line;
  for (std::size_t n = 0; n < count; ++n) {
    write(n, text);
    text += str_scientific_width;
    const bool is_row_end = ++in_row == row_length;
    if (--left == 0 || is_row_end) {
      *text++ = '\n';
      left = in_line;
    }
    if (is_row_end) {
      in_row = 0;
    }
  }
  return text;
}

}  // namespace

CubeText::CubeText(std::FILE* stream, unsigned row_length) : stream_(stream), row_length_(row_length) {
  make_room(text_room);
}

CubeText::CubeText(std::span<char> room, unsigned row_length)
    : stream_(nullptr), row_length_(row_length), text_(room) {}

CubeText::~CubeText() { make_room(text_.size()); }

std::size_t CubeText::size_of(std::size_t row_count, unsigned row_length) {
  return row_count * (std::size_t{str_scientific_width} * row_length + (row_length + in_line - 1) / in_line);
}

void CubeText::put(std::span<const double> values) {
  while (!values.empty()) {
    const std::size_t count = std::min<std::size_t>(values.size(), text_room / (str_scientific_width + 1));
    make_room(count * (str_scientific_width + 1));
    char* const end = put_values(count, in_row_, row_length_, text_.data() + used_,
                                 [&](std::size_t n, char* to) { str_scientific(values[n], to); });
    used_ = static_cast<std::size_t>(end - text_.data());
    in_row_ = static_cast<unsigned>((in_row_ + count) % row_length_);
    values = values.subspan(count);
  }
}

void CubeText::start_rows(unsigned count) {
  make_room(size_of(count, row_length_));
  rows_start_ = used_;
}

void CubeText::put_row(std::span<const double> values, std::span<const double> tolerances,
                       std::span<unsigned char> in_doubt) {
  put_values(row_length_, 0, row_length_, text_.data() + used_, [&](std::size_t n, char* to) {
    if (str_scientific_sure(values[n], tolerances[n], to)) {
      return;
    }
    if (values[n] == 0.0 && tolerances[n] == 0.0) {
      str_scientific(values[n], to);
    } else {
      in_doubt[n] = 1;
    }
  });
  used_ += size_of(1, row_length_);
}

void CubeText::correct(unsigned row, std::span<const double> values,
                       std::span<const unsigned char> in_doubt) {
  char* const text = text_.data() + rows_start_ + size_of(row, row_length_);
  for (std::size_t n = 0; n < in_doubt.size(); ++n) {
    if (in_doubt[n] != 0) {
      str_scientific(values[n], text + n * str_scientific_width + n / in_line);
    }
  }
}

// Of a text in memory, all has room.
void CubeText::make_room(std::size_t size) {
  const bool is_in_memory = own_ == nullptr && !text_.empty();
  if (is_in_memory || used_ + size <= text_.size()) {
    return;
  }
  if (used_ > 0) {
    std::fwrite(text_.data(), 1, used_, stream_);
    used_ = 0;
  }
  if (size > text_.size()) {
    own_ = std::make_unique_for_overwrite<char[]>(size);
    text_ = {own_.get(), size};
  }
}
