#pragma once

#include <cstdint>

// All settings of a run. Zero is false.

inline constexpr unsigned file_name_size = 256;  // of every file name buffer, terminator included

inline constexpr const char* standard_config_file = "config";

// Set by the command line.
extern char glob_file_input[file_name_size];
extern char glob_file_config[file_name_size];  // after conf_read: the one that was read, empty if none
extern char glob_file_output[file_name_size];  // empty: standard output
extern std::int16_t arg_quiet;
extern std::int16_t arg_warning;
extern std::int16_t inp_format;  // input_fchk or input_wfn (options.hpp)

// Set by the input readers.
extern std::int16_t inp_rest_scf;  // nonzero: restricted wavefunction

// Set by the configuration file.
extern std::int16_t conf_input_convention;  // 1: input means what the programs that write it mean by it
extern std::int16_t conf_width;             // columns of a block in printed tables
extern std::int16_t conf_print_coord;
extern std::int16_t conf_print_zmat;
extern std::int16_t conf_print_dmat;
extern std::int16_t conf_print_shell;
extern std::int16_t conf_print_base;
extern std::int16_t conf_print_mo;
extern std::int16_t conf_print_cubp;
extern std::int16_t conf_print_cube;
extern std::int16_t conf_cube_totd;
extern std::int16_t conf_cube_allmo;
extern std::int16_t conf_cube_onemo;
extern std::int16_t conf_cube_onety;  // 0 alpha, 1 beta
extern std::int16_t conf_cube_onesp;  // number of the single orbital
extern std::int16_t conf_cube_moden;  // 0 or the number of the orbital whose density is written
extern std::int16_t conf_cube_orva;
extern std::uint16_t conf_cube_def;  // 0 automatic grid, 1 vectors given, 2 points given
extern char glob_cube_file_tot[file_name_size];
extern char glob_cube_file_orb[file_name_size];
extern char glob_cube_file_mod[file_name_size];
extern char glob_cube_file_orva[file_name_size];
