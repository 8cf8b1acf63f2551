#include "app/input/help.hpp"

#include <array>
#include <cstdio>

namespace {

constexpr std::array lines = {
    "\n  -h -H              print this help and exit\n",
    "  -p                 write sample config file \"config\" and exit",
    "  -P                 write commented sample config file \"config\" and exit\n",
    "  -q                 quiet mode, supress all output",
    "  -w                 print all warnings\n",
    "  -c <config_file>   read \"config_file\" instead standard config file \"config\"",
    "  -i <input_file>    input file containing basis set and wafefunction",
    "  -t <input_format>  format of input file",
    "     fchk            Gaussian formatted checkpoint file",
    "     wfn             WFN format used by AIM programs",
    "  -o <output_file>   write all output to file \"output_file\" instead to stdout",
};

}  // namespace

void help_print() {
  for (const char* line : lines) {
    std::puts(line);
  }
}
