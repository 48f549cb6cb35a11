#include "check/static/expression_tree.h"

#include <algorithm>

#include "check/static/token_place.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/postfix.h"

std::optional<ExpressionTree> ExpressionTree::make(const Expression& expression) {
  std::vector<const Token*> order;
  if (postfixOrder(expression, order) != 0) return std::nullopt;
  ExpressionTree tree(expression);
  std::vector<size_t> open;  // nodes that are no side of another one yet
  for (const Token* token : order) {
    if (isOperator(token->kind)) {
      tree.addOperator(token, open);
    } else {
      const auto at = static_cast<size_t>(token - expression.tokens.data());
      tree.nodes_.push_back({.token = token, .first = at, .last = at});
    }
    tree.findParentheses(tree.nodes_.back());
    open.push_back(tree.nodes_.size() - 1);
  }
  return tree;
}

void ExpressionTree::addOperator(const Token* token, std::vector<size_t>& open) {
  const size_t right = open.back();
  open.pop_back();
  const size_t left = open.back();
  open.pop_back();
  const auto at = static_cast<size_t>(token - expression_.tokens.data());
  nodes_.push_back({token, left, right, std::min({nodes_[left].first, nodes_[right].first, at}),
                    std::max({nodes_[left].last, nodes_[right].last, at})});
}

// A node is balanced, so that parentheses right before and behind it belong together.
void ExpressionTree::findParentheses(ExpressionNode& node) const {
  const std::span<const Token> tokens = expression_.tokens;
  while (node.first > 0 && node.last + 1 < tokens.size() &&
         tokens[node.first - 1].kind == TOKEN_OPEN && tokens[node.last + 1].kind == TOKEN_CLOSE) {
    --node.first;
    ++node.last;
    node.isGrouped = true;
  }
}

TextPlace ExpressionTree::place(const SourceText& source, const ExpressionNode& from,
                                const ExpressionNode& to) const {
  const Token& first = expression_.tokens[from.first];
  const TextPlace last = tokenPlace(source, expression_.tokens[to.last]);
  if (first.at.line != last.line) return {first.at.line, first.at.column, 0};
  return {first.at.line, first.at.column, last.column + last.length - first.at.column};
}
