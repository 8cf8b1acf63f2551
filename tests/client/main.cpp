// Another's program: what it includes and links is the installed library.

#include <orva/atom.hpp>
#include <orva/reader.hpp>
#include <orva/string.hpp>

int main() {
  double value = 0;
  unsigned number = 0;
  Reader reader(stdin);
  const bool both = reader.number(number) && reader.number(value);
  char symbol[3], word[] = "0.5D+01";
  std::printf("%d %s %g\n", both, atom_name(symbol, static_cast<int>(number)), value + str_dsnum(word));
}
