#include "fuzz.hpp"

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "app/input/config_items.hpp"
#include "app/model/setup.hpp"
#include "lib/message.hpp"

namespace {

// More than a small input needs. What asks for more is told that there is no memory: that path is taken too,
// and no time is lost in clearing large blocks.
constexpr std::size_t largest_block = std::size_t{4} << 20;

struct FatalError {};

bool is_running = false;
std::jmp_buf end_of_pass;
auto& held = *new std::map<void*, void (*)(void*)>;  // blocks and streams, and what releases them

template <class... Settings>
auto with_values(Settings&... settings) {
  const auto with_value = [](auto& setting) {
    char* bytes = reinterpret_cast<char*>(&setting);
    return std::pair(bytes, std::string(bytes, sizeof setting));
  };
  return std::array{with_value(settings)...};
}

// Those that are no items of the configuration.
const auto defaults = with_values(glob_file_input, glob_file_config, glob_file_output, arg_quiet, arg_warning,
                                  inp_format, inp_rest_scf);

void prepare(std::string_view input) {
  // No messages; reports of the sanitizers and of the fuzzer do not go through the stream.
  static const bool is_quiet =
      std::freopen("/dev/null", "w", stdout) != nullptr && (stderr = std::fopen("/dev/null", "w")) != nullptr;
  static const int file = memfd_create("input", 0);
  if (!is_quiet || ftruncate(file, 0) != 0 || pwrite(file, input.data(), input.size(), 0) < 0) {
    std::abort();
  }
  for (const auto& [setting, value] : defaults) {
    value.copy(setting, value.size());
  }
  conf_restore();
  std::snprintf(glob_file_input, file_name_size, "/proc/self/fd/%d", file);
  std::snprintf(glob_file_config, file_name_size, "/proc/self/fd/%d", file);
  msg_ef = {.hook = [](void*, void*) { throw FatalError(); }};
  held.clear();  // what the fuzzer itself has opened
}

}  // namespace

// In this program, but not in libraries, the linker makes x a call of __wrap_x.
extern "C" {
void __real_free(void* block);
void __wrap_free(void* block) {
  held.erase(block);
  __real_free(block);
}

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  void* block = is_running && count > largest_block / size ? nullptr : __real_calloc(count, size);
  if (block != nullptr) {
    held[block] = __real_free;
  }
  return block;
}

int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream) {
  held.erase(stream);
  return __real_fclose(stream);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  std::FILE* stream = __real_fopen(is_running && *mode == 'w' ? "/dev/null" : path, mode);
  if (stream != nullptr) {
    held[stream] = [](void* open) { __real_fclose(static_cast<std::FILE*>(open)); };
  }
  return stream;
}

[[noreturn]] void __real_exit(int status);
[[noreturn]] void __wrap_exit(int status) {
  if (is_running) {
    std::longjmp(end_of_pass, 1);  // an exception would not do: exit is declared to throw none
  }
  __real_exit(status);
}

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  volatile bool has_returned = false;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  prepare(input);
  is_running = true;
  if (setjmp(end_of_pass) == 0) {
    try {
      fuzz_pass(input);
      has_returned = true;
    } catch (const FatalError&) {
    }
  }
  is_running = false;
  if (has_returned && !held.empty()) {
    dprintf(STDERR_FILENO, "left behind:\n");
    __asan_describe_address(held.begin()->first);
    std::abort();
  }
  for (const auto& [thing, release] : held) {
    release(thing);
  }
  return 0;
}
}
