#include "print.hpp"

#include <cstdarg>
#include <cstring>

namespace {

constexpr unsigned page_width = 80;
constexpr unsigned value_size = 80;  // of a formatted value, terminator included

bool fits_page(const char* text) { return std::strlen(text) < page_width; }

// Columns left of a centred text that fits the page.
unsigned left_margin(const char* text) { return (page_width - static_cast<unsigned>(std::strlen(text))) / 2; }

void print_fill(std::FILE* stream, char character, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    std::fputc(character, stream);
  }
}

int value_width(const char* label, int width) { return width - static_cast<int>(std::strlen(label)); }

}  // namespace

void print_fcenter(std::FILE* stream, const char* text) {
  print_fill(stream, ' ', fits_page(text) ? left_margin(text) : 0);
  std::fprintf(stream, "%s\n", text);
}
void print_center(const char* text) { print_fcenter(stdout, text); }

void print_fccenter(std::FILE* stream, const char* text, char fill) {
  if (!fits_page(text)) {
    std::fprintf(stream, "%s\n", text);
    return;
  }
  const unsigned left = left_margin(text);
  const unsigned right = page_width - left - static_cast<unsigned>(std::strlen(text));
  print_fill(stream, fill, left > 0 ? left - 1 : 0);
  std::fprintf(stream, " %s ", text);
  print_fill(stream, fill, right - 1);
  std::fputc('\n', stream);
}
void print_ccenter(const char* text, char fill) { print_fccenter(stdout, text, fill); }

void print_fhline(std::FILE* stream) { print_fHline(stream, '-', page_width); }
void print_hline() { print_fhline(stdout); }

void print_fHline(std::FILE* stream, char character, unsigned count) {
  print_fill(stream, character, count);
  std::fputc('\n', stream);
}
void print_Hline(char character, unsigned count) { print_fHline(stdout, character, count); }

void print_fswfix(std::FILE* stream, const char* label, const char* text, int width) {
  std::fprintf(stream, "%s%*s\n", label, value_width(label, width), text);
}
void print_fiwfix(std::FILE* stream, const char* label, int value, int width) {
  std::fprintf(stream, "%s%*d\n", label, value_width(label, width), value);
}
void print_fuwfix(std::FILE* stream, const char* label, unsigned value, int width) {
  std::fprintf(stream, "%s%*u\n", label, value_width(label, width), value);
}
void print_fluwfix(std::FILE* stream, const char* label, unsigned long value, int width) {
  std::fprintf(stream, "%s%*lu\n", label, value_width(label, width), value);
}
void print_flowfix(std::FILE* stream, const char* label, unsigned long value, int width) {
  std::fprintf(stream, "%s%*lo\n", label, value_width(label, width), value);
}

void print_swfix(const char* label, const char* text, int width) { print_fswfix(stdout, label, text, width); }
void print_iwfix(const char* label, int value, int width) { print_fiwfix(stdout, label, value, width); }
void print_uwfix(const char* label, unsigned value, int width) { print_fuwfix(stdout, label, value, width); }
void print_luwfix(const char* label, unsigned long value, int width) {
  print_fluwfix(stdout, label, value, width);
}
void print_lowfix(const char* label, unsigned long value, int width) {
  print_flowfix(stdout, label, value, width);
}

void print_ffwfix(std::FILE* stream, const char* label, const char* format, int width, double value) {
  char text[value_size];
  std::snprintf(text, sizeof text, format, value);
  print_fswfix(stream, label, text, width);
}

void print_fwfix(const char* label, const char* format, int width, ...) {
  char text[value_size];
  va_list values;
  va_start(values, width);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  print_swfix(label, text, width);
}
