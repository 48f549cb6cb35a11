#include "sw/parm/build/build_translations.h"

#include <map>
#include <string_view>

void buildTranslations(DefinitionDraft& draft) {
  std::map<std::string_view, uint32_t> lines;  // by source, of the first statement, which counts
  for (const auto& translation : draft.record().valueChange) {
    lines.emplace(translation.source, translation.line);
    const auto [entry, isNew] =
        draft.parts.translations.emplace(translation.source, translation.target);
    if (!isNew && entry->second != translation.target) {
      draft.error(DIAG_MULTIPLE_TRANSLATIONS, translation.at);
    }
  }
  for (const auto& [source, line] : lines) draft.lines.translations.push_back(line);
}
