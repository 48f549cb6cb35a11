#include "doc/sentence.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "base/number.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/vid_std_name.h"
#include "srcs/vid_std_figures.h"

namespace {

// The words of an operator, with the blanks around it. A comparison has a truth value.
struct OperatorWords {
  int32_t code;
  std::string_view words;
  bool isTruth;
};
constexpr std::array OPERATORS = {
    OperatorWords{OP_LOGICAL_OR, " or ", true},
    OperatorWords{OP_LOGICAL_AND, " and ", true},
    OperatorWords{OP_BIT_OR, " bit-or ", false},
    OperatorWords{OP_BIT_XOR, " bit-xor ", false},
    OperatorWords{OP_BIT_AND, " bit-and ", false},
    OperatorWords{OP_EQUAL, " is ", true},
    OperatorWords{OP_NOT_EQUAL, " is not ", true},
    OperatorWords{OP_LESS, " is less than ", true},
    OperatorWords{OP_GREATER, " is greater than ", true},
    OperatorWords{OP_LESS_EQUAL, " is at most ", true},
    OperatorWords{OP_GREATER_EQUAL, " is at least ", true},
    OperatorWords{OP_SHIFT_LEFT, " shifted left by ", false},
    OperatorWords{OP_SHIFT_RIGHT, " shifted right by ", false},
    OperatorWords{OP_ADD, " + ", false},
    OperatorWords{OP_SUBTRACT, " − ", false},
    OperatorWords{OP_MULTIPLY, " × ", false},
    OperatorWords{OP_DIVIDE, " ÷ ", false},
    OperatorWords{OP_REMAINDER, " modulo ", false},
    OperatorWords{OP_CONTAINS, " contains ", true},
};

struct FigureWords {
  std::string_view name;
  std::string_view words;
};
constexpr std::array FIGURES = {
    FigureWords{"spal", "active samples"},
    FigureWords{"alpf", "active lines"},
    FigureWords{"sptl", "total samples"},
    FigureWords{"tlpf", "total lines"},
    FigureWords{"fr", "frame rate"},
    FigureWords{"clkDiv", "division by 1.001"},
    FigureWords{"f0", "line of F = 0"},
    FigureWords{"f1", "line of F = 1"},
    FigureWords{"f1v1", "first blanking line of field 1"},
    FigureWords{"f0v0", "first active line of field 1"},
    FigureWords{"f0v1", "first blanking line of field 2"},
    FigureWords{"f1v0", "first active line of field 2"},
    FigureWords{"f0sw", "first switch line"},
    FigureWords{"f1sw", "second switch line"},
};

const OperatorWords* wordsOf(int32_t kind) {
  const auto* const found = std::ranges::find(OPERATORS, kind, &OperatorWords::code);
  return found == OPERATORS.end() ? nullptr : found;
}

// A node of the expression's tree. The operands of an operator are nodes before it.
struct Node {
  Program::Step step;
  size_t left = 0;
  size_t right = 0;
};

// Writes a tree from left to right, with a list of what is still to be said in place of a
// recursion: expressions may be as deep as they are long.
class SentenceWriter {
 public:
  SentenceWriter(const Program& program, const Variables& variables)
      : program_(program), variables_(variables) {
    std::vector<size_t> operands;
    for (const Program::Step& step : program.steps()) {
      Node node = {step};
      if (wordsOf(step.kind) != nullptr) {
        node.right = operands.back();
        operands.pop_back();
        node.left = operands.back();
        operands.pop_back();
      }
      operands.push_back(nodes_.size());
      nodes_.push_back(node);
    }
  }

  Sentence write(bool isTruth) {
    if (nodes_.empty()) return {};
    later_.push_back({nodes_.size() - 1, isTruth, {}});
    while (!later_.empty()) {
      const Later next = later_.back();
      later_.pop_back();
      if (!next.words.empty()) {
        say(next.words);
      } else if (next.isTruth) {
        sayTruth(next.node);
      } else {
        sayValue(next.node);
      }
    }
    return std::move(sentence_);
  }

 private:
  struct Later {
    size_t node;
    bool isTruth;
    std::string_view words;  // in place of a node
  };

  void say(std::string_view words) {
    if (sentence_.empty() || sentence_.back().kind != PART_OF_WORDS) sentence_.push_back({});
    sentence_.back().text += words;
  }
  void sayLater(std::string_view words) { later_.push_back({0, false, words}); }

  // Adds a node to what is said later, which is said from the last to the first.
  void nodeLater(size_t node, bool isTruth, bool hasParentheses) {
    if (hasParentheses) sayLater(")");
    later_.push_back({node, isTruth, {}});
    if (hasParentheses) sayLater("(");
  }

  void sayTruth(size_t place) {
    const Node& node = nodes_[place];
    const OperatorWords* const words = wordsOf(node.step.kind);
    if (words == nullptr || !words->isTruth) return sayTruthOfValue(place);
    if (words->code == OP_LOGICAL_AND || words->code == OP_LOGICAL_OR) {
      const int32_t other = words->code == OP_LOGICAL_AND ? OP_LOGICAL_OR : OP_LOGICAL_AND;
      nodeLater(node.right, true, nodes_[node.right].step.kind == other);
      sayLater(words->words);
      nodeLater(node.left, true, nodes_[node.left].step.kind == other);
      return;
    }
    const std::optional<bool> expected = truthExpected(node);
    if (expected) {
      sayLater(*expected ? " is true" : " is false");
      return nodeLater(node.left, true, true);
    }
    operandLater(node.right);
    sayLater(words->words);
    operandLater(node.left);
  }

  // Of "(a == 1) == 0": that the left side, which is true or not, shall not be.
  [[nodiscard]] std::optional<bool> truthExpected(const Node& node) const {
    const OperatorWords* const left = wordsOf(nodes_[node.left].step.kind);
    const Program::Step& right = nodes_[node.right].step;
    // What || gives is the side that decides, which need not be 1.
    if (left == nullptr || !left->isTruth || left->code == OP_LOGICAL_OR) return {};
    if (right.kind != TOKEN_NUMBER || (right.value != 0 && right.value != 1)) return {};
    if (node.step.kind != OP_EQUAL && node.step.kind != OP_NOT_EQUAL) return {};
    return (right.value == 1) == (node.step.kind == OP_EQUAL);
  }

  // A side of a comparison.
  void operandLater(size_t place) { nodeLater(place, false, false); }

  void sayTruthOfValue(size_t place) {
    const Program::Step& step = nodes_[place].step;
    if (step.kind == TOKEN_NUMBER) return say(step.value != 0 ? "always" : "never");
    if (step.kind == TOKEN_STRING) return say(textOf(step).empty() ? "never" : "always");
    sayLater(" is not 0");
    nodeLater(place, false, false);
  }

  void sayValue(size_t place) {
    const Node& node = nodes_[place];
    const OperatorWords* const words = wordsOf(node.step.kind);
    if (words == nullptr) return sayOperand(node.step);
    if (words->isTruth) {
      sayLater(", else 0)");
      nodeLater(place, true, false);
      say("(1 if ");
      return;
    }
    const int level = precedence(node.step.kind);
    nodeLater(node.right, false, levelOf(node.right) >= level);
    sayLater(words->words);
    nodeLater(node.left, false, levelOf(node.left) > level);
  }

  // How loosely a node binds as a value; one that is true or not has parentheses of its own.
  [[nodiscard]] int levelOf(size_t place) const {
    const OperatorWords* const words = wordsOf(nodes_[place].step.kind);
    return words == nullptr || words->isTruth ? -1 : precedence(words->code);
  }

  [[nodiscard]] const std::string& textOf(const Program::Step& step) const {
    return program_.texts()[static_cast<size_t>(step.value)];
  }

  void sayOperand(const Program::Step& step) {
    if (step.kind == TOKEN_NUMBER) {
      sentence_.push_back({PART_OF_NUMBER, numberText(step.value)});
    } else if (step.kind == TOKEN_STRING) {
      sentence_.push_back({PART_OF_TEXT, textOf(step)});
    } else {
      sayName(variables_[static_cast<uint32_t>(step.value)]);
    }
  }

  void sayName(std::string_view name) {
    const std::optional<VidStdName> figure = splitVidStdName(name);
    if (!figure) {
      sentence_.push_back({PART_OF_NAME, std::string(name)});
      return;
    }
    const std::string_view figureName = figure->figure->name;
    const auto* const words = std::ranges::find(FIGURES, figureName, &FigureWords::name);
    sentence_.push_back({PART_OF_NAME, std::string(figure->parameter)});
    say("’s ");
    say(words == FIGURES.end() ? figureName : words->words);
  }

  const Program& program_;
  const Variables& variables_;
  std::vector<Node> nodes_;
  std::vector<Later> later_;
  Sentence sentence_;
};

}  // namespace

Sentence conditionSentence(const Program& condition, const Variables& variables) {
  if (!condition.usesVariables() && condition.isTrue(SituationView())) return {};
  return SentenceWriter(condition, variables).write(true);
}

Sentence valueSentence(const Program& value, const Variables& variables) {
  return SentenceWriter(value, variables).write(false);
}

std::string baseNameOf(const std::string& name) { return name.substr(0, name.find('[')); }

std::string plainText(const Sentence& sentence) {
  std::string text;
  for (const SentencePart& part : sentence) {
    text += part.kind == PART_OF_TEXT ? "“" + part.text + "”" : part.text;
  }
  return text;
}
