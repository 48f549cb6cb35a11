#include "bench/device.h"

#include <cassert>
#include <functional>

#include "deflang/text/definition_grammar.h"
#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

namespace {

// The bodies of eight definitions of which each refers to those before it by its first name.
constexpr std::string_view MIX[] = {
    R"({ rangeValid { "off", "auto", "manual" } default { "auto" } })",
    R"({ rangeValid { 1..1000 } default { 100 } })",
    R"({ rangeValid { 0..255 } default { 2 } })",
    R"({ rangeValid { 0..(@1 - 1) } default { 0 } })",
    R"({ ctrlRO ( @0 == "off" ) rangeValid { -100..100 } default { 0 } })",
    R"({ ctrlValid ( @0 != "off" && @1 > 10 ) rangeValid { 0..15, 32..47 } default { 8 } })",
    R"({ rangeValid ( @0 == "auto" ) { 0..10 } default ( @0 == "auto" ) { 5 } default { (@1 / 2) } })",
    R"({ valueChange { "on" -> 1 } valueChange { "off" -> 0 } rangeValid { 0, 1 } })",
};

std::string nameOf(int64_t number) { return "p" + std::to_string(number); }

// `body` with each "@" and digit replaced by the name of that definition of the same eight.
std::string referring(std::string_view body, int64_t first) {
  std::string text;
  for (size_t i = 0; i < body.size(); ++i) {
    if (body[i] == '@') {
      text += nameOf(first + (body[++i] - '0'));
    } else {
      text += body[i];
    }
  }
  return text;
}

constexpr std::string_view LIMIT = "limit rw { rangeValid { 1..1000000 } default { 100 } }\n";
constexpr std::string_view FOLLOWS = "rangeValid { (limit)..(limit + 10) } default { (limit) } }\n";

}  // namespace

std::string mixedText(int64_t count) {
  const auto kinds = static_cast<int64_t>(std::size(MIX));
  std::string text;
  for (int64_t i = 0; i < count; ++i) {
    text +=
        nameOf(i) + " rw " + referring(MIX[static_cast<size_t>(i % kinds)], i - i % kinds) + "\n";
  }
  return text;
}

std::string fanText(int64_t count) {
  std::string text(LIMIT);
  for (int64_t i = 0; i < count; ++i) text.append(nameOf(i)).append(" rw { ").append(FOLLOWS);
  return text;
}

std::string indexText(int64_t count) {
  return std::string(LIMIT)
      .append("channel index { rangeValid { 1.." + std::to_string(count) + " } }\n")
      .append("p rw { index { channel } ")
      .append(FOLLOWS);
}

DefinitionText read(std::string_view text) {
  DefinitionText definitions;
  const int result = readDefinitionText(linesIn(text), definitions);
  assert(result == PARSE_DONE);
  return definitions;
}

void build(const DefinitionText& text, Database& database) {
  DiagnosticCollector diagnostics;
  const int result = buildDefinitions(diagnostics, text.records, text.lines, false, database);
  assert(result == 0);
}
