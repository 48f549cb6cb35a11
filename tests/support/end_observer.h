// Where the daemon's reading of a text ended.
#pragma once

#include <string_view>

#include "deflang/text/definition_grammar.h"

/// Notes whether a text ends within a definition, which is no fault to the daemon.
class EndObserver final : public ReadingObserver {
 public:
  void onDefinition(const ParameterRecord& /*record*/, Position /*at*/) override {}
  void onKeyword(const ParameterRecord& /*record*/, std::string_view /*keyword*/,
                 Position /*at*/) override {}
  void onStatement(const ParameterRecord& /*record*/, std::string_view /*keyword*/, Position /*at*/,
                   Position /*end*/) override {}
  void onDefinitionEnd(const ParameterRecord& /*record*/, Position /*end*/) override {}
  Resumption onError(TextCursor& cursor, const ParameterRecord* /*record*/) override {
    isUnfinished = cursor.result() == PARSE_DONE;
    return RESUME_NOWHERE;
  }
  bool isUnfinished = false;
};
