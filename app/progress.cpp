#include "progress.hpp"

#include <unistd.h>

#include <cstdio>

#include "setup.hpp"

namespace {

constexpr std::chrono::seconds patience{1};

}  // namespace

Progress::Progress() : is_wanted_(arg_quiet == 0 && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
  if (shown_ >= 0) {
    std::fputs("\r      \r", stderr);
  }
}

void Progress::show(double done) {
  const int percent = static_cast<int>(100.0 * done);
  if (is_wanted_ && percent != shown_ && Clock::now() - start_ > patience) {
    std::fprintf(stderr, "\r%4d %%", percent);
    shown_ = percent;
  }
}
