#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "arg.hpp"
#include "message.hpp"
#include "str_file.hpp"

namespace {

template <class Value, auto convert>
int store_integer(const char* text, void* target) {
  char* end = nullptr;
  errno = 0;
  const auto number = convert(text, &end, 10);
  if (end == text || errno == ERANGE || !std::in_range<Value>(number)) {
    return 0;
  }
  *static_cast<Value*>(target) = static_cast<Value>(number);
  return 1;
}

int store_double(const char* text, void* target) {
  char* end = nullptr;
  const double number = std::strtod(text, &end);
  if (end == text) {
    return 0;
  }
  *static_cast<double*>(target) = number;
  return 1;
}

int store_string(const char* text, void* target) {
  std::snprintf(static_cast<char*>(target), arg_text_size, "%s", text);
  return 1;
}

// In the order of the types.
using Store = int (*)(const char* text, void* target);
constexpr std::array<Store, 8> stores = {
    store_integer<std::int32_t, std::strtol>,
    store_integer<std::uint32_t, std::strtoul>,
    store_integer<std::int16_t, std::strtol>,
    store_integer<std::uint16_t, std::strtoul>,
    store_integer<std::int64_t, std::strtol>,
    store_integer<std::uint64_t, std::strtoul>,
    store_double,
    store_string,
};
static_assert(arg_int == 1 && stores.size() == arg_string);

// Ends the process with the usage line and an error text made by printf's format.
[[noreturn]] __attribute__((format(printf, 3, 4))) void usage_error(ArgTable* table, const char* program,
                                                                    const char* format, ...) {
  char text[msg_text_size];
  va_list values;
  va_start(values, format);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  arg_usage(table, program, text, 1);
  std::abort();  // not reached: arg_usage has ended the process
}

[[noreturn]] void show_help(ArgTable* table, const char* program) {
  arg_usage(table, program, nullptr, 0);
  if (table->help_fce != nullptr) {
    table->help_fce();
  }
  std::exit(0);
}

void read_item(ArgTable* table, const char* program, const char* text) {
  const unsigned index = arg_get_sid(table);
  if (index == table->count) {
    usage_error(table, program, "excessive argument \"%s\"", text);
  }
  ArgDefinition* item = &table->definitions[index];
  if (arg_set_var(text, item->target, item->type) == 0) {
    usage_error(table, program, "cannot assign value \"%s\"", text);
  }
  item->given = 1;
}

// Whether reading ends behind the switch.
bool read_switch(ArgDefinition* definition) {
  arg_set_var("1", definition->target, definition->type);
  definition->given = 1;
  return definition->stop_or_item != 0;
}

// value: the argument behind the option, null if there is none.
void read_option(ArgTable* table, const char* program, ArgDefinition* option, const char* value) {
  const char name[] = {'-', option->letter[0], '\0'};
  if (option->given != 0) {
    usage_error(table, program, "more than one occurence of option \"%s\"", name);
  }
  if (value == nullptr) {
    usage_error(table, program, "argument of option \"%s\" is missing", name);
  }
  if (arg_set_var(value, option->target, option->type) == 0) {
    usage_error(table, program, "cannot assign value \"%s\" to option \"%s\"", value, name);
  }
  option->given = 1;
}

// Several letters behind one hyphen, switches only, with the effect of the single ones.
// Whether reading ends behind them.
bool read_cluster(ArgTable* table, const char* program, const char* letters) {
  for (; *letters != '\0'; ++letters) {
    const unsigned index = arg_get_id(table, *letters);
    if (index == table->count) {
      usage_error(table, program, "unknown option \"-%c\"", *letters);
    }
    if (table->definitions[index].is_switch == 0) {
      arg_usage(table, program, nullptr, 1);
    }
    if (read_switch(&table->definitions[index])) {
      return true;
    }
  }
  return false;
}

void check_group(ArgTable* table, const char* program, const ArgDefinition& definition) {
  for (const ArgDefinition& other : arg_definitions(table)) {
    if (other.group == definition.group && other.given != definition.given) {
      usage_error(table, program, "arguments <%s> and <%s> must be set together", definition.description,
                  other.description);
    }
  }
}

}  // namespace

int arg_set_var(const char* text, void* target, std::int16_t type) {
  if (target == nullptr || type < arg_int || type > arg_string) {
    return 0;
  }
  return stores[static_cast<unsigned>(type - arg_int)](text, target);
}

void arg_read(int argument_count, const char* const* arguments, ArgTable table) {
  char program[str_file_size] = "";
  if (argument_count > 0) {
    str_file_base(arguments[0], program);
  }
  for (int i = 1; i < argument_count; ++i) {
    const char* argument = arguments[i];
    if (argument[0] != '-') {
      read_item(&table, program, argument);
      continue;
    }
    const char letter = argument[1];
    if (letter != '\0' && argument[2] != '\0') {
      if (read_cluster(&table, program, argument + 1)) {
        return;
      }
      continue;
    }
    if (table.help != 0 && (letter == 'h' || letter == 'H')) {
      show_help(&table, program);
    }
    const unsigned index = arg_get_id(&table, letter);
    if (index == table.count) {
      usage_error(&table, program, "unknown option \"%s\"", argument);
    }
    ArgDefinition* definition = &table.definitions[index];
    if (definition->is_switch == 0) {
      ++i;
      read_option(&table, program, definition, i < argument_count ? arguments[i] : nullptr);
    } else if (read_switch(definition)) {
      return;
    }
  }
  arg_check(&table, program);
}

void arg_check(ArgTable* table, const char* program) {
  for (const ArgDefinition& definition : arg_definitions(table)) {
    if (definition.group != 0) {
      check_group(table, program, definition);
    }
    const ArgDefinition* partner =
        definition.exclusive != 0 ? &table->definitions[definition.exclusive] : nullptr;
    const bool partner_is_given = partner != nullptr && partner->given != 0;
    if (definition.given != 0 && partner_is_given) {
      usage_error(table, program, "arguments <%s> and <%s> must not be set together", definition.description,
                  partner->description);
    }
    if (definition.given == 0 && definition.optional == 0 && !partner_is_given) {
      usage_error(table, program, "argument <%s> is not set", definition.description);
    }
  }
}
