#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

// The items of a configuration: where their settings go, and what the samples say of them.

/// What a setting may be. A grid is a number with a block of lines behind it.
enum class ConfigKind { zero_or_one, positive, natural, file_name, grid };

/// The numbers that a setting may be; a file name is none.
struct ConfigRange {
  int lowest, highest;
};
ConfigRange conf_range(ConfigKind kind);

/// A global of setup.hpp; a file name has file_name_size bytes.
using ConfigTarget = std::variant<std::int16_t*, std::uint16_t*, char*>;

struct ConfigSample {
  const char* section = nullptr;  // heading in both samples; null: in neither of them
  const char* purpose = nullptr;
  const char* values = nullptr;             // what may be set; null: told by the kind
  const char* setting = nullptr;            // recommended, and told to be the default; null: the default
  const char* explained_setting = nullptr;  // recommended where it is explained; null: the same
};

struct ConfigItem {
  const char* name;
  ConfigKind kind;
  ConfigTarget target;
  ConfigSample sample;
  std::string standard;  // what setup.cpp gives the target

  const char* setting() const { return sample.setting != nullptr ? sample.setting : standard.c_str(); }
};

/// All items, those of the samples in their order.
std::span<const ConfigItem> conf_items();

/// Sets every item back to its default: for more than one run in a process.
void conf_restore();
