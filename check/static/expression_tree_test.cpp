#include "check/static/expression_tree.h"

#include <gtest/gtest.h>

#include "deflang/text/expression_grammar.h"

namespace {

// Each node of an expression as the bytes that it has, operands first.
std::vector<std::string> nodesOf(const std::string& text) {
  const SourceText source("text", text);
  Arena arena;
  TextCursor cursor(linesIn(source.text()), arena);
  Expression expression;
  EXPECT_TRUE(readExpression(cursor, expression)) << text;
  const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
  std::vector<std::string> nodes;
  if (!tree) return nodes;
  for (const ExpressionNode& node : tree->nodes()) {
    const TextPlace at = tree->place(source, node);
    nodes.push_back(source.text().substr(at.column, at.length) +
                    (node.isGrouped ? " grouped" : ""));
  }
  return nodes;
}

TEST(ExpressionTree, GroupsAsTheEngineDoes) {
  using Nodes = std::vector<std::string>;
  EXPECT_EQ(nodesOf("(a + b * c)"), (Nodes{"a", "b", "c", "b * c", "a + b * c"}));
  EXPECT_EQ(nodesOf("((a + b) * c)"), (Nodes{"a", "b", "(a + b) grouped", "c", "(a + b) * c"}));
  EXPECT_EQ(nodesOf("((a)  - (b))"), (Nodes{"(a) grouped", "(b) grouped", "(a)  - (b)"}));
  EXPECT_EQ(nodesOf("(((a - b)))"), (Nodes{"a", "b", "((a - b)) grouped"}));
  EXPECT_EQ(nodesOf("(g[ 1 ][x] == \"y z\")"),
            (Nodes{"g[ 1 ][x]", "\"y z\"", "g[ 1 ][x] == \"y z\""}));
  EXPECT_EQ(nodesOf("(vidStd::g [1]::spal - -3)"),
            (Nodes{"vidStd::g [1]::spal", "-3", "vidStd::g [1]::spal - -3"}));
  EXPECT_EQ(nodesOf("(a +)"), Nodes{});
}

}  // namespace
