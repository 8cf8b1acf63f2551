#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// What a child process has left.
struct Outcome {
  std::string result;                 // what it wrote
  std::vector<std::string> warnings;  // what it told
  std::string error;                  // why it has no result; empty if it has one
  bool is_complete;                   // nothing failed, not even a warning's cause
};

/// The standard streams of a child.
class ChildStreams {
 public:
  ChildStreams(std::FILE* result, int own_errors) : result_(result), own_errors_(own_errors) {}

  std::FILE* result() const { return result_; }

  /// Standard error is the terminal's, for progress, up to collect_errors: nothing is to be told meanwhile.
  void show_errors() const;

  /// What is told is collected again.
  void collect_errors() const;

 private:
  std::FILE* result_;
  int own_errors_;
};

/// Runs `work` in a child process. Lines "warning: ..." and "error: ..." that it prints on either standard
/// stream are collected, and whatever ends it is an error, too. Without processes or pipes the error says so.
Outcome child_run(const std::function<void(const ChildStreams&)>& work);
