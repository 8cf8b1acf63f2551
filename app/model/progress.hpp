#pragma once

#include <chrono>

/// Shows on a terminal how far a long sweep is: on standard error, only if that is a terminal and the run is
/// not quiet, from the second second on, and erased at the end.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// The part of the work that is done, 0 to 1.
  void show(double done);

 private:
  using Clock = std::chrono::steady_clock;
  bool is_wanted_;
  int shown_ = -1;  // per cent; -1: nothing yet
  Clock::time_point start_ = Clock::now();
};
