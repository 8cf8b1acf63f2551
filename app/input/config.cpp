#include "app/input/config.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <span>
#include <string_view>
#include <system_error>
#include <variant>

#include "app/input/config_items.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"
#include "lib/str_sub.hpp"

namespace {

constexpr unsigned line_size = 1024;  // of the buffer of a line, terminator included
constexpr unsigned word_size = 32;    // of the buffers of name and setting, terminator included

constexpr const char* bad_name = "wrong format of config file - item name";
constexpr const char* bad_setting = "wrong format of config file - setting";

// As atoi, but held at the limits of int, where atoi may do anything.
int integer(const char* setting) {
  return static_cast<int>(std::clamp<long>(std::strtol(setting, nullptr, 10), std::numeric_limits<int>::min(),
                                           std::numeric_limits<int>::max()));
}

// Null if there is none of that name.
const ConfigItem* find_item(std::string_view name) {
  const std::span items = conf_items();
  const auto item = std::ranges::find(items, name, &ConfigItem::name);
  return item != items.end() ? &*item : nullptr;
}

// What a setting that is a number comes to, if it is not what was meant; which line ends the run, if one
// does.
void tell_of_number(const ConfigItem& item, const char* setting) {
  if (item.kind == ConfigKind::file_name) {
    return;
  }
  const int value = integer(setting);
  char* end;
  std::strtol(setting, &end, 10);
  if (end == setting || end[std::strspn(end, "\r")] != '\0') {
    msg_tell("in the config line \"%s %s\" the setting is no number: it counts as %d", item.name, setting,
             value);
  }
  const auto [lowest, highest] = conf_range(item.kind);
  if (value < lowest || value > highest) {
    msg_tell("the config line \"%s %s\" needs a number from %d to %d", item.name, setting, lowest, highest);
  }
}

// Null if there is no such file. A directory could be opened, but not read.
std::FILE* open_if_file(const char* path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored) ? nullptr : std::fopen(path, "r");
}

// Part of a line between blanks.
struct Word {
  unsigned begin;
  unsigned end;

  bool is_empty() const { return begin == end; }
  bool fits() const { return end < line_size - 1 && end - begin < word_size; }
};

Word next_word(const char* line, unsigned from) {
  const auto begin = from + static_cast<unsigned>(std::strspn(line + from, " \t"));
  const auto end = begin + static_cast<unsigned>(std::strcspn(line + begin, " \t\n"));
  return {begin, end};
}

// The first piece of a line; the rest of a longer one is dropped.
bool read_whole_line(Reader* stream, std::span<char> piece) {
  if (!stream->line(piece)) {
    return false;
  }
  std::array<char, line_size> rest;
  for (const char* end = piece.data(); std::strchr(end, '\n') == nullptr && stream->line(rest);) {
    end = rest.data();
  }
  return true;
}

template <class Value>
void read_values(Reader* stream, std::span<Value> values, const char* failure) {
  for (Value& value : values) {
    if (!stream->number(value)) {
      msg_fatal(failure);
    }
  }
}

void read_vectors(Reader* stream, CubeDefinition* cube) {
  std::array<char, line_size> line;
  if (!read_whole_line(stream, line)) {
    msg_fatal("unexpected end of config file while reading cube definition");
  }
  for (auto& [x, y, z] : cube->vectors) {
    if (!read_whole_line(stream, line)) {
      msg_fatal("unexpected end of file while reading cube definition");
    }
    if (std::sscanf(line.data(), "%lf%lf%lf", &x, &y, &z) != 3) {
      msg_fatal("cannot read vectors in cube definition");
    }
  }
}

void read_point_counts(Reader* stream, CubeDefinition* cube) {
  constexpr const char* failure = "cannot read ranges in cube definition";
  std::array<int, 3> counts;
  read_values(stream, std::span<int>(counts), failure);
  if (std::ranges::any_of(counts, [](int count) { return count < 0; })) {
    msg_fatal(failure);
  }
  std::ranges::copy(counts, cube->npoints);
}

}  // namespace

void conf_read(CubeDefinition* cube) {
  std::FILE* file = open_if_file(glob_file_config);
  if (file == nullptr) {
    std::snprintf(glob_file_config, file_name_size, "%s", standard_config_file);
    file = open_if_file(glob_file_config);
  }
  if (file == nullptr) {
    glob_file_config[0] = '\0';
    if (arg_warning != 0) {
      msg_warn("config file not found, using default setting");
    }
    return;
  }

  Reader stream(file);
  std::array<char, line_size> line;
  while (stream.line(line)) {
    conf_analyze_line(&stream, cube, line.data());
  }
  file_close(file);
}

void conf_analyze_line(Reader* stream, CubeDefinition* cube, const char* line) {
  const Word name = next_word(line, 0);
  if (line[name.begin] == '#') {
    return;
  }
  if (!name.fits()) {
    msg_fatal(bad_name);
  }
  if (name.is_empty()) {
    return;
  }
  const Word setting = next_word(line, name.end);
  if (setting.is_empty() || !setting.fits()) {
    msg_fatal(bad_setting);
  }

  char name_text[word_size];
  char setting_text[word_size];
  str_sub_copy(line, name_text, name.begin, name.end);
  str_sub_copy(line, setting_text, setting.begin, setting.end);
  conf_assign(stream, cube, name_text, setting_text);

  const Word rest = next_word(line, setting.end);
  if (!rest.is_empty() && line[rest.begin] != '#' && line[rest.begin] != '\r' &&
      find_item(name_text)->kind == ConfigKind::file_name) {
    msg_tell("in the config line \"%s %s\" the name ends at the blank; not read: \"%.*s\"", name_text,
             setting_text, static_cast<int>(std::strcspn(line + rest.begin, "\n")), line + rest.begin);
  }
}

void conf_assign(Reader* stream, CubeDefinition* cube, const char* name, const char* setting) {
  const ConfigItem* const item = find_item(name);
  if (item == nullptr) {
    msg_fatal_format("invalid option in config file '%s'", name);
  }
  tell_of_number(*item, setting);
  const auto set_number = [&](std::int16_t value) { *std::get<std::int16_t*>(item->target) = value; };
  switch (item->kind) {
    case ConfigKind::zero_or_one:
      return set_number(check_bool(setting));
    case ConfigKind::positive:
    case ConfigKind::natural:
      return set_number(conf_check_intgt(setting, conf_range(item->kind).lowest - 1));
    case ConfigKind::file_name:
      if (std::snprintf(std::get<char*>(item->target), file_name_size, "%s", setting) >=
          static_cast<int>(file_name_size)) {
        msg_fatal(bad_setting);
      }
      return;
    case ConfigKind::grid:
      return conf_read_cube(stream, cube, static_cast<unsigned>(integer(setting)));
  }
}

std::int16_t check_bool(const char* setting) {
  const int value = integer(setting);
  if (value != 0 && value != 1) {
    msg_fatal("invalid value in config file - 0 or 1 expected");
  }
  return static_cast<std::int16_t>(value);
}

std::int16_t conf_check_intgt(const char* setting, int bound) {
  const int value = integer(setting);
  if (value <= bound || value > std::numeric_limits<std::int16_t>::max()) {
    msg_fatal_format("invalid value in config file - integer greater than %d expected", bound);
  }
  return static_cast<std::int16_t>(value);
}

void conf_read_cube(Reader* stream, CubeDefinition* cube, unsigned type) {
  switch (type) {
    case 0:
      return;
    case 1:
      read_values(stream, std::span<double>(cube->points[0]), "cannot read point in cube definition");
      read_vectors(stream, cube);
      break;
    case 2:
      for (auto& point : cube->points) {
        read_values(stream, std::span<double>(point), "cannot read points in cube definition");
      }
      break;
    default:
      msg_fatal("invalid type of cube definition");
  }
  read_point_counts(stream, cube);
  conf_cube_def = static_cast<std::uint16_t>(type);
}
