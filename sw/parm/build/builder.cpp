#include "sw/parm/build/builder.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sw/parm/build/build_conditions.h"
#include "sw/parm/build/build_context.h"
#include "sw/parm/build/build_defaults.h"
#include "sw/parm/build/build_indices.h"
#include "sw/parm/build/build_ranges.h"
#include "sw/parm/build/build_translations.h"
#include "sw/parm/build/check_only_registry.h"
#include "sw/parm/build/definition_draft.h"
#include "sw/parm/build/reference_check.h"

namespace {

AccessMode modeOf(AccessCode access) {
  switch (access) {
    case ACCESS_WO:
      return MODE_WRITE_ONLY;
    case ACCESS_ROSTRICT:
      return MODE_ROSTRICT;
    default:
      return MODE_NORMAL;
  }
}

AccessWord wordOf(AccessCode access) {
  switch (access) {
    case ACCESS_RO:
      return WORD_RO;
    case ACCESS_ROSTRICT:
      return WORD_ROSTRICT;
    case ACCESS_WO:
      return WORD_WO;
    default:
      return WORD_RW;
  }
}

// The order of the steps is the order of the diagnostics. `common` takes what an index and a
// parameter have, `own` what only a parameter has; of a parameter they are one draft.
void buildStatements(DefinitionDraft& common, DefinitionDraft& own) {
  buildRangeValid(common);
  buildRangeDoc(own);
  buildReadOnlyConditions(own);
  buildValidityConditions(common);
  buildDefaults(own);
  buildTranslations(common);
}

class Builder {
 public:
  explicit Builder(BuildContext& context) : context_(context) {}

  void build() {
    const std::vector<const ParameterRecord*> records = context_.records().inNameOrder();
    for (const ParameterRecord* record : records) {
      if (record->access == ACCESS_INDEX) buildIndex(*record);
    }
    checkIndexReferences();
    for (const ParameterRecord* record : records) {
      if (record->access != ACCESS_INDEX && record->access != ACCESS_NONE) buildParm(*record);
    }
    finish();
  }

 private:
  // The expressions of an index, to be checked once every index is there.
  struct IndexExpressions {
    const ParameterRecord& record;
    std::vector<const Expression*> expressions;
  };

  void buildIndex(const ParameterRecord& record) {
    DefinitionDraft draft(context_, record);
    // Statements that only a parameter uses are built for their diagnostics alone, in a draft that
    // is dropped: its names do not become variables of the index.
    DefinitionDraft unused(context_, record);
    warnAboutIndices(draft);
    buildStatements(draft, unused);
    IndexExpressions& expressions =
        indexExpressions_.emplace_back(IndexExpressions{record, draft.kept()});
    expressions.expressions.insert(expressions.expressions.end(), unused.kept().begin(),
                                   unused.kept().end());
    // A definition whose name is taken is dropped.
    auto index = std::make_unique<IndexDef>(std::move(draft.parts));
    if (context_.registry().registerIndex(std::move(index)) == 0) {
      context_.registry().keepIndexLines(record.name, draft.lines);
    }
  }

  void checkIndexReferences() {
    for (const IndexExpressions& index : indexExpressions_) {
      checkReferences(index.record, index.expressions, context_);
    }
  }

  void buildParm(const ParameterRecord& record) {
    DefinitionDraft draft(context_, record);
    draft.parm.mode = modeOf(record.access);
    draft.parm.access = wordOf(record.access);
    buildIndices(draft);
    buildStatements(draft, draft);
    checkReferences(record, draft.kept(), context_);
    // A definition whose name is taken is dropped.
    auto parm = std::make_unique<ParmDef>(std::move(draft.parts), std::move(draft.parm));
    if (context_.registry().registerParm(std::move(parm)) == 0) {
      context_.registry().keepParmLines(record.name, draft.lines);
    }
  }

  void finish() {
    std::string name;
    const int result = context_.registry().finish(name);
    if (result != 0) context_.reportLine("Error creating parameter definitions: " + name);
    context_.note(result);
  }

  BuildContext& context_;
  std::vector<IndexExpressions> indexExpressions_;
};

}  // namespace

int buildDefinitions(DiagnosticCollector& diagnostics, const ParameterRecords& records,
                     const LineTexts& lines, bool checkOnly, DefinitionRegistry& registry) {
  CheckOnlyRegistry scratch(registry);
  DefinitionRegistry& used = checkOnly ? scratch : registry;
  used.keepSources(records.sources());
  BuildContext context(diagnostics, records, lines, used, checkOnly);
  Builder(context).build();
  return context.result();
}
