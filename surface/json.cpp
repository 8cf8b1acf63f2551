#include <array>
#include <cstdio>

#include "surface/output.hpp"

namespace {

// Length of the character of UTF-8 at the beginning of a text, 0 if there is none.
std::size_t character_length(std::string_view text) {
  const auto byte = [&](std::size_t n) { return static_cast<unsigned char>(text[n]); };
  struct Lead {
    unsigned low, high, second_low, second_high;
    std::size_t length;
  };
  constexpr std::array leads = {
      Lead{0x00, 0x7f, 0, 0, 1},       Lead{0xc2, 0xdf, 0x80, 0xbf, 2}, Lead{0xe0, 0xe0, 0xa0, 0xbf, 3},
      Lead{0xe1, 0xec, 0x80, 0xbf, 3}, Lead{0xed, 0xed, 0x80, 0x9f, 3}, Lead{0xee, 0xef, 0x80, 0xbf, 3},
      Lead{0xf0, 0xf0, 0x90, 0xbf, 4}, Lead{0xf1, 0xf3, 0x80, 0xbf, 4}, Lead{0xf4, 0xf4, 0x80, 0x8f, 4}};
  for (const Lead& lead : leads) {
    if (byte(0) < lead.low || byte(0) > lead.high || text.size() < lead.length) {
      continue;
    }
    bool is_whole = lead.length == 1 || (byte(1) >= lead.second_low && byte(1) <= lead.second_high);
    for (std::size_t n = 2; n < lead.length; ++n) {
      is_whole = is_whole && byte(n) >= 0x80 && byte(n) <= 0xbf;
    }
    return is_whole ? lead.length : 0;
  }
  return 0;
}

}  // namespace

std::string output_json_text(const std::string& text) {
  std::string result = "\"";
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t length = character_length(rest);
    const char c = rest[0];
    if (length == 0) {
      result += "\\ufffd";
    } else if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (length == 1 && static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      result += escape;
    } else {
      result += rest.substr(0, length);
    }
    rest.remove_prefix(length == 0 ? 1 : length);
  }
  return result + '"';
}
