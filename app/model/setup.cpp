#include "app/model/setup.hpp"

#include <string_view>

char glob_file_input[file_name_size] = "";
char glob_file_config[file_name_size] = "config";
static_assert(standard_config_file == std::string_view("config"));
char glob_file_output[file_name_size] = "";
std::int16_t arg_quiet = 0;
std::int16_t arg_warning = 0;
std::int16_t inp_format = 0;

std::int16_t inp_rest_scf = 1;

std::int16_t conf_input_convention = 0;
std::int16_t conf_width = 5;
std::int16_t conf_print_coord = 1;
std::int16_t conf_print_zmat = 0;
std::int16_t conf_print_dmat = 0;
std::int16_t conf_print_shell = 1;
std::int16_t conf_print_base = 0;
std::int16_t conf_print_mo = 0;
std::int16_t conf_print_cubp = 1;
std::int16_t conf_print_cube = 1;
std::int16_t conf_cube_totd = 1;
std::int16_t conf_cube_allmo = 0;
std::int16_t conf_cube_onemo = 0;
std::int16_t conf_cube_onety = 0;
std::int16_t conf_cube_onesp = 0;
std::int16_t conf_cube_moden = 0;
std::int16_t conf_cube_orva = 1;
std::uint16_t conf_cube_def = 0;
char glob_cube_file_tot[file_name_size] = "out.tot";
char glob_cube_file_orb[file_name_size] = "out.orb";
char glob_cube_file_mod[file_name_size] = "out.mod";
char glob_cube_file_orva[file_name_size] = "out.orva";
