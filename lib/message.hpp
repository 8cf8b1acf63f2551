#pragma once

#include <cstdint>

// One-line messages on standard output, and the one place where a fatal error ends the process.

/// A function to be called when an error has been told, with its two arguments.
using MessageHook = void (*)(void* first, void* second);

struct MessageErrorHook {
  std::int16_t armed = 1;  // down while the hook runs, so that it is not entered again
  MessageHook hook = nullptr;
  void* first = nullptr;
  void* second = nullptr;
};

extern MessageErrorHook msg_ef;

/// Prints "error: TEXT", runs the hook if there is one, and ends the process with status 1 if `exit_flag`
/// is nonzero; otherwise returns.
void msg_error(const char* text, std::int16_t exit_flag);

/// Ends the process with msg_error, for callers that cannot go on.
[[noreturn]] void msg_fatal(const char* text);

/// Size of the buffer of a text that carries a value, terminator included; a longer text is cut.
inline constexpr unsigned msg_text_size = 256;

/// Ends the process with the text made by printf's `format`, cut to its buffer.
[[noreturn]] __attribute__((format(printf, 1, 2))) void msg_fatal_format(const char* format, ...);

/// Sets the hook of msg_error and its arguments; whether it is armed does not change.
void msg_error_fce_set(MessageHook hook, void* first, void* second);

/// Prints "warning: TEXT". Whether a warning is wanted is the caller's decision.
void msg_warn(const char* text);

/// Prints "warning: TEXT", the text made by printf's `format`, on standard error: for what is told beside the
/// program's regular output.
__attribute__((format(printf, 1, 2))) void msg_tell(const char* format, ...);

/// Prints "debug: TEXT" if `flag` is nonzero.
void msg_debug(const char* text, std::int16_t flag);

/// Prints "DEBUG: TEXT" and flushes standard output.
void msg_Debug(const char* text);

/// Prints "DEBUG: FUNCTION: TEXT" and flushes standard output.
void msg_Debug_fce(const char* function, const char* text);
