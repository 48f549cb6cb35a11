#include "sw/parm/build/build_translations.h"

#include <map>
#include <string_view>

void buildTranslations(DefinitionDraft& draft) {
  // By source, of the first statement, which counts.
  std::map<std::string_view, StatementPlace> places;
  for (const auto& translation : draft.record().valueChange) {
    places.emplace(translation.source, translation.place);
    const auto [entry, isNew] =
        draft.parts.translations.emplace(translation.source, translation.target);
    if (!isNew && entry->second != translation.target) {
      draft.error(DIAG_MULTIPLE_TRANSLATIONS, translation.at);
    }
  }
  for (const auto& [source, place] : places) draft.lines.translations.push_back(place);
}
