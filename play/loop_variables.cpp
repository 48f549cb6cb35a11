#include "play/loop_variables.h"

#include <algorithm>
#include <cassert>
#include <span>

void LoopVariables::add(const std::vector<std::string>& names) {
  for (const std::string& name : names) variables_.emplace_back(name, std::string());
}

const std::string* LoopVariables::find(const std::string& name) const {
  const auto found = std::ranges::find_if(
      variables_, [&](const auto& variable) { return variable.first == name; });
  return found == variables_.end() ? nullptr : &found->second;
}

std::string LoopVariables::valueOf(const SessionWord& word, size_t first) const {
  std::string text;
  for (const WordPiece& piece : std::span(word.pieces).subspan(first)) {
    const std::string* const value = piece.isVariable ? find(piece.text) : &piece.text;
    assert(value != nullptr);
    text += *value;
  }
  return text;
}

std::string LoopVariables::shown() const {
  std::string text;
  for (const auto& [name, value] : variables_) {
    if (!text.empty()) text += ' ';
    text += spelledChange(std::string(name).append("=").append(value));
  }
  return text;
}
