#include "message.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

MessageErrorHook msg_ef;

void msg_error(const char* text, std::int16_t exit_flag) {
  std::printf("error: %s\n", text);
  if (msg_ef.hook != nullptr && msg_ef.armed != 0) {
    msg_ef.armed = 0;
    msg_ef.hook(msg_ef.first, msg_ef.second);
  }
  if (exit_flag != 0) {
    std::exit(1);
  }
  msg_ef.armed = 1;
}

void msg_fatal(const char* text) {
  msg_error(text, 1);
  std::abort();  // not reached: msg_error has ended the process
}

void msg_fatal_format(const char* format, ...) {
  char text[msg_text_size];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  msg_fatal(text);
}

void msg_error_fce_set(MessageHook hook, void* first, void* second) {
  msg_ef.hook = hook;
  msg_ef.first = first;
  msg_ef.second = second;
}

void msg_warn(const char* text) { std::printf("warning: %s\n", text); }

void msg_tell(const char* format, ...) {
  char text[msg_text_size];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  std::fprintf(stderr, "warning: %s\n", text);
}

void msg_debug(const char* text, std::int16_t flag) {
  if (flag != 0) {
    std::printf("debug: %s\n", text);
  }
}

void msg_Debug(const char* text) {
  std::printf("DEBUG: %s\n", text);
  std::fflush(stdout);
}

void msg_Debug_fce(const char* function, const char* text) {
  std::printf("DEBUG: %s: %s\n", function, text);
  std::fflush(stdout);
}
