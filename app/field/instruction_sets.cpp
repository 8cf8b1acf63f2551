#include "app/field/instruction_sets.hpp"

#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "lib/message.hpp"

std::span<const InstructionSet> instruction_sets() {
  static constexpr std::array sets = {
#if defined(__x86_64__)
    InstructionSet{"avx512", [] { return __builtin_cpu_supports("avx512f") != 0; }, sweep_avx512,
                   rows_avx512},
    InstructionSet{"avx2",
                   [] { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0; },
                   sweep_avx2, rows_avx2},
#endif
    InstructionSet{"plain", [] { return true; }, sweep_plain, rows_plain},
  };
  return sets;
}

const InstructionSet& choose_instruction_set() {
  const char* const wanted = std::getenv("ORVA_KERNEL");
  std::string available;
  for (const InstructionSet& set : instruction_sets()) {
    if (set.is_supported()) {
      if (wanted == nullptr || wanted == std::string_view(set.name)) {
        return set;
      }
      available += std::string(" ") + set.name;
    }
  }
  msg_fatal_format("kernel \"%s\" is not available, only%s", wanted, available.c_str());
}
