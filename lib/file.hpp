#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>

/// Opens `path` in a mode of fopen. Failure ends the run with `cannot open file "PATH"`.
std::FILE* file_open(const char* path, const char* mode);

/// Closes the stream. If that fails, or an earlier read or write of the stream failed, warns "file closing
/// failured".
void file_close(std::FILE* stream);

/// A new anonymous temporary file, open for update. Failure ends the run with "cannot open temporary file".
std::FILE* file_open_tmp();

/// 1 if the path exists; a symbolic link counts by itself, and only "no such file" counts as absent.
int file_exist(const char* path);

/// Fills `status` without following a symbolic link and returns 1. Failure reports
/// "cannot get info about PATH (REASON)", ends the run if `exit_flag` is nonzero, and returns 0 otherwise.
int file_stat(const char* path, struct stat* status, std::int16_t exit_flag);

/// Removes a file. Failure ends the run with "cannot remove file PATH" and the reason in parentheses.
void file_remove(const char* path);
