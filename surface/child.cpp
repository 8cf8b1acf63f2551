#include "surface/child.hpp"

#include <poll.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>

#include "lib/file.hpp"
#include "lib/message.hpp"

namespace {

constexpr std::size_t messages_max = 1 << 20;  // bytes

struct Pipe {
  int read = -1, write = -1;
  bool open() {
    int ends[2];
    if (pipe(ends) != 0) {
      return false;
    }
    read = ends[0], write = ends[1];
    return true;
  }
  void close_both() const {
    close(read);
    close(write);
  }
};

// A page that the system takes back and gives again costs as much as ten points of the surface. The process
// keeps what it has, and ends soon.
void keep_memory() {
#if defined(__GLIBC__)
  constexpr int never = 1 << 30, ahead = 16 << 20;  // bytes
  mallopt(M_MMAP_THRESHOLD, never);
  mallopt(M_TRIM_THRESHOLD, never);
  mallopt(M_TOP_PAD, ahead);
#endif
}

[[noreturn]] void be_child(const std::function<void(const ChildStreams&)>& work, const Pipe& messages,
                           const Pipe& result) {
  keep_memory();
  close(messages.read);
  close(result.read);
  const int own_errors = dup(STDERR_FILENO);
  dup2(messages.write, STDOUT_FILENO);
  dup2(messages.write, STDERR_FILENO);
  close(messages.write);
  std::FILE* const stream = fdopen(result.write, "w");
  if (stream == nullptr) {
    msg_fatal("cannot open a stream");
  }
  try {
    work({stream, own_errors});
  } catch (const std::bad_alloc&) {
    msg_fatal("cannot allocate memory");
  }
  if (std::fclose(stream) != 0) {
    msg_fatal("cannot hand on the result");
  }
  std::exit(file_is_any_incomplete() ? 1 : 0);
}

// Reads both pipes to their ends.
void collect(int messages, int result, std::string* told, std::string* written) {
  std::array<pollfd, 2> waits = {{{messages, POLLIN, 0}, {result, POLLIN, 0}}};
  const std::array<std::string*, 2> texts = {told, written};
  char piece[65536];
  while (waits[0].fd >= 0 || waits[1].fd >= 0) {
    if (poll(waits.data(), waits.size(), -1) < 0) {
      if (errno == EINTR) {
        continue;
      }
      return;
    }
    for (std::size_t n = 0; n < waits.size(); ++n) {
      if (waits[n].fd < 0 || waits[n].revents == 0) {
        continue;
      }
      const ssize_t size = read(waits[n].fd, piece, sizeof piece);
      if (size > 0 && (n == 1 || texts[n]->size() < messages_max)) {
        texts[n]->append(piece, static_cast<std::size_t>(size));
      } else if (size == 0 || (size < 0 && errno != EINTR)) {
        waits[n].fd = -1;
      }
    }
  }
}

void read_messages(std::string_view told, Outcome* outcome) {
  constexpr std::string_view warning = "warning: ", error = "error: ";
  while (!told.empty()) {
    const std::string_view line = told.substr(0, told.find('\n'));
    told.remove_prefix(std::min(line.size() + 1, told.size()));
    if (line.starts_with(error)) {
      outcome->error = line.substr(error.size());
    } else if (!line.empty()) {
      outcome->warnings.emplace_back(line.starts_with(warning) ? line.substr(warning.size()) : line);
    }
  }
}

}  // namespace

void ChildStreams::show_errors() const { dup2(own_errors_, STDERR_FILENO); }

void ChildStreams::collect_errors() const { dup2(STDOUT_FILENO, STDERR_FILENO); }

Outcome child_run(const std::function<void(const ChildStreams&)>& work) {
  Outcome outcome = {};
  Pipe messages, result;
  if (!messages.open()) {
    outcome.error = "cannot make a pipe";
    return outcome;
  }
  if (!result.open()) {
    messages.close_both();
    outcome.error = "cannot make a pipe";
    return outcome;
  }
  std::fflush(nullptr);  // nothing is to be written twice
  const pid_t child = fork();
  if (child == 0) {
    be_child(work, messages, result);
  }
  close(messages.write);
  close(result.write);
  std::string told;
  if (child > 0) {
    collect(messages.read, result.read, &told, &outcome.result);
  }
  close(messages.read);
  close(result.read);
  if (child < 0) {
    outcome.error = "cannot make a process";
    return outcome;
  }
  int status = 0;
  pid_t ended;
  do {
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  read_messages(told, &outcome);
  if (ended < 0) {
    outcome.error = "how its process ended is not known";
  } else if (WIFSIGNALED(status)) {
    outcome.error = std::string("its process was ended: ") + strsignal(WTERMSIG(status));
  } else if (outcome.error.empty() && outcome.result.empty()) {
    outcome.error = "its process ended without a result";
  }
  outcome.is_complete = status == 0 && outcome.error.empty();
  return outcome;
}
