#include "sw/parm/build/build_translations.h"

void buildTranslations(DefinitionDraft& draft) {
  for (const Translation& translation : draft.record().valueChange) {
    const auto [entry, isNew] =
        draft.parts.translations.emplace(translation.source, translation.target);
    if (!isNew && entry->second != translation.target) {
      draft.error(DIAG_MULTIPLE_TRANSLATIONS, translation.at);
    }
  }
}
