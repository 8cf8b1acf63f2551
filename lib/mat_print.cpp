#include "mat_print.hpp"

#include <algorithm>

namespace {

enum class Part { all, lower_triangle };

void print_blocks(std::FILE* stream, const double* const* matrix, unsigned rows, unsigned columns,
                  unsigned width, Part part, double scale) {
  width = std::max(width, 1U);  // with 0 no block would ever end
  for (unsigned first = 0, end = 0; first < columns; first = end) {
    end = first + std::min(width, columns - first);
    for (unsigned column = first; column < end; ++column) {
      std::fprintf(stream, "%15u", column + 1);
    }
    std::fputc('\n', stream);
    for (unsigned row = part == Part::all ? 0 : first; row < rows; ++row) {
      std::fprintf(stream, "%5u", row + 1);
      const unsigned row_end = part == Part::all ? end : std::min(end, row + 1);
      for (unsigned column = first; column < row_end; ++column) {
        std::fprintf(stream, "%15e", scale * matrix[row][column]);
      }
      std::fputc('\n', stream);
    }
  }
}

void print_element(double value) { std::printf("%15e", value); }
void print_element(unsigned value) { std::printf("%10u", value); }
void print_element(int value) { std::printf("%10d", value); }

template <class Element>
void print_rows(const Element* const* matrix, unsigned first_row, unsigned first_column, unsigned end_row,
                unsigned end_column) {
  for (unsigned row = first_row; row < end_row; ++row) {
    for (unsigned column = first_column; column < end_column; ++column) {
      print_element(matrix[row][column]);
    }
    std::putchar('\n');
  }
}

}  // namespace

void mat_ffprint_Sc_scale(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width,
                          double scale) {
  print_blocks(stream, matrix, n, n, width, Part::lower_triangle, scale);
}

void mat_ffprint_Sc(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width) {
  print_blocks(stream, matrix, n, n, width, Part::lower_triangle, 1.0);
}
void mat_fprint_Sc(const double* const* matrix, unsigned n, unsigned width) {
  mat_ffprint_Sc(stdout, matrix, n, width);
}

void mat_ffprint_sc(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width) {
  mat_ffprint_blocks(stream, matrix, n, n, width);
}
void mat_ffprint_blocks(std::FILE* stream, const double* const* matrix, unsigned rows, unsigned columns,
                        unsigned width) {
  print_blocks(stream, matrix, rows, columns, width, Part::all, 1.0);
}
void mat_fprint_sc(const double* const* matrix, unsigned n, unsigned width) {
  mat_ffprint_sc(stdout, matrix, n, width);
}

void mat_fprint_sub(const double* const* matrix, unsigned first_row, unsigned first_column, unsigned end_row,
                    unsigned end_column) {
  print_rows(matrix, first_row, first_column, end_row, end_column);
}

void mat_fprint(const double* const* matrix, unsigned rows, unsigned columns) {
  print_rows(matrix, 0, 0, rows, columns);
}
void mat_uprint(const unsigned* const* matrix, unsigned rows, unsigned columns) {
  print_rows(matrix, 0, 0, rows, columns);
}
void mat_iprint(const int* const* matrix, unsigned rows, unsigned columns) {
  print_rows(matrix, 0, 0, rows, columns);
}
