// Fuzzes names: the first line of the input is a name as a client sends it, each further line an
// index list. What is taken apart and put together again must be what it was.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/number.h"
#include "database/gather.h"
#include "deflang/expression/vid_std_name.h"
#include "deflang/text/expression_grammar.h"
#include "deflang/text/statement_grammar.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "srcs/vid_std_figures.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/parm_name.h"
#include "tests/support/lines.h"

namespace {

constexpr std::string_view WHITE_SPACE = " \t\n\v\f\r";
constexpr std::string_view WORD_ENDS = "()|&^=!<>+-*/%$[]\"";
constexpr std::string_view FIGURES[] = {"spal", "alpf", "sptl", "tlpf", "fr",   "clkDiv", "f0",
                                        "f1",   "f0v0", "f0v1", "f1v0", "f1v1", "f0sw",   "f1sw"};

bool holdsAny(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

// The normal form of a name says what the name says.
void expectNormalForm(std::string_view name) {
  const ParmName parts = splitName(name);
  demand(baseName(name) == parts.base, "two base names of ", name);
  demand(name.starts_with(parts.base) && !holdsAny(parts.base, "["), "no base name of ", name);
  const std::string normal = fullName(parts.base, parts.indices);
  demand(normal == parts.base + indexSuffix(parts.indices), "two full names of ", name);
  const ParmName again = splitName(normal);
  demand(again.base == parts.base && again.indices == parts.indices,
         "not in normal form: ", normal);
  const auto closed = std::count(name.begin(), name.end(), ']');
  demand(parts.indices.size() <= static_cast<size_t>(closed), "more indices than brackets: ", name);
}

// A name in an expression is one variable, with its index values trimmed.
void expectVariable(std::string_view name) {
  const ParmName parts = splitName(name);
  if (parts.base.empty() || wholeNumber(parts.base)) return;
  if (holdsAny(parts.base, WORD_ENDS) || holdsAny(parts.base, WHITE_SPACE)) return;
  const std::string line = "(" + fullName(parts.base, parts.indices) + ")";
  if (line.find('\0') != std::string::npos) return;  // no text has it
  const std::vector<std::string> pieces = {line};
  Arena memory;
  TextCursor cursor(pulledFrom(pieces), memory);
  Expression expression;
  demand(readExpression(cursor, expression) && cursor.rest().empty(), "not read: ", line);
  const std::span<const Token> tokens = expression.tokens;
  demand(tokens.size() == 1 && tokens.front().kind == TOKEN_VARIABLE, "no variable: ", line);
  const ParmName read = splitName(tokens.front().text);
  demand(read.base == parts.base && read.indices.size() == parts.indices.size(), "became ",
         tokens.front().text);
  for (size_t i = 0; i < read.indices.size(); ++i) {
    const std::string& value = parts.indices[i];
    const size_t first = std::min(value.find_first_not_of(WHITE_SPACE), value.size());
    const size_t last = value.find_last_not_of(WHITE_SPACE) + 1;
    demand(read.indices[i] == value.substr(first, std::max(first, last) - first),
           "not trimmed: ", read.indices[i]);
  }
}

// A video standard name is "vidStd::", a parameter without "::" and "::" with a figure.
void expectVidStdName(std::string_view name) {
  const std::optional<VidStdName> parts = splitVidStdName(name);
  bool isOne = false;
  for (const std::string_view figure : FIGURES) {
    const std::string end = "::" + std::string(figure);
    if (name.size() < 8 + end.size() || !name.starts_with("vidStd::") || !name.ends_with(end)) {
      continue;
    }
    const std::string_view parameter = name.substr(8, name.size() - 8 - end.size());
    // The first "::" behind the prefix ends the parameter, also one that the figure's signs join.
    if (name.substr(8).find("::") != parameter.size()) continue;
    isOne = true;
    demand(parts && parts->parameter == parameter && parts->figure->name == figure,
           "not taken apart: ", name);
  }
  demand(parts.has_value() == isOne, "no video standard name: ", name);
  demand(referencedName(name) == (parts ? parts->parameter : name), "refers elsewhere: ", name);
}

// The list as an index statement; names that no statement can hold are left out.
std::vector<std::string> listedNames(std::string_view line) {
  std::vector<std::string> names;
  std::string name;
  for (const char c : line) {
    if (std::string_view(" \t\n\v\f\r,}").find(c) == std::string_view::npos) {
      name += c;
    } else if (!name.empty()) {
      names.push_back(std::exchange(name, {}));
    }
  }
  if (!name.empty()) names.push_back(name);
  return names;
}

void expectIndexList(const std::vector<std::string>& names) {
  if (names.empty()) return;
  std::string line = "{";
  for (const std::string& name : names) line += (line.size() > 1 ? ", " : " ") + name;
  line += " }";
  if (line.find('\0') != std::string::npos) return;
  const std::vector<std::string> pieces = {line};
  Arena memory;
  TextCursor cursor(pulledFrom(pieces), memory);
  IndexStatement read;
  demand(readIndexList(cursor, read) && cursor.rest().empty(), "not read: ", line);
  demand(read.size() == names.size(), "another number of indices: ", line);
  for (size_t i = 0; i < read.size(); ++i) {
    demand(read[i].name == names[i] && read[i].at.line == 1, "another index: ", line);
    demand(line.substr(read[i].at.column, names[i].size()) == names[i], "stands elsewhere: ", line);
  }
}

DefinitionParts named(const char* name) {
  DefinitionParts parts;
  parts.name = name;
  return parts;
}

// Five indices, and parameters that have some of them.
class IndexedParms {
 public:
  IndexedParms() {
    for (const char* name : {"a", "b", "c", "d", "e"}) {
      indices_.push_back(std::make_unique<IndexDef>(named(name)));
    }
  }

  // The parameter whose indices the first characters of `names` choose, each at most once.
  [[nodiscard]] std::unique_ptr<ParmDef> parmOf(const std::vector<std::string>& names) const {
    ParmParts parts;
    for (const std::string& name : names) {
      const IndexDef* index =
          indices_[static_cast<unsigned char>(name.front()) % indices_.size()].get();
      const auto end = parts.indices.end();
      if (std::find(parts.indices.begin(), end, index) == end) parts.indices.push_back(index);
    }
    return std::make_unique<ParmDef>(named("p"), std::move(parts));
  }

 private:
  std::vector<std::unique_ptr<IndexDef>> indices_;
};

size_t placeOf(const ParmDef& parm, const IndexDef* index) {
  const auto found = std::find(parm.indices().begin(), parm.indices().end(), index);
  return static_cast<size_t>(found - parm.indices().begin());
}

// What an instance of `from` shares with `to`: the values of the indices that both have, in the
// order of `to`. Where both have the same indices in any order, the way back gives the instance.
void expectShared(const ParmDef& from, const ParmDef& to) {
  IndexTuple values;
  for (size_t i = 0; i < from.indices().size(); ++i) values.push_back("v" + std::to_string(i));
  const IndexTuple shared = sharedIndices(from, values, to);
  size_t common = 0;
  for (const IndexDef* index : to.indices()) {
    const size_t place = placeOf(from, index);
    if (place == values.size()) continue;
    demand(common < shared.size() && shared[common] == values[place], "another index value");
    ++common;
  }
  demand(common == shared.size(), "a value of an index that only one of them has");
  if (common == values.size() && common == to.indices().size()) {
    demand(sharedIndices(to, shared, from) == values, "the way back leads elsewhere");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text = textOf(data, size);
  const std::string_view name = text.substr(0, text.find('\n'));
  expectNormalForm(name);
  expectVariable(name);
  expectVidStdName(name);
  static const IndexedParms parms;
  std::unique_ptr<ParmDef> before = parms.parmOf({});
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::vector<std::string> names = listedNames(line);
    expectIndexList(names);
    std::unique_ptr<ParmDef> parm = parms.parmOf(names);
    expectShared(*before, *parm);
    expectShared(*parm, *before);
    before = std::move(parm);
  }
  return 0;
}
