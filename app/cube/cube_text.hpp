#pragma once

#include <cstdio>
#include <memory>
#include <span>

#include "app/model/cube_definition.hpp"

/// The data of a cube file as text: "%13.5e" each, six values to a line, every row of the third axis on a new
/// line.
class CubeText {
 public:
  /// Text that is written to `stream`; all of it is there when this is destroyed.
  CubeText(std::FILE* stream, unsigned row_length);

  /// Text that is kept in memory: `room` bytes, which must do for all that is put.
  CubeText(std::span<char> room, unsigned row_length);

  ~CubeText();
  CubeText(const CubeText&) = delete;
  CubeText& operator=(const CubeText&) = delete;

  /// Bytes of the text of a number of whole rows.
  static std::size_t size_of(std::size_t row_count, unsigned row_length);

  /// Appends values; rows end where they are full.
  void put(std::span<const double> values);

  /// Behind whole rows only: as many follow by put_row, before anything else is put.
  void start_rows(unsigned count);

  /// Appends a row of values that are known to a relative tolerance each. Where that leaves a text in doubt,
  /// `in_doubt` is set for the value, and `correct` is to follow.
  void put_row(std::span<const double> values, std::span<const double> tolerances,
               std::span<unsigned char> in_doubt);

  /// Gives the values of one of those rows anew that are in doubt.
  void correct(unsigned row, std::span<const double> values, std::span<const unsigned char> in_doubt);

 private:
  void make_room(std::size_t size);

  std::FILE* stream_;
  unsigned row_length_, in_row_ = 0;
  std::size_t used_ = 0, rows_start_ = 0;
  std::unique_ptr<char[]> own_;
  std::span<char> text_;
};
