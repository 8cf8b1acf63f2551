#include "str_case.hpp"

namespace {

// The C library's versions follow the locale.
constexpr int to_lower = 'a' - 'A';
char upper(char c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - to_lower : c); }
char lower(char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + to_lower : c); }

// first: conversion of the first character, rest: of all others. Source and destination may be the same.
template <class Convert>
unsigned convert(const char* source, char* destination, Convert first, Convert rest) {
  unsigned i = 0;
  for (; source[i] != '\0'; ++i) {
    destination[i] = i == 0 ? first(source[i]) : rest(source[i]);
  }
  destination[i] = '\0';
  return i;
}

}  // namespace

unsigned str_cupcase(const char* source, char* destination) {
  return convert(source, destination, upper, upper);
}
void str_upcase(char* string) { str_cupcase(string, string); }

unsigned str_clowcase(const char* source, char* destination) {
  return convert(source, destination, lower, lower);
}
void str_lowcase(char* string) { str_clowcase(string, string); }

unsigned str_cLowcase(const char* source, char* destination) {
  return convert(source, destination, upper, lower);
}
void str_Lowcase(char* string) { str_cLowcase(string, string); }
