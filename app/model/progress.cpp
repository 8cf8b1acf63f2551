#include "app/model/progress.hpp"

#include <unistd.h>

#include <cstdio>

#include "app/model/setup.hpp"

namespace {

constexpr std::chrono::seconds patience{1};

}  // namespace

Progress::Progress() : is_wanted_(arg_quiet == 0 && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
  if (shown_ >= 0) {
    std::fputs("      \b\b\b\b\b\b", stderr);
  }
}

void Progress::show(double done) {
  const int percent = static_cast<int>(100.0 * done);
  if (is_wanted_ && percent != shown_ && Clock::now() - start_ > patience) {
    // The report's line may be open on the same terminal: the cursor stays where it was.
    std::fprintf(stderr, "%4d %%\b\b\b\b\b\b", percent);
    shown_ = percent;
  }
}
