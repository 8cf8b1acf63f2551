// The core library but for the command line: vectors, matrices, strings, elements, stacks, text, geometry.

#include <numbers>
#include <type_traits>

#include "lib/atom.hpp"
#include "lib/distance.hpp"
#include "lib/file.hpp"
#include "lib/icoord.hpp"
#include "lib/mat_base.hpp"
#include "lib/mat_print.hpp"
#include "lib/message.hpp"
#include "lib/print.hpp"
#include "lib/stack.hpp"
#include "lib/str_case.hpp"
#include "lib/str_file.hpp"
#include "lib/str_sub.hpp"
#include "lib/str_trim.hpp"
#include "lib/string.hpp"
#include "lib/vec_base.hpp"
#include "lib/vec_oper.hpp"
#include "support.hpp"

constexpr unsigned everything = 0xFFFFFFFF;

TEST(Message, HookRunsOncePerErrorAndNotWithinItself) {
  char inner[] = "inner";
  msg_error_fce_set([](void*, void* text) { msg_error(static_cast<const char*>(text), 0); }, nullptr, inner);
  EXPECT_EQ(printed([] { msg_error("outer", 0), msg_error("again", 0); }),
            "error: outer\nerror: inner\nerror: again\nerror: inner\n");
  expect_exit([] { msg_error("last", 1); }, 1, "error: last\nerror: inner\n");
  msg_error_fce_set(nullptr, nullptr, nullptr);
  EXPECT_EQ(printed([] { msg_warn("w"), msg_debug("no", 0), msg_debug("d", 1); }), "warning: w\ndebug: d\n");
  EXPECT_EQ(printed([] { msg_Debug("D"), msg_Debug_fce("f", "D"); }), "DEBUG: D\nDEBUG: f: D\n");
  const std::string endless(2000, 'x');
  expect_error([&] { msg_fatal_format("%s", endless.c_str()); }, endless.substr(0, 255));
}

TEST(File, FailuresGiveTheirReasons) {
  const std::string endless(5000, 'x');
  struct stat status;
  EXPECT_EQ(std::pair(file_exist("missing"), file_exist("/dev/null/file")), std::pair(0, 1));
  expect_error([] { file_remove("missing"); }, "cannot remove file missing (no such file)");
  expect_error([&] { file_stat("/dev/null/file", &status, 1); },
               "cannot get info about /dev/null/file (not a directory)");
  EXPECT_EQ(printed([&] { file_stat("missing", &status, 0); }),
            "error: cannot get info about missing (no such file or directory)\n");
  expect_error([&] { file_open(endless.c_str(), "r"); }, "cannot open file \"" + endless.substr(0, 237));
}

TEST(File, LinksAreNotFollowed) {
  const Scratch scratch;
  const std::string link = scratch / "link";
  struct stat status;
  ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
  EXPECT_EQ(file_stat(link.c_str(), &status, 1), 1);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  file_remove(link.c_str());
  EXPECT_EQ(file_exist(link.c_str()), 0);
}

TEST(File, ClosingWarnsOfEveryLostWrite) {
  for (const int mode : {_IOFBF, _IONBF}) {
    std::FILE* full = file_open("/dev/full", "w");
    std::setvbuf(full, nullptr, mode, 4096);
    EXPECT_EQ(printed([=] { std::fputs("lost", full), file_close(full); }),
              "warning: file closing failured\n");
  }
  EXPECT_EQ(printed([] { file_close(file_open_tmp()); }), "");
}

// One family of typed functions: zeros, filling, first match.
template <class T, class Alloc, class Set, class In, class Free>
void expect_family(Alloc alloc, Set set, In in, Free release, T value) {
  T* vector = alloc(5);
  EXPECT_EQ(std::vector<T>(vector, vector + 5), std::vector<T>(5));
  set(vector, value, 4);
  vector[0] = static_cast<T>(value - 1);
  EXPECT_EQ(in(vector, value, 5), 1U);
  EXPECT_EQ(in(vector, T{}, 5), 4U);
  EXPECT_EQ(in(vector, T{}, 4), vec_not_found);
  EXPECT_EQ(in(nullptr, value, 5), vec_not_found);
  EXPECT_EQ(release(vector), 0);
  EXPECT_EQ(release(alloc(0)), 0);
}

TEST(Vector, EveryElementTypeStartsZeroAndIsFilledAndFound) {
  expect_family<double>(vec_falloc, vec_fset, vec_fin, vec_ffree, -0.5);
  expect_family<int>(vec_ialloc, vec_iset, vec_iin, vec_ifree, -2147483647);
  expect_family<unsigned>(vec_ualloc, vec_uset, vec_uin, vec_ufree, 4294967295U);
  expect_family<unsigned long>(vec_lualloc, vec_luset, vec_luin, vec_lufree, 1UL << 40);
  expect_family<short>(vec_sialloc, vec_siset, vec_siin, vec_sifree, -300);
  EXPECT_EQ(vec_fin(Numbers(3, std::nan("")).data(), std::nan(""), 3), vec_not_found);
  EXPECT_EQ(vec_tfree(vec_talloc(0x10000, 0x10000)), 0);  // the byte count wraps to 0
  void* const millions = vec_talloc(3000, 3000);          // far beyond the end of whatever else is allocated
  std::memset(millions, 1, size_t{3000} * 3000);
  vec_tfree(millions);
  const int pairs[][2] = {{1, 5}, {2, 6}, {3, 6}}, six = 6;
  const auto second_is = [](const void* element, const void* key) {
    return static_cast<int>(static_cast<const int*>(element)[1] == *static_cast<const int*>(key));
  };
  EXPECT_EQ(vec_tin(pairs, &six, second_is, sizeof pairs[0], 3), 1U);
  EXPECT_EQ(vec_tin(pairs, &six, second_is, sizeof pairs[0], 1), vec_not_found);
}

TEST(Vector, ReducedAndMergedVectorsHoldWhatIsListed) {
  const unsigned indices[] = {3, 0, 9};  // 9 is no index of the vectors
  double* doubles = vec_falloc(4);
  int* ints = vec_ialloc(4);
  char** strings = vec_salloc(4, 8);
  EXPECT_EQ(std::string(strings[3], 8), std::string(8, '\0'));
  doubles[3] = ints[3] = 7, doubles[0] = ints[0] = 8, std::snprintf(strings[3], 8, "text 3");
  doubles = vec_freduce(doubles, 4, indices, 3), ints = vec_ireduce(ints, 4, indices, 3);
  EXPECT_EQ(Numbers(doubles, doubles + 3), (Numbers{8, 7, 0}));
  EXPECT_EQ(Numbers(ints, ints + 3), (Numbers{8, 7, 0}));
  EXPECT_EQ(vec_sin(strings, "text 3", 4), 3U);
  EXPECT_EQ(vec_sin(strings, "text 3", 3), vec_not_found);
  strings = vec_sreduce(strings, 4, indices, 2, 6);  // cut to five characters
  EXPECT_STREQ(strings[0], "");
  EXPECT_STREQ(strings[1], "text ");
  unsigned *a = vec_ualloc(2), *b = vec_ualloc(1);
  vec_uset(b, 8, 1);
  EXPECT_EQ(vec_umerge(a, 0, b, 1), b);
  EXPECT_EQ(vec_umerge(a, 2, b, 0), a);
  a = vec_umerge(a, 2, b, 1);
  EXPECT_EQ(Numbers(a, a + 3), (Numbers{0, 0, 8}));
  vec_ffree(doubles), vec_ifree(ints), vec_ufree(a), vec_sfree(strings, 2), vec_sfree(nullptr, 2);
}

TEST(Vector, OperationsChangeTheirFirstArgument) {
  const Numbers a = {1, -4, 2}, b = {2, 0.5, -3}, left = {0, -2}, tiny = {0, 1e-10};
  const std::pair<std::function<void(double*)>, Numbers> rows[] = {
      {[](double* v) { vec_fscale(v, 2, -2); }, {-6, -8, 12}},
      {[&](double* v) { vec_fadd(v, a.data(), b.data(), 3); }, {3, -3.5, -1}},
      {[&](double* v) { vec_fsub(v, a.data(), b.data(), 3); }, {-1, -4.5, 5}},
      {[&](double* v) { vec_fadd_scaled(v, b.data(), 2, 2); }, {7, 5, 12}},
      {[](double* v) { vec_frshift(v, 3), vec_frshift(v, 0); }, {0, 3, 4}},
      {[](double* v) { vec_flshift(v, 3), vec_flshift(v, 0); }, {4, 12, 0}},
      {[](double* v) { vec_funit(v, 3); }, {3.0 / 13, 4.0 / 13, 12.0 / 13}},
      {[&](double* v) { vec_funit_c(v, left.data(), 2), vec_funit_c(v, tiny.data(), 2); }, {0, -1, 12}},
      {[&](double* v) { vec_fprod_vector(a.data(), b.data(), v); }, {11, 7, 8.5}},
  };
  for (const auto& [change, expected] : rows) {
    Numbers vector = {3, 4, 12};
    change(vector.data());
    EXPECT_EQ(vector, expected);
  }
}

TEST(Vector, SumsProductsAndExtremes) {
  const Numbers x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1}, large = {1e16, 1, -1e16}, v = {0.1, 0.2, 0.7};
  EXPECT_EQ(vec_fsum(x.data(), 3), 1.0);
  EXPECT_EQ(vec_fsum(large.data(), 3), 0.0);  // in index order
  EXPECT_EQ(vec_fprod_mixed(y.data(), x.data(), z.data()), -1.0);
  EXPECT_EQ(vec_fangle(x.data(), y.data(), 3), std::numbers::pi / 2);
  EXPECT_TRUE(std::isnan(vec_fangle(x.data(), Numbers(3).data(), 3)));
  for (int i = -199; i < 200; i += 2) {  // the cosine may lie beyond 1 by rounding
    const double factor = i / 10.0;
    const Numbers scaled = {0.1 * factor, 0.2 * factor, 0.7 * factor};
    EXPECT_NEAR(vec_fangle(v.data(), scaled.data(), 3), factor < 0 ? std::numbers::pi : 0.0, 3e-8);
  }
  const Numbers u = {-1, 6, -7, -7, 6, 0.5};
  using Search = unsigned (*)(const double*, unsigned);
  using Row = std::pair<Search, unsigned>;
  for (const auto& [search, index] :
       {Row{vec_fmax, 1}, {vec_fmin, 2}, {vec_fmax_abs, 2}, {vec_fmin_abs, 5}}) {
    EXPECT_EQ(search(u.data(), 6), index);
    EXPECT_EQ(search(nullptr, 0), 0U);
  }
}

// The version for a stream and that for standard output write the same.
template <class... Arguments>
void expect_output(void (*to_stream)(std::FILE*, Arguments...), void (*to_output)(Arguments...),
                   const std::string& text, std::type_identity_t<Arguments>... arguments) {
  EXPECT_EQ(written([=](std::FILE* stream) { to_stream(stream, arguments...); }), text);
  EXPECT_EQ(printed([=] { to_output(arguments...); }), text);
}

TEST(Matrix, BlocksShowTriangleAndSquare) {
  double** matrix = mat_falloc(3, 3);
  int** ints = mat_ialloc(2, 1);
  unsigned** naturals = mat_ualloc(1, 2);
  for (unsigned i = 0; i < 9; ++i) {
    EXPECT_EQ(matrix[i / 3][i % 3], 0.0);
    matrix[i / 3][i % 3] = i + 1;
  }
  ints[1][0] = -7, naturals[0][1] = everything;
  const std::string head = "              1              2\n    1   1.000000e+00";
  const std::string five = "\n    2   4.000000e+00   5.000000e+00\n", nine = "    3   9.000000e+00\n";
  const std::string last = "    3   7.000000e+00   8.000000e+00\n              3\n";
  const std::string square =
      head + "   2.000000e+00" + five + last + "    1   3.000000e+00\n    2   6.000000e+00\n";
  expect_output(mat_ffprint_Sc, mat_fprint_Sc, head + five + last + nine, matrix, 3, 2);
  expect_output(mat_ffprint_sc, mat_fprint_sc, square + nine, matrix, 3, 2);
  EXPECT_EQ(written([=](std::FILE* s) { mat_ffprint_Sc_scale(s, matrix, 1, 0, -0.5); }),
            "              1\n    1  -5.000000e-01\n");
  EXPECT_EQ(printed([=] { mat_fprint_sub(matrix, 1, 1, 3, 2), mat_fprint(matrix, 1, 2); }),
            "   5.000000e+00\n   8.000000e+00\n   1.000000e+00   2.000000e+00\n");
  EXPECT_EQ(printed([=] { mat_iprint(ints, 2, 1), mat_uprint(naturals, 1, 2); }),
            "         0\n        -7\n         04294967295\n");
  mat_ffree(matrix, 3), mat_ffree(nullptr, 3), mat_ifree(ints, 2), mat_ufree(naturals, 1);
}

TEST(Print, LinesFillThePage) {
  const std::string t77(77, 'x'), t79(79, 'x'), t80(80, 'x'), end = std::string(37, '-') + " End -";
  expect_output(print_fcenter, print_center, std::string(36, ' ') + "ORVA 1.4\n", "ORVA 1.4");
  expect_output(print_fcenter, print_center, t80 + "\n", t80.c_str());
  expect_output(print_fccenter, print_ccenter, end + std::string(37, '-') + "\n", "End", '-');
  expect_output(print_fccenter, print_ccenter, " " + t77 + " -\n", t77.c_str(), '-');
  expect_output(print_fccenter, print_ccenter, " " + t79 + " \n", t79.c_str(), '-');
  expect_output(print_fccenter, print_ccenter, t80 + "\n", t80.c_str(), '-');
  expect_output(print_fhline, print_hline, std::string(80, '-') + "\n");
  expect_output(print_fHline, print_Hline, "===\n", '=', 3);
  expect_output(print_fswfix, print_swfix, "ab  c\n", "ab", "c", 5);
  expect_output(print_fiwfix, print_iwfix, "ab -1\n", "ab", -1, 5);
  expect_output(print_fuwfix, print_uwfix, "4294967295\n", "", everything, 5);
  expect_output(print_fluwfix, print_luwfix, "a 1099511627776\n", "a", 1UL << 40, 15);
  expect_output(print_flowfix, print_lowfix, "a 10\n", "a", 8, 4);
  EXPECT_EQ(written([](std::FILE* s) { print_ffwfix(s, "ab", "%.2f", 8, 1.5); }), "ab  1.50\n");
  EXPECT_EQ(printed([] { print_fwfix("a", "%d/%s", 6, 1, "x"), print_fwfix("", "%90d", 1, 1); }),
            "a  1/x\n" + std::string(79, ' ') + "\n");
}

// Each source becomes what stands beside it; results of at most 300 characters.
template <class Convert>
void expect_texts(Convert convert, const std::vector<std::array<std::string, 2>>& rows) {
  for (const auto& [source, expected] : rows) {
    char destination[301] = "not written";
    convert(source.c_str(), destination);
    EXPECT_EQ(destination, expected) << source;
  }
}

TEST(String, CopiesAndChanges) {
  const auto in_place = [](void (*change)(char*)) {
    return [=](const char* source, char* destination) { change(std::strcpy(destination, source)); };
  };
  const auto part = [](const char* source, char* destination) { str_sub_copy(source, destination, 2, 5); };
  const std::string name(255, 'n');
  expect_texts(str_ctrim, {{" \t a b \t\n\n", "a b"}, {"\n", ""}, {"", ""}, {"x", "x"}, {"\n a", "\n a"}});
  expect_texts(in_place(str_trim), {{"  a\n", "a"}});
  expect_texts(in_place(str_rtrim), {{" a \n\t", " a"}, {"\n", ""}});
  expect_texts(str_file_base, {{"a/b/prog", "prog"}, {"p.x", "p.x"}, {"a/b/", ""}, {name + "x", name}});
  expect_texts(str_file_ext, {{"a.b.c", "c"}, {"name", "name"}, {"a.", ""}});
  expect_texts(part, {{"PRINT_COORD 1", "INT"}, {"abc", "c"}, {"a", ""}});
  expect_texts(str_cLowcase, {{"CL", "Cl"}, {"h", "H"}, {"1X", "1x"}, {"", ""}});
  expect_texts(in_place(str_Lowcase), {{"hE\xC4z", "He\xC4z"}});
  expect_texts(str_cupcase, {{"az{`\xE4", "AZ{`\xE4"}});
  expect_texts(in_place(str_upcase), {{"aB1", "AB1"}});
  expect_texts(str_clowcase, {{"AZ[@\xC4", "az[@\xC4"}});
  expect_texts(in_place(str_lowcase), {{"aB1", "ab1"}});
  char text[8];
  EXPECT_EQ(str_file_base("a/b", text), 1);
  EXPECT_EQ(str_file_ext("b.", text), 0);
}

TEST(String, ComparisonsAndLengths) {
  const std::tuple<const char*, const char*, int> whole[] = {
      {"", "", 1},   {" ", "", 0},    {"", " ", 0},     {"  ab \n", "ab", 1}, {"ab", "   ab\n", 1},
      {"a", "b", 0}, {"ab", "Ab", 0}, {"ab", "abc", 0}, {"abc", "ab", 0},     {"ab ", "ab c", 0}};
  for (const auto& [first, second, agrees] : whole) {
    EXPECT_EQ(str_compare(first, second), agrees) << first << '|' << second;
  }
  const std::tuple<const char*, const char*, int> beginnings[] = {
      {"Number of atoms  I", "Number of atoms", 1}, {"Num", "Number", 1}, {"", "Number", 1},
      {"Number of alpha", "Number of atoms", 0},    {"x", "Number", 0},   {"Num\n", "Number", 0}};
  for (const auto& [text, prefix, agrees] : beginnings) {
    EXPECT_EQ(str_sub_bfind(text, prefix), agrees) << text;
  }
  EXPECT_EQ((std::array{str_unum_len(0), str_unum_len(999), str_unum_len(-1), str_lunum_len(1UL << 63)}),
            (std::array{0U, 3U, 10U, 19U}));
  char text[] = "one\ntwo words\nthree\n", line[str_line_size];
  std::FILE* stream = fmemopen(text, sizeof text - 1, "r");
  EXPECT_EQ(str_ffind(stream, "word", line), 1);
  EXPECT_STREQ(line, "two words\n");
  EXPECT_EQ(str_ffind(stream, "one", line), 0);
  file_close(stream);
}

TEST(String, FortranRealsConvertAsTheCLibraryReadsThem) {
  const std::pair<std::string, double> rows[] = {{"0.5D+01", 5},      {"-1.5d-01", -0.15}, {"1.5x", 1.5},
                                                 {"1d999", HUGE_VAL}, {"0x1p3", 8},        {"7", 0},
                                                 {"42", 42}};
  for (auto [word, expected] : rows) {
    EXPECT_EQ(str_dsnum(word.data()), expected) << word;
  }
  expect_error([] { str_dsnum(std::string("dD").data()); },
               "cannot convert fortran double precision type \"eE\"");
}

TEST(Atom, SymbolsNumbersAndMassesBelongTogether) {
  std::istringstream elements(read_file(ORVA_TEST_DATA "/elements.txt"));
  std::string symbol;
  char name[3];
  unsigned number = 0;
  for (double mass = 0.0; elements >> symbol >> mass;) {
    ++number;
    EXPECT_EQ(atom_name(name, static_cast<int>(number)), symbol);
    EXPECT_EQ(atom_num(symbol.c_str()), number);
    EXPECT_EQ(atom_mass(number), mass) << symbol;
    EXPECT_EQ(atom_smass(symbol.c_str()), mass) << symbol;
  }
  EXPECT_EQ(number, 111U);
  const std::pair<const char*, unsigned> rows[] = {
      {"he", 2}, {"NA", 11}, {"cL", 17}, {"C1", 0}, {"Xx", 0}, {"", 0}, {" C", 0}, {"Feeeeeeeeeeeeeee", 0}};
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(atom_num(text), expected) << text;
  }
  for (const int none : {0, -1, 112}) {
    EXPECT_STREQ(atom_name(name, none), "X") << "element " << none;
    EXPECT_EQ(atom_mass(static_cast<unsigned>(none)), 0.0) << "element " << none;
  }
}

TEST(Stack, GivesBackTheLastValueFirstAndTellsHowManyAreLeft) {
  Stack* stack = stack_alloc();
  EXPECT_EQ(stack_get(stack), nullptr);
  stack_sadd(stack, "freed with the stack");
  stack_fadd(stack, 0.5), stack_uadd(stack, 7), stack_iadd(stack, -1);
  EXPECT_EQ(stack_sadd(stack, "text"), 5U);
  char text[8];
  double real = 0;
  unsigned natural = 0;
  int integer = 0;
  EXPECT_EQ(stack_sget(stack, text), 4U);
  EXPECT_EQ(stack_uget(stack, &natural), 3U);
  EXPECT_EQ(stack_iget(stack, &integer), 2U);
  EXPECT_EQ(stack_fget(stack, &real), 1U);
  EXPECT_STREQ(text, "text");
  EXPECT_EQ(std::tuple(natural, integer, real), std::tuple(everything, 7, 0.5));
  stack_free(stack);
}

TEST(Geometry, DistancesAnglesAndSignedDihedrals) {
  const double o[] = {0, 0, 0}, x[] = {1, 0, 0}, y[] = {0, 1, 0}, z[] = {0, 0, 1}, away[] = {-1, 0, 0};
  const double far[] = {3, 4, 12};
  EXPECT_EQ(dist_r2(o, far, 2), 25.0);
  EXPECT_EQ(dist_r(o, far, 1), 3.0);
  EXPECT_EQ(icoord_bond(far, o), 13.0);
  EXPECT_EQ(icoord_angle(x, o, y), 90.0);
  EXPECT_EQ(icoord_angle(x, o, away), 180.0);
  for (const double turn : {-179.0, -90.0, -1.0, 0.0, 30.0, 90.0, 179.0, 180.0}) {
    const double radians = turn * std::numbers::pi / 180.0;
    const double d[] = {2 * std::cos(radians), 2 * std::sin(radians), 1.5};
    EXPECT_NEAR(icoord_dihedral(x, o, z, d), turn, 1e-9);
  }
  EXPECT_TRUE(std::isnan(icoord_dihedral(x, o, away, z)));
}
