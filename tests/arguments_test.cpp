// The parser of command lines.

#include <bit>

#include "lib/arg.hpp"
#include "support.hpp"

namespace {

using Words = std::vector<const char*>;
using Change = std::function<void(ArgTable*)>;

void change_nothing(ArgTable*) {}
void bind_item(ArgTable* table) { arg_bind(table, 3, 5); }

struct Values {
  std::int16_t q = 0, w = 0, stop = 0;
  std::int32_t number = 0;
  char file[arg_text_size] = "", item[arg_text_size] = "";
};

// Switches q, w, S (stops), options n (integer), f (mandatory), and an item.
Values read(const Words& words, const Change& change = change_nothing) {
  Values values;
  ArgTable table = {};
  arg_add_switch(&table, "q", 0, &values.q), arg_add_switch(&table, "w", 0, &values.w);
  arg_add_switch(&table, "S", 1, &values.stop);
  arg_add_option(&table, "n", "count", arg_int, 1, &values.number);
  arg_add_option(&table, "f", "name", arg_string, 0, values.file);
  arg_add_item(&table, "item", arg_string, 1, values.item);
  arg_add_help(&table, [] { std::puts("help"); });
  change(&table);
  Words all = words;
  all.insert(all.begin(), "/usr/bin/prog");
  arg_read(static_cast<int>(all.size()), all.data(), table);
  EXPECT_EQ(table.definitions[0].given, 0);  // the caller's table does not change
  return values;
}

const std::string usage = "usage: prog [-qwS] [-n <count>] -f <name> <item>\n";

}  // namespace

TEST(Arguments, ValuesReachTheirTargets) {
  const Values all = read({"-q", "-q", "-n", "12abc", "thing", "-f", "-x", "-w"});
  EXPECT_EQ(std::tuple(all.q, all.w, all.stop, all.number), std::tuple(1, 1, 0, 12));
  EXPECT_STREQ(all.file, "-x");
  EXPECT_STREQ(all.item, "thing");
  const Values cluster = read({"-qw", "-f", std::string(300, 'f').c_str()});
  EXPECT_EQ(std::tuple(cluster.q, cluster.w, cluster.file), std::tuple(1, 1, std::string(255, 'f')));
  EXPECT_EQ(read({"-qS", "-x"}).stop, 1);  // neither -x nor the missing -f counts
}

TEST(Arguments, MistakesEndWithUsageAndReason) {
  const std::string endless(300, 'b');
  const std::pair<Words, std::string> rows[] = {
      {{}, "argument <name> is not set"},
      {{"-"}, "unknown option \"-\""},
      {{"-qx"}, "unknown option \"-x\""},
      {{"-f", "a", "-f", "a"}, "more than one occurence of option \"-f\""},
      {{"-q", "-f"}, "argument of option \"-f\" is missing"},
      {{"-n", "2147483648"}, "cannot assign value \"2147483648\" to option \"-n\""},
      {{"a", endless.c_str()}, "excessive argument \"" + endless.substr(0, 235)}};
  for (const auto& [words, reason] : rows) {
    expect_exit([&words = words] { read(words); }, 1, std::string(usage).append("error: " + reason + "\n"));
  }
  expect_exit([] { read({"-qf", "x"}); }, 1, usage);
  expect_exit([] { read({"-q", "-H", "-x"}); }, 0, usage + "help\n");
  expect_exit([] { arg_read(0, nullptr, ArgTable{}); }, 0, "");
}

TEST(Arguments, BoundAndExclusiveArgumentsAreCheckedAndShown) {
  const Change exclude = [](ArgTable* t) { arg_exclude(t, 3, 4); };
  const Change both = [](ArgTable* t) { bind_item(t), arg_exclude(t, 5, 4); };
  const Change merge = [](ArgTable* t) { arg_bind(t, 0, 1), arg_bind(t, 1, 3), bind_item(t); };
  const Change join = [](ArgTable* t) { arg_bind(t, 0, 1), bind_item(t), arg_bind(t, 1, 3); };
  const Change apart = [](ArgTable* t) { arg_bind(t, 0, 1), bind_item(t); };
  const Words set = {"-n", "1", "-f", "x"};
  const std::tuple<Change, Words, const char*, const char*> rows[] = {
      {bind_item, set, "{[-n <count>] <item>} -f <name>", "s <count> and <item> must be set together"},
      {exclude, set, "[-n <count>] | -f <name> <item>", "s <count> and <name> must not be set together"},
      {both, {"-n", "1"}, "{{[-n <count>] <item>} | -f <name>}", "s <count> and <item> must be set together"},
      {merge, {"-q"}, "{[-n <count>] <item>} -f <name>", "s <> and <> must be set together"},
      {join, {"-w", "-n", "1", "x"}, "{[-n <count>] <item>} -f <name>", "s <> and <> must be set together"}};
  for (const auto& [change, words, line, reason] : rows) {
    expect_exit([&run = change, &given = words] { read(given, run); }, 1,
                std::string("usage: prog [-qwS] ") + line + "\nerror: argument" + reason + "\n");
  }
  EXPECT_EQ(read({"-n", "1"}, exclude).number, 1);  // its partner satisfies -f
  EXPECT_EQ(read({"-q", "-w", "-f", "x"}, apart).q, 1);
}

TEST(Arguments, DefinitionsThatMakeNoSenseEndTheRun) {
  const char* missing = "argument definition does not exist";
  const std::pair<Change, const char*> rows[] = {
      {[](ArgTable* t) { arg_bind(t, 3, 4); }, "error: binding optional and mandatory option required"},
      {[](ArgTable* t) { arg_exclude(t, 3, 5), bind_item(t); },
       "both binding and exclusion of the same options required"},
      {[](ArgTable* t) { arg_bind(t, 3, arg_get_id(t, 'x')); }, missing},
      {[](ArgTable* t) { arg_bind(t, 6, 3); }, missing},
      {[](ArgTable* t) { arg_exclude(t, 3, 6); }, missing},
      {[](ArgTable* t) { arg_exclude(t, 6, 3); }, missing},
      {[](ArgTable* t) { arg_add_switch(t, "", 0, nullptr); }, "name of switch is not defined"},
      {[](ArgTable* t) { arg_add_option(t, "", "v", 1, 1, t); }, "name of argument option is not defined"},
      {[](ArgTable* t) { arg_add_item(t, "", 1, 1, t); }, "description of argument item is not defined"},
      {[](ArgTable* t) { t->count = 100, arg_add_item(t, "i", 1, 1, t); },
       "maximum number of argument definition exceeded"}};
  for (const auto& [change, reason] : rows) {
    expect_error([&run = change] { read({"-f", "x"}, run); }, reason);
  }
}

TEST(Arguments, NumbersMustFitTheirTypes) {
  // Accepted, rejected, and the bits that are stored, zero behind the target's own.
  const std::tuple<std::int16_t, const char*, const char*, std::uint64_t> rows[] = {
      {arg_int, "-2147483648", "-2147483649", 0x80000000},
      {arg_unsigned, "4294967295", "-1", 0xFFFFFFFF},
      {arg_short, "-32768x", "32768", 0x8000},
      {arg_unsigned_short, "65535", "65536", 0xFFFF},
      {arg_long, "-9223372036854775808", "9223372036854775808", 0x8000000000000000},
      {arg_unsigned_long, "18446744073709551615", "18446744073709551616", 0xFFFFFFFFFFFFFFFF},
      {arg_double, "-1.5e3x", "x", std::bit_cast<std::uint64_t>(-1500.0)}};
  char word[arg_text_size] = "";
  EXPECT_EQ(arg_set_var("word", word, arg_string), 1);
  EXPECT_STREQ(word, "word");
  std::uint64_t untouched = 0;
  for (const std::int16_t type : std::to_array<std::int16_t>({0, 9})) {
    EXPECT_EQ(arg_set_var("1", &untouched, type), 0) << "type " << type;
  }
  for (const auto& [type, accepted, rejected, stored] : rows) {
    std::uint64_t target = 0;
    EXPECT_EQ(arg_set_var(rejected, &target, type), 0) << rejected;
    EXPECT_EQ(arg_set_var(accepted, nullptr, type), 0) << accepted;
    EXPECT_EQ(target, 0U) << rejected;
    EXPECT_EQ(arg_set_var(accepted, &target, type), 1) << accepted;
    EXPECT_EQ(target, stored) << accepted;
  }
}
