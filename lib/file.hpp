#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

/// Opens `path` in a mode of fopen. Failure ends the run with `cannot open file "PATH"`.
std::FILE* file_open(const char* path, const char* mode);

/// Closes the stream. If it was open for writing and not all of its text could be written, warns "file
/// closing failured" and remembers it.
void file_close(std::FILE* stream);

/// The same for standard output, which stays open; the warning goes to standard error.
void file_flush_output();

/// Whether some text could not be written so far: such a run is not complete.
bool file_is_any_incomplete();

/// For the start of a process. Opens a directory in the place of standard streams that are closed, so that no
/// file that is opened later becomes standard output or standard error; to write to such a stream, or to open
/// it by name, still fails. A file that reaches its size limit is a failed write from here on, not a signal.
void file_prepare_process();

/// A file that a run reads or writes, with the word by which messages call it.
struct NamedFile {
  const char* role;
  std::string path;
};

/// Ends the run with `ROLE "PATH" and ROLE "PATH" are the same file` if two of the files are, under whatever
/// names; symbolic links count as what they point to, files that do not exist yet by their directory and
/// name. Devices, pipes and directories may occur more than once.
void file_check_distinct(std::span<const NamedFile> files);

/// A new anonymous temporary file, open for update. Failure ends the run with "cannot open temporary file".
std::FILE* file_open_tmp();

/// 1 if the path exists; a symbolic link counts by itself, and only "no such file" counts as absent.
int file_exist(const char* path);

/// Fills `status` without following a symbolic link and returns 1. Failure reports
/// "cannot get info about PATH (REASON)", ends the run if `exit_flag` is nonzero, and returns 0 otherwise.
int file_stat(const char* path, struct stat* status, std::int16_t exit_flag);

/// Removes a file. Failure ends the run with "cannot remove file PATH" and the reason in parentheses.
void file_remove(const char* path);
