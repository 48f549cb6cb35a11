// Expression trees: an expression by its operators, as the engine groups them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "check/text/finding.h"
#include "check/text/source_text.h"
#include "deflang/expression/token.h"

/// An operand, or an operator with its two sides.
struct ExpressionNode {
  static constexpr size_t NONE = SIZE_MAX;

  const Token* token = nullptr;
  size_t left = NONE;  ///< the node of an operator's left side
  size_t right = NONE;
  size_t first = 0;        ///< the first token, counted from 0; that of its parentheses, too
  size_t last = 0;         ///< the last one
  bool isGrouped = false;  ///< whether it is in parentheses of its own

  [[nodiscard]] bool isOperand() const { return left == NONE; }
};

/// The nodes of one expression, each behind those of its sides, so that a loop is enough to walk
/// them however deep they are; the last is the whole.
class ExpressionTree {
 public:
  /// The tree of `expression`, which has to outlive it; no value for one that is not well formed.
  static std::optional<ExpressionTree> make(const Expression& expression);

  [[nodiscard]] const std::vector<ExpressionNode>& nodes() const { return nodes_; }
  [[nodiscard]] const ExpressionNode& node(size_t place) const { return nodes_[place]; }
  /// The bytes from the first of one node, with its parentheses, to the last of another; without
  /// extent where these are on different lines.
  [[nodiscard]] TextPlace place(const SourceText& source, const ExpressionNode& from,
                                const ExpressionNode& to) const;
  [[nodiscard]] TextPlace place(const SourceText& source, const ExpressionNode& node) const {
    return place(source, node, node);
  }

 private:
  explicit ExpressionTree(const Expression& expression) : expression_(expression) {}
  void addOperator(const Token* token, std::vector<size_t>& open);
  void findParentheses(ExpressionNode& node) const;

  Expression expression_;
  std::vector<ExpressionNode> nodes_;
};
