// Expression text: a program written as an expression again, for people to read.
//
//   (level>(3)&&mode=="auto")   becomes   level > 3 && mode == "auto"
#pragma once

#include <string>

#include "deflang/expression/program.h"

/// The expression that `program` was compiled from, whose names have their slots in `variables`:
/// with one blank around each operator, numbers in decimal and no more parentheses than it needs.
/// Compiled again, it is the same program. An empty program gives the empty text. Takes time linear
/// in the text that it gives times the depth of its parentheses. May raise std::bad_alloc.
std::string expressionText(const Program& program, const Variables& variables);

/// `text` as a definition text quotes it.
std::string quotedText(const std::string& text);
