// The figures of video standards in definitions: every one of them, and ranges that follow the
// standard which a parameter selects.
#include <algorithm>

#include "tests/harness/service_test.h"
#include "tests/support/listing.h"

namespace {

using Texts = std::vector<std::string>;

// A row of a listing: the name, and the figures in the order of figureNames().
struct Row {
  std::string name;
  Texts figures;
};

std::vector<Row> rowsOf(const std::string& listing) {
  std::vector<Row> rows;
  for (const std::string& line : readListing(listing)) {
    const Texts cells = cellsOf(line);
    EXPECT_EQ(cells.size(), 2 + figureNames().size()) << line;
    Row row = {cells.at(1), {cells.begin() + 2, cells.end()}};
    std::replace(row.figures.begin(), row.figures.end(), std::string("-"), std::string());
    rows.push_back(row);
  }
  return rows;
}

class FiguresTest : public ServiceTest {
 protected:
  void SetUp() override {
    std::string text = "std rw { }\n";
    for (const std::string& figure : names_) {
      text.append(figure).append(" rw { default { (vidStd::std::").append(figure).append(") } }\n");
    }
    serve(text);
    rows_ = rowsOf("figures_of_standards.tsv");
    const std::vector<Row> formats = rowsOf("figures_of_formats.tsv");
    rows_.insert(rows_.end(), formats.begin(), formats.end());
    EXPECT_EQ(rows_.size(), 78U + 48U);
  }

  // The row that a value selects: the first, standards before formats, whose name begins it.
  [[nodiscard]] const Row& selected(const std::string& value) const {
    static const Row none = {"", Texts(figureNames().size())};
    const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const Row& candidate) {
      return value.starts_with(candidate.name);
    });
    return row == rows_.end() ? none : *row;
  }

  // The figures that the parameters have as defaults while `value` is selected.
  [[nodiscard]] std::string defaultsFor(const std::string& value) {
    const std::string names = listed(names_);
    EXPECT_EQ(client().answer("single_set('std', '" + value + "')"), "()");
    EXPECT_EQ(client().answer("single_reset_bulk(" + names + ")"), "()");
    return client().answer("single_get_bulk(14, " + names + ")");
  }

  static std::string listed(const Texts& figures) {
    std::string list;
    for (const std::string& figure : figures) list += (list.empty() ? "'" : ", '") + figure + "'";
    return "[" + list + "]";
  }

  Texts names_ = figureNames();
  std::vector<Row> rows_;
};

TEST_F(FiguresTest, AreThoseOfTheRowThatTheValueSelects) {
  for (const Row& row : rows_) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(defaultsFor(row.name), listed(selected(row.name).figures));
  }
}

TEST_F(FiguresTest, BelongToTheFirstRowWhoseNameBeginsTheValue) {
  const struct {
    const char* value;
    const char* name;  // of the row; "": of none
  } cases[] = {
      {"1080p/50xyz", "1080p/50"},
      {"1080p/25sF", "1080p/25"},
      {"2048x1080p/30.00sF", "2048x1080p/30.00"},
      {"1920x1080/50/I and more", "1920x1080/50/I"},
      {"1080p/5", ""},
      {"1080P/50", ""},
      {" 1080p/50", ""},
      {"1125", ""},
      {"", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(selected(c.value).name, c.name);
    EXPECT_EQ(defaultsFor(c.value), listed(selected(c.value).figures));
  }
}

class VideoStandardsTest : public ServiceTest {};

TEST_F(VideoStandardsTest, TheRangeFollowsTheStagedStandard) {
  serve(R"(
mode     rw { rangeValid { "1080i/50", "720p/50", "625i/50" } }
position rw { rangeValid { 0..(vidStd::mode::spal - 1) } }
)");
  expectFacts({
      {"start()", "0"},
      // No standard is selected yet, so there is no range.
      {"get_range(0, 'position')", "Get range failed because of invalid bounds (-4)"},
      {"single_set_bulk(['mode', 'position'], ['1080i/50', '1900'])",
       "()",
       {"mode=1080i/50", "position=1900"}},
      {"get_range(0, 'position')", "([], [(0, 1919)])"},
      {"set(0, 'mode', '720p/50')", "()"},
      {"get_range(0, 'position')", "([], [(0, 1279)])"},
      {"single_get('position')", "'1900'"},
      {"commit(0)", "()", {"mode=720p/50", "position=1279"}},
      {"set_bulk(0, ['position', 'mode'], ['5000', '625i/50'])", "()"},
      {"get_range(0, 'position')", "([], [(0, 719)])"},
      {"commit(0)", "()", {"mode=625i/50", "position=719"}},
  });
}

TEST_F(VideoStandardsTest, TheSelectorIsAnInstanceOrAConstant) {
  serve(R"(
in     index { rangeValid { 1..2 } }
std    rw { index { in } }
own    rw { index { in } default { (vidStd::std::tlpf) } }
second rw { index { in } default { (vidStd::std[2]::tlpf) } }
plain  rw { default { (vidStd::std[ 1 ]::tlpf + 1) } }
board  rw { default { (vidStd::BOARD::tlpf) } rangeValid { 0..(vidStd::BOARD::tlpf) } }
wrong  rw { default (vidStd::NUMBER::tlpf > 0) { 1 } default { 7 } }
)",
        {"BOARD=525i/59.94", "NUMBER=3"});
  expectFacts({
      {"single_set_bulk(['std[1]', 'std[2]'], ['1080i/50', '720p/50'])",
       "()",
       {"own[1]=", "own[2]=", "plain=", "second[1]=", "second[2]=", "std[1]=1080i/50",
        "std[2]=720p/50"}},
      {"single_reset_bulk(['own[1]', 'own[2]', 'second[1]', 'plain', 'board', 'wrong'])",
       "()",
       {"board=525", "own[1]=1125", "own[2]=750", "plain=1126", "second[1]=750", "wrong=7"}},
      {"single_set('board', '600')", "()"},  // back to 525
      {"get_deps('own[1]')", "['std[1]']"},
      {"get_deps('second[1]')", "['std[2]']"},
      {"get_deps('plain')", "['std[1]']"},
      {"get_deps('board')", "['BOARD']"},
  });
}

TEST_F(VideoStandardsTest, AFigureThatIsNotThereIsUndefined) {
  serve(R"(
std      rw { }
fields   rw { ctrlValid (vidStd::std::f1 != 0) }
locked   rw { ctrlRO (vidStd::std::f1 == 0) }
lines    rw { rangeValid { 0..(vidStd::std::tlpf) } }
)");
  expectFacts({
      {"single_set_bulk(['fields', 'locked', 'lines'], ['a', 'b', '5000'])",
       "()",
       {"lines=5000", "locked=b"}},
      {"single_set('std', '1920x1080/60/P')", "()", {"std=1920x1080/60/P"}},  // has no lines
      {"single_set('std', '720p/50')", "()", {"lines=750", "std=720p/50"}},
      {"single_set_bulk(['fields', 'locked'], ['c', 'd'])", "()"},
      {"single_set('std', '1080i/50')", "()", {"fields=", "std=1080i/50"}},
      {"single_set_bulk(['fields', 'locked'], ['e', 'f'])", "()", {"fields=e", "locked=f"}},
  });
}

}  // namespace
