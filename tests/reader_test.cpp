#include "lib/reader.hpp"

#include "lib/string.hpp"
#include "support.hpp"

namespace {

constexpr std::size_t buffer_size = 65536;  // what a Reader loads at once

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File file_of(const std::string& text) {
  File file(std::tmpfile(), std::fclose);
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  return file;
}

// What one formatted reading gives: success, value (bit by bit, a NaN like any other) and what is left
// unread.
template <class Number>
std::string described(bool success, Number value, const std::string& rest) {
  const double real = std::isnan(static_cast<double>(value)) ? NAN : static_cast<double>(value);
  return (success ? formatted("%a left: ", real) : "none, left: ") + rest;
}

template <class Number>
std::string by_scanf(const std::string& text, const char* format) {
  const File file = file_of(text);
  Number value{};
  char rest[100] = "";
  const bool success = std::fscanf(file.get(), format, &value) == 1;
  return described(success, value, std::fgets(rest, sizeof rest, file.get()) != nullptr ? rest : "");
}

template <class Number>
std::string by_reader(const std::string& text) {
  const File file = file_of(text);
  Reader reader(file.get());
  Number value{};
  const bool success = reader.number(value);
  char rest[100] = "";
  reader.line(rest);
  return described(success, value, rest);
}

// Separated by bars.
const std::string odd_numbers =
    "1.5abc|1e|1e+|1e |1e+x|1ee5|1e+-5|1e5.5|1e5e|-|+|.|-.|..5|.5|.5.5|1.|1E5 |1d5|00012|+-1|- 5|-5|1-2|1,5|"
    "1_|1x5|e5|1e-400|1e400 |5e-324 |-0|0|0e|0.|nan|NaN(1) |nanx|nax|n|-nan(1) |inf "
    "|iNfinity|infinit|infx|infix|"
    "+inf|i|0x|0xg|0x.|0x.8|-0x10|0x1.8p1|0x1p|0x1e5|0x1p+5z|0X1P3|00x1|0x1p1p|0xp1|| \n\t\v\f\r 7.25 x|"
    "+3.5 |1.5\n|2147483647|-2147483648|4294967295 |-4294967295";

}  // namespace

TEST(Reader, TakesFromAnOddTextWhatFormattedInputTakes) {
  std::istringstream texts(odd_numbers);
  for (std::string text; std::getline(texts, text, '|');) {
    // The second time, a buffer ends within the text.
    for (const std::string& before : {std::string(), std::string(buffer_size - 2, ' ')}) {
      const std::string all = before + text;
      SCOPED_TRACE(text);
      EXPECT_EQ(by_reader<double>(all), by_scanf<double>(all, "%lf"));
      EXPECT_EQ(by_reader<unsigned>(all), by_scanf<unsigned>(all, "%u"));
      if (text.find("429") == std::string::npos) {  // no int; the C library would wrap it
        EXPECT_EQ(by_reader<int>(all), by_scanf<int>(all, "%d"));
      }
    }
  }
}

TEST(Reader, ThreeDigitsBehindASignAreAnExponentOfTheRealThatTheyTouch) {
  const std::tuple<std::string, double, std::string> rows[] = {
      {"1.25-101", 1.25e-101, ""},  {"-1.25+101 2", -1.25e101, " 2"}, {".5-100\n", 0.5e-100, "\n"},
      {"1.-100\t", 1e-100, "\t"},   {"1.25-10", 1.25, "-10"},         {"1.25-1012", 1.25, "-1012"},
      {"1.25-101.", 1.25, "-101."}, {"1.25-1e1", 1.25, "-1e1"},       {"1.25 -101", 1.25, " -101"},
      {"125-101", 125, "-101"},     {"1.25E1-101", 12.5, "-101"},     {"0x1.8-101", 1.5, "-101"},
      {"1.25--101", 1.25, "--101"}, {"1.25_101", 1.25, "_101"},       {"1.25-10x", 1.25, "-10x"}};
  for (const auto& [text, value, rest] : rows) {
    SCOPED_TRACE(text);
    for (std::size_t loaded = 0; loaded <= text.size(); ++loaded) {  // before the buffer ends
      EXPECT_EQ(by_reader<double>(std::string(buffer_size - loaded, ' ') + text),
                described(true, value, rest));
    }
    double found = 0.0;
    EXPECT_EQ(str_fortran_real(text.c_str(), &found), rest);
    EXPECT_EQ(found, value);
    EXPECT_EQ(str_dsnum(std::string(text).data()), value);
  }
}

TEST(Reader, AnIntegerThatDoesNotFitIsNone) {
  for (const char* text : {"2147483648", "-2147483649", "4294967296", "18446744073709551617"}) {
    EXPECT_EQ(by_reader<int>(text), "none, left: ") << text;
  }
  EXPECT_EQ(by_reader<unsigned>("4294967296 x"), "none, left:  x");
  EXPECT_EQ(by_reader<unsigned>(std::string(buffer_size, '0') + "12 x"), "0x1.8p+3 left:  x");
}

TEST(Reader, SkipsRawColumnsAndTakesWordsThatFit) {
  const File file = file_of("1234\r\n\n789 words  longer");
  Reader reader(file.get());
  char text[6];
  EXPECT_TRUE(reader.skip(9));  // newlines count, the carriage return does not
  EXPECT_EQ(reader.remaining(), 14U);
  EXPECT_TRUE(reader.line(std::span(text, 2)));
  EXPECT_STREQ(text, " ");
  EXPECT_TRUE(reader.word(text));
  EXPECT_STREQ(text, "words");
  EXPECT_FALSE(reader.word(text));
  EXPECT_TRUE(reader.skip(10));
  EXPECT_FALSE(reader.skip(1));
  EXPECT_FALSE(reader.word(text));
}

TEST(Reader, DoesNotDoubtWhereTheSizeIsUnknown) {
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();
  char memory[] = "1";
  std::FILE* const device = std::fopen("/dev/null", "r");
  for (std::FILE* stream : {popen("echo 1", "r"), fmemopen(memory, 1, "r"), device}) {
    Reader endless(stream);
    double value = 0.0;
    EXPECT_EQ(endless.number(value), stream != device);
    EXPECT_TRUE(endless.may_hold(most / 2));
    EXPECT_EQ(endless.remaining(), most);
    std::fclose(stream);
  }
}
