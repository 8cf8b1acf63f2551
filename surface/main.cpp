#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/input/convention.hpp"
#include "app/input/input.hpp"
#include "app/input/options.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"
#include "surface/child.hpp"
#include "surface/options.hpp"
#include "surface/output.hpp"

namespace {

// The format that the beginning of a file shows; a checkpoint file's if it shows none, whose reader then says
// what it misses.
int format_of(const std::string& input) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(input, error)) {
    return input_fchk;
  }
  char beginning[convention_beginning];
  std::ifstream file(input, std::ios::binary);
  file.read(beginning, sizeof beginning);
  const int format = convention_format_of({beginning, static_cast<std::size_t>(file.gcount())});
  return format != 0 ? format : input.ends_with(".wfn") ? input_wfn : input_fchk;
}

void set_input(const std::string& input, const SurfaceOptions& options) {
  if (input.size() >= file_name_size) {
    msg_fatal_format("its name is longer than %u characters", file_name_size - 1);
  }
  std::snprintf(glob_file_input, file_name_size, "%s", input.c_str());
  inp_format = static_cast<std::int16_t>(options.input_format != 0 ? options.input_format : format_of(input));
  if (!options.mesh.empty()) {
    const NamedFile files[] = {{"input file", input}, {"mesh", options.mesh}};
    file_check_distinct(files);
    struct stat mesh, output;
    if (stat(options.mesh.c_str(), &mesh) == 0 && fstat(STDOUT_FILENO, &output) == 0 &&
        mesh.st_dev == output.st_dev && mesh.st_ino == output.st_ino) {
      msg_fatal("the mesh cannot go where the numbers go");  // which is the parent's pipe here
    }
  }
}

// Everything about one input, in its own process.
void compute(const std::string& input, const SurfaceOptions& options, const ChildStreams& streams) {
  set_input(input, options);
  Molecule molecule;
  mem_init_mol(&molecule);
  input_read(&molecule);
  const Owners owners(&molecule, options.shares_by_radii ? owners_radii(&molecule) : std::vector<double>{});
  streams.show_errors();
  if (!options.mesh.empty()) {
    file_close(file_open(options.mesh.c_str(), "a"));  // what cannot be written is better told at once
  }
  const Surface surface = surface_of(&molecule, options.settings, owners);
  streams.collect_errors();
  if (!surface.is_resolved) {
    msg_tell("a piece or a gap of the surface is small for steps of %g bohr, the smallest that were tried",
             surface.step);
  }
  if (!options.mesh.empty()) {
    output_mesh(options.mesh, surface);
  }
  output_surface(streams.result(), input, molecule, surface, options);
  mem_clean(&molecule, nullptr);
}

void tell(std::string input, const Outcome& outcome) {
  // Whatever the file's name, a line is a line.
  std::ranges::replace_if(
      input, [](char c) { return c > '\0' && c < ' '; }, '?');
  for (const std::string& warning : outcome.warnings) {
    std::fprintf(stderr, "orva-surface: %s: warning: %s\n", input.c_str(), warning.c_str());
  }
  if (!outcome.error.empty()) {
    std::fprintf(stderr, "orva-surface: %s: %s\n", input.c_str(), outcome.error.c_str());
  }
}

void put(const std::string& input, const Outcome& outcome, Form form, bool is_first) {
  const bool has_result = outcome.error.empty();
  if (form == Form::json) {
    std::fputs(output_json_beginning(input, outcome.error, outcome.warnings).c_str(), stdout);
    std::fputs(has_result ? outcome.result.c_str() : "}\n", stdout);
  } else if (has_result) {
    std::fputs(form == Form::text && !is_first ? "\n\n" : "", stdout);
    std::fputs(outcome.result.c_str(), stdout);
  }
  file_flush_output();
}

}  // namespace

int main(int argc, char** argv) {
  file_prepare_process();
  std::signal(SIGPIPE, SIG_IGN);  // a pipe that closes is text that cannot be written
  std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, nobody learns how a child has ended
  const SurfaceOptions options = surface_options(argc, argv);
  std::fputs(output_heading(options).c_str(), stdout);
  bool is_any_missing = false, is_first = true;
  for (const std::string& input : options.inputs) {
    const Outcome outcome = child_run([&](const ChildStreams& streams) { compute(input, options, streams); });
    tell(input, outcome);
    put(input, outcome, options.form, is_first);
    is_first = is_first && !outcome.error.empty();
    is_any_missing = is_any_missing || !outcome.is_complete;
    if (file_is_any_incomplete()) {
      break;  // nobody would get what the others give
    }
  }
  return is_any_missing || file_is_any_incomplete() ? 1 : 0;
}
