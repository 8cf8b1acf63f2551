#include "file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <compare>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <system_error>

#include "message.hpp"

namespace {

constexpr unsigned links_max = 40;  // as many as the system follows

constexpr const char* not_written = "file closing failured";
bool any_incomplete = false;

struct Reason {
  int number;
  const char* of_remove;  // behind the path
  const char* of_stat;
};

constexpr const char* unknown_error = "unknown error";
constexpr std::array reasons = {
    Reason{EPERM, " (permission denied)", unknown_error},
    Reason{EACCES, " (permission denied)", "permission denied"},
    Reason{ENOENT, " (no such file)", "no such file or directory"},
    Reason{EIO, " (I/O error)", unknown_error},
    Reason{EBADF, "", "bad file descriptor"},
    Reason{ENOMEM, " (insufficient kernel memory)", "insufficient kernel memory"},
    Reason{EFAULT, " (out of address space)", "bad address"},
    Reason{EBUSY, " (file is busy)", unknown_error},
    Reason{ENOTDIR, " (part of path is not a directory)", "not a directory"},
    Reason{EISDIR, " (is a directory)", unknown_error},
    Reason{EROFS, " (read-only filesystem)", unknown_error},
    Reason{ELOOP, " (too many symlinks in path)", "too many symbolic links"},
    Reason{ENAMETOOLONG, " (too long name)", "too long name"},
};

Reason find_reason(int number) {
  const auto found = std::find_if(reasons.begin(), reasons.end(),
                                  [=](const Reason& reason) { return reason.number == number; });
  return found != reasons.end() ? *found : Reason{number, "", unknown_error};
}

// What distinguishes a file from others: device and number where it exists; where it does not, those of the
// directory and the name in it.
struct Identity {
  dev_t device;
  ino_t number;
  std::string name;
  auto operator<=>(const Identity&) const = default;
};

// Nothing for what is neither a regular file nor could become one: devices, pipes, directories, and names in
// directories that do not exist.
std::optional<Identity> identity_of(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) == 0) {
    return S_ISREG(status.st_mode) ? std::optional(Identity{status.st_dev, status.st_ino, ""}) : std::nullopt;
  }
  // The last of a chain of symbolic links tells where a file would be created.
  std::filesystem::path place = path;
  std::error_code error;
  for (unsigned links = 0; std::filesystem::is_symlink(place, error); ++links) {
    if (links == links_max) {
      return std::nullopt;
    }
    place = place.parent_path() / std::filesystem::read_symlink(place, error);
  }
  const std::filesystem::path directory = place.has_parent_path() ? place.parent_path() : ".";
  if (stat(directory.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return Identity{status.st_dev, status.st_ino, place.filename()};
}

std::string quoted(const NamedFile& file) { return std::string(file.role) + " \"" + file.path + '"'; }

}  // namespace

std::FILE* file_open(const char* path, const char* mode) {
  std::FILE* stream = std::fopen(path, mode);
  if (stream == nullptr) {
    msg_fatal_format("cannot open file \"%s\"", path);
  }
  return stream;
}

void file_close(std::FILE* stream) {
  const int descriptor = fileno(stream);  // none of a stream in memory
  const bool is_read_only = descriptor >= 0 && (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY;
  const bool write_failed = std::ferror(stream) != 0;
  const bool close_failed = std::fclose(stream) != 0;
  if (!is_read_only && (write_failed || close_failed)) {
    msg_warn(not_written);
    any_incomplete = true;
  }
}

void file_flush_output() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    // The only message beside standard output, which has just failed.
    std::fprintf(stderr, "warning: %s\n", not_written);
    any_incomplete = true;
  }
}

bool file_is_any_incomplete() { return any_incomplete; }

void file_prepare_process() {
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) < 0) {
      open("/", O_RDONLY);  // takes the lowest free descriptor: this one
    }
  }
}

void file_check_distinct(std::span<const NamedFile> files) {
  std::map<Identity, const NamedFile*> known;
  for (const NamedFile& file : files) {
    const auto identity = identity_of(file.path);
    if (!identity) {
      continue;
    }
    const auto [entry, is_new] = known.emplace(*identity, &file);
    if (!is_new) {
      // Both paths whole, however long.
      msg_fatal((quoted(*entry->second) + " and " + quoted(file) + " are the same file").c_str());
    }
  }
}

std::FILE* file_open_tmp() {
  std::FILE* stream = std::tmpfile();
  if (stream == nullptr) {
    msg_fatal("cannot open temporary file");
  }
  return stream;
}

int file_exist(const char* path) {
  struct stat status;
  return lstat(path, &status) == 0 || errno != ENOENT;
}

int file_stat(const char* path, struct stat* status, std::int16_t exit_flag) {
  if (lstat(path, status) == 0) {
    return 1;
  }
  char text[msg_text_size];
  std::snprintf(text, sizeof text, "cannot get info about %s (%s)", path, find_reason(errno).of_stat);
  msg_error(text, exit_flag);
  return 0;
}

void file_remove(const char* path) {
  if (unlink(path) == 0) {
    return;
  }
  msg_fatal_format("cannot remove file %s%s", path, find_reason(errno).of_remove);
}
