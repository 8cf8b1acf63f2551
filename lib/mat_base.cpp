#include "mat_base.hpp"

#include "allocate.hpp"

namespace {

template <class Element>
Element** allocate_matrix(unsigned columns, unsigned length, const char* failure,
                          const char* column_failure) {
  // Asked for as a whole, what the system could never give is refused. Column by column it would be promised,
  // and the process be killed on using it.
  std::free(allocate<Element>(std::size_t{columns} * length, column_failure));
  Element** matrix = allocate<Element*>(columns, failure);
  for (unsigned i = 0; i < columns; ++i) {
    matrix[i] = allocate<Element>(length, column_failure);
  }
  return matrix;
}

template <class Element>
int release_matrix(Element** matrix, unsigned columns) {
  if (matrix != nullptr) {
    std::for_each_n(matrix, columns, [](Element* column) { std::free(column); });
  }
  std::free(static_cast<void*>(matrix));
  return 0;
}

}  // namespace

double** mat_falloc(unsigned columns, unsigned length) {
  return allocate_matrix<double>(columns, length, "cannot allocate memory for double matrix",
                                 "cannot allocate memory for column of double matrix");
}
int** mat_ialloc(unsigned columns, unsigned length) {
  return allocate_matrix<int>(columns, length, "cannot allocate memory for int matrix",
                              "cannot allocate memory for column of int matrix");
}
unsigned** mat_ualloc(unsigned columns, unsigned length) {
  return allocate_matrix<unsigned>(columns, length, "cannot allocate memory for unsigned int matrix",
                                   "cannot allocate memory for column of unsigned int matrix");
}

int mat_ffree(double** matrix, unsigned columns) { return release_matrix(matrix, columns); }
int mat_ifree(int** matrix, unsigned columns) { return release_matrix(matrix, columns); }
int mat_ufree(unsigned** matrix, unsigned columns) { return release_matrix(matrix, columns); }
