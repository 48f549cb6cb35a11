#include "check/read_text.h"

#include "deflang/text/definition_grammar.h"

namespace {

class LayoutObserver final : public ReadingObserver {
 public:
  LayoutObserver(ReadText& text, Findings& findings) : text_(text), findings_(findings) {}

  void onDefinition(const ParameterRecord& record, Position at) override {
    text_.layout.definitions.push_back({&record, at, {at, at}});
  }
  void onKeyword(const ParameterRecord& /*record*/, std::string_view /*keyword*/,
                 Position /*at*/) override {}
  void onStatement(const ParameterRecord& /*record*/, std::string_view keyword, Position at,
                   Position end) override {
    text_.layout.definitions.back().statements.push_back({keyword, {at, end}});
  }
  void onDefinitionEnd(const ParameterRecord& /*record*/, Position end) override {
    text_.layout.definitions.back().extent.to = end;
  }
  Resumption onError(TextCursor& cursor, const ParameterRecord* /*record*/) override {
    if (cursor.result() == PARSE_DONE) return RESUME_NOWHERE;
    const Position at = cursor.position();
    text_.isBroken = true;
    findings_.add({"syntax", {at.line, at.column, 0}, parseResultMessage(cursor.result())});
    return RESUME_NOWHERE;
  }

 private:
  ReadText& text_;
  Findings& findings_;
};

}  // namespace

void readText(const SourceText& source, ReadText& text, Findings& findings) {
  LayoutObserver observer(text, findings);
  uint32_t number = 0;
  const auto nextLine = [&, next = linesIn(source.text())](std::string_view& line) mutable {
    if (!next(line)) return false;
    text.definitions.lines.add(++number, line);
    return true;
  };
  TextCursor cursor(nextLine, text.definitions.records.arena());
  static_cast<void>(readDefinitions(cursor, text.definitions.records, &observer));
}
