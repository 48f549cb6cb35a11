#include "doc/evaluator.h"

#include "evaluator_files.h"

std::string_view evaluatorScript() { return EVALUATOR_JS; }
