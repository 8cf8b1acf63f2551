#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/field/instruction_sets.hpp"
#include "app/model/setup.hpp"
#include "text.hpp"

// Helpers of all tests, and the standard headers that nearly all of them need.

/// Runs `call` in a child process, which must end with `status` after printing exactly `output`.
/// The child leaves its scopes open: a Scratch made in `call` would stay behind.
template <class Call>
void expect_exit(Call call, int status, const std::string& output) {
  const auto visibly = [&call] {
    dup2(STDERR_FILENO, STDOUT_FILENO);  // messages go to standard output, a death test reads the other
    call();
    std::exit(0);
  };
  EXPECT_EXIT(visibly(), testing::ExitedWithCode(status), testing::Eq(output));
}

/// The child must end with status 1 and exactly the message "error: TEXT".
template <class Call>
void expect_error(Call call, const std::string& text) {
  expect_exit(call, 1, "error: " + text + "\n");
}

/// What `call` prints on standard output.
template <class Call>
std::string printed(Call call) {
  testing::internal::CaptureStdout();
  call();
  return testing::internal::GetCapturedStdout();
}

using Numbers = std::vector<double>;

inline void append(Numbers& to, const Numbers& numbers) {
  to.insert(to.end(), numbers.begin(), numbers.end());
}

/// The numbers of three vectors.
inline Numbers flat(const double (&vectors)[3][3]) {
  Numbers numbers;
  for (const auto& vector : vectors) {
    append(numbers, {vector, vector + 3});
  }
  return numbers;
}

/// Sets a file name of the settings.
inline void set_name(char* name, const std::string& text) {
  std::snprintf(name, file_name_size, "%s", text.c_str());
}

/// The number that the next file to be opened gets: smaller before a file that is not closed.
inline int next_descriptor() {
  const int descriptor = dup(STDIN_FILENO);
  close(descriptor);
  return descriptor;
}

/// What `call` tells on standard error.
template <class Call>
std::string told(Call call) {
  testing::internal::CaptureStderr();
  call();
  return testing::internal::GetCapturedStderr();
}

/// Calls `use` once for every kernel that this processor has, which is then the one of the program.
template <class Use>
void with_every_kernel(Use use) {
  for (const InstructionSet& set : instruction_sets()) {
    if (set.is_supported()) {
      SCOPED_TRACE(set.name);
      setenv("ORVA_KERNEL", set.name, 1);
      use(set.name);
    }
  }
  unsetenv("ORVA_KERNEL");
}

/// A new directory, removed with all that is in it at the end of its scope.
class Scratch {
 public:
  Scratch() {}  // not defaulted: constant objects of it are made
  Scratch(const Scratch&) = delete;
  ~Scratch() { std::filesystem::remove_all(path_); }

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::string name_ = std::filesystem::temp_directory_path() / "orva-test-XXXXXX";
  const std::filesystem::path path_ = mkdtemp(name_.data());
};

inline void write_file(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string read_file(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// Status and output (standard output and standard error) of a command of the shell, run in `directory`.
inline std::pair<int, std::string> run_command(const Scratch& directory, const std::string& command) {
  const std::string in_directory = "cd " + directory.path().string() + " && ";
  const int status = std::system((in_directory + "(" + command + ") >.output 2>&1").c_str());
  const std::string output = read_file(directory / ".output");
  std::filesystem::remove(directory / ".output");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}
