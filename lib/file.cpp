#include "file.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "message.hpp"

namespace {

constexpr std::size_t text_size = 256;

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

}  // namespace

std::FILE* file_open(const char* path, const char* mode) {
  std::FILE* stream = std::fopen(path, mode);
  if (stream == nullptr) {
    char text[text_size];
    std::snprintf(text, sizeof text, "cannot open file \"%s\"", path);
    msg_fatal(text);
  }
  return stream;
}

void file_close(std::FILE* stream) {
  const bool write_failed = std::ferror(stream) != 0;
  if (std::fclose(stream) != 0 || write_failed) {
    msg_warn("file closing failured");
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
  char text[text_size];
  std::snprintf(text, sizeof text, "cannot get info about %s (%s)", path, find_reason(errno).of_stat);
  msg_error(text, exit_flag);
  return 0;
}

void file_remove(const char* path) {
  if (unlink(path) == 0) {
    return;
  }
  char text[text_size];
  std::snprintf(text, sizeof text, "cannot remove file %s%s", path, find_reason(errno).of_remove);
  msg_fatal(text);
}
