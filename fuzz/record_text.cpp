#include "fuzz/record_text.h"

namespace {

uint32_t linesOfPiece = 1;

std::string placeText(Position at) {
  return "@" + std::to_string(at.line / linesOfPiece) + ":" + std::to_string(at.column) + " ";
}

std::string quoted(std::string_view text) {
  return std::to_string(text.size()) + "'" + std::string(text) + "' ";
}

std::string expressionText(const Expression& expression) {
  std::string text = "(";
  for (const Token& token : expression.tokens) {
    text += placeText(token.at) + std::to_string(token.kind) + " " + std::to_string(token.number) +
            " " + quoted(token.text);
  }
  return text + ") ";
}

std::string rangeText(const RangeStatement& statement) {
  std::string text = "range " + expressionText(statement.condition);
  for (const RangeItem& item : statement.items) {
    text += placeText(item.at) + (item.text ? quoted(*item.text) : expressionText(item.lower)) +
            (item.upper ? ".." + expressionText(*item.upper) : "");
  }
  return text;
}

std::string defaultText(const DefaultStatement& statement) {
  return "default " + expressionText(statement.condition) + placeText(statement.at) +
         (statement.text ? quoted(*statement.text) : expressionText(statement.value));
}

std::string indexText(const IndexStatement& statement) {
  std::string text = "index ";
  for (const IndexName& name : statement) text += placeText(name.at) + quoted(name.name);
  return text;
}

std::string recordText(const ParameterRecord& record) {
  std::string text = quoted(record.name) + placeText({record.line, 0}) +
                     std::to_string(static_cast<int>(record.access)) + "\n";
  for (const IndexStatement& statement : record.indices) text += indexText(statement);
  for (const RangeStatement& statement : record.rangeValid) text += rangeText(statement);
  text += "doc ";
  for (const RangeStatement& statement : record.rangeDoc) text += rangeText(statement);
  text += "ro ";
  for (const Expression& expression : record.ctrlRO) text += expressionText(expression);
  text += "valid ";
  for (const Expression& expression : record.ctrlValid) text += expressionText(expression);
  for (const DefaultStatement& statement : record.defaults) text += defaultText(statement);
  for (const Translation& translation : record.valueChange) {
    text += placeText(translation.at) + quoted(translation.source) + quoted(translation.target);
  }
  return text + "\n";
}

}  // namespace

std::string recordsText(const ParameterRecords& records, uint32_t lines) {
  linesOfPiece = lines;
  std::string text;
  for (const ParameterRecord* record : records.inNameOrder()) text += recordText(*record);
  return text;
}
