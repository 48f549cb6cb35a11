#include "ctl/text/output.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "ctl/text/table.h"

namespace {

const Style PLAIN(false);

// What `print` writes to standard output.
template <typename Print>
std::string printed(const Output& out, const Print& print) {
  testing::internal::CaptureStdout();
  print(out);
  return testing::internal::GetCapturedStdout();
}

void printAll(const Output& out) {
  out.text("a\nb");
  out.assignment("gain", " 5");
}

TEST(Output, HasThreeForms) {
  using namespace std::string_literals;
  EXPECT_EQ(printed(Output(FORM_TEXT, false, PLAIN), printAll), "\"a\\nb\"\ngain=\" 5\"\n");
  EXPECT_EQ(printed(Output(FORM_NULL, false, PLAIN), printAll), "a\nb\0gain= 5\0"s);
  EXPECT_EQ(printed(Output(FORM_JSON, false, PLAIN),
                    [](const Output& out) {
                      out.json({{"b", "x\ny"}, {"a", 1}});
                    }),
            "{\"b\":\"x\\ny\",\"a\":1}\n");
}

TEST(Output, IsQuiet) {
  EXPECT_EQ(printed(Output(FORM_TEXT, true, PLAIN), printAll), "");
  EXPECT_EQ(printed(Output(FORM_NULL, true, PLAIN), printAll), "");
  EXPECT_EQ(printed(Output(FORM_JSON, true, PLAIN), [](const Output& out) { out.json(1); }), "");
}

TEST(Style, ColoursOnlyWhereItIsAsked) {
  EXPECT_EQ(PLAIN.name("a") + PLAIN.note("b") + PLAIN.heading("c"), "abc");
  EXPECT_EQ(Style(true).name("a"), "\033[1ma\033[0m");
}

TEST(Table, AlignsItsColumns) {
  const std::vector<std::string> expected = {"A   LONG  C", "äb  x     yz", "a"};
  EXPECT_EQ(tableLines({{"A", "LONG", "C"}, {"äb", "x", "yz"}, {"a", "", ""}}), expected);
  EXPECT_EQ(tableLines({}), std::vector<std::string>());
}

}  // namespace
