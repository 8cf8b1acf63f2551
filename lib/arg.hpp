#pragma once

#include <cstdint>
#include <span>

// Command lines: a table of definitions, each bound to a variable of the caller, and one call that reads the
// arguments into them.

inline constexpr unsigned arg_max_count = 100;
inline constexpr unsigned arg_text_size = 256;  // descriptions and string targets, terminator included

/// Type of a value, that is of the variable that a target points to.
enum ArgType : std::int16_t {
  arg_int = 1,             // std::int32_t
  arg_unsigned = 2,        // std::uint32_t
  arg_short = 3,           // std::int16_t
  arg_unsigned_short = 4,  // std::uint16_t
  arg_long = 5,            // std::int64_t
  arg_unsigned_long = 6,   // std::uint64_t
  arg_double = 7,          // double
  arg_string = 8           // char[arg_text_size]
};

struct ArgDefinition {
  char letter[2];                   // of a switch or option; empty for an item
  char description[arg_text_size];  // name of the value; empty for a switch
  std::int16_t type;
  std::int16_t is_switch;
  std::int16_t optional;
  std::int16_t stop_or_item;  // switch: reading ends behind it; otherwise: a positional item
  std::int16_t given;         // met on the command line; in the usage line: already printed
  std::uint32_t group;        // definitions bound together; 0: none
  std::uint32_t exclusive;    // index of the partner that it excludes; 0: none
  void* target;
};

/// To be zeroed (`ArgTable table{}`) before the first definition is added.
struct ArgTable {
  std::uint32_t count;
  std::int16_t help;
  void (*help_fce)();
  ArgDefinition definitions[arg_max_count];
};

inline std::span<ArgDefinition> arg_definitions(ArgTable* table) {
  return {table->definitions, table->count};
}

inline bool arg_is_item(const ArgDefinition& definition) {
  return definition.is_switch == 0 && definition.stop_or_item != 0;
}

/// Add a switch, whose target is a std::int16_t set to 1, an option with a value, or a positional item, and
/// return its index. Only the first character of a name counts. An empty name or description, or one
/// definition too many, ends the run.
unsigned arg_add_switch(ArgTable* table, const char* name, std::int16_t stop, std::int16_t* target);
unsigned arg_add_option(ArgTable* table, const char* name, const char* description, std::int16_t type,
                        std::int16_t optional, void* target);
unsigned arg_add_item(ArgTable* table, const char* description, std::int16_t type, std::int16_t optional,
                      void* target);

/// Enables -h and -H: the usage line, then `help`, then the end with status 0.
void arg_add_help(ArgTable* table, void (*help)());

/// a and b, and what they are bound to, must be given together or not at all. The run ends if that
/// contradicts an exclusion, or if one is optional and the other mandatory.
void arg_bind(ArgTable* table, unsigned a, unsigned b);

/// a and b must not be given together, and either satisfies both being mandatory. The first definition of a
/// table cannot be a partner.
void arg_exclude(ArgTable* table, unsigned a, unsigned b);

/// Reads a command line into the targets; the caller's table does not change. Returns after the last
/// argument, once all rules are met, or right behind a stop switch. Help ends the process with status 0,
/// every error with the usage line, a line "error: TEXT" and status 1.
void arg_read(int argument_count, const char* const* arguments, ArgTable table);

/// Converts `text` and stores it; 1 if that worked. Numbers: what follows one is ignored, a value out of
/// range fails. Strings are cut to 255 characters. A null target or an unknown type fails.
int arg_set_var(const char* text, void* target, std::int16_t type);

/// Prints the usage line, then "error: TEXT" unless `error` is null; ends the process with status 1 if
/// `exit_flag` is nonzero. The `given` marks of the table are used up.
void arg_usage(ArgTable* table, const char* program, const char* error, std::int16_t exit_flag);

/// Ends the process with usage and error if what was given breaks a binding or an exclusion, or if a
/// mandatory argument is missing.
void arg_check(ArgTable* table, const char* program);

/// Ends the run if the declared bindings contradict the exclusions or join optional and mandatory arguments.
void arg_check_compatibility(const ArgTable* table);

/// Index of the first switch or option with the letter, or of the first item not given yet; `count` if none.
unsigned arg_get_id(const ArgTable* table, char letter);
unsigned arg_get_sid(const ArgTable* table);
