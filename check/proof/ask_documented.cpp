#include "check/proof/questions.h"
#include "check/proof/setter.h"
#include "check/static/static_bounds.h"
#include "check/static/token_place.h"

namespace {

// Of a longer menu, the first are asked.
constexpr size_t MANY_ITEMS = 100;

// Values that somebody offers or writes and that no situation allows. What constants tell of the
// ranges needs no proof.
class Documented {
 public:
  Documented(Proof& proof, const Subject& subject) : proof_(proof), subject_(subject) {}

  void askMenus() {
    size_t left = MANY_ITEMS;
    for (const CompiledStatement& menu : subject_.rangeDoc) {
      const bool isTold = std::ranges::any_of(menu.items, [&](const CompiledItem& item) {
        return proof_.found("doc-outside", placeOf(item)) != nullptr;
      });
      if (isTold || !mayCount(menu)) continue;
      for (const CompiledItem& item : menu.items) {
        if (left-- == 0) return;
        askItem(menu, item);
      }
    }
  }

  void askTranslations() {
    const ParmDef& parm = subject_.parm->parm;
    if (!hasRunTimeRange(parm)) return;
    for (const Translation& translation : subject_.record->valueChange) {
      const std::string target(translation.target);
      if (translation.source == target || parm.translations().contains(target)) continue;
      if (!isNeverKept(countsIn(nullptr), target)) continue;
      proof_.add(
          {"translation", targetPlace(proof_.text().checked().source, translation),
           "no range allows the target \"" + target +
               "\" in any situation, so that it is corrected; write a value that is allowed"});
    }
  }

 private:
  // That the parameter is there, and a menu is told.
  [[nodiscard]] Goal countsIn(const CompiledStatement* menu) const {
    Goal goal{&subject_};
    goal.dependsOnRanges = true;
    requirePresence(goal);
    if (menu != nullptr && menu->condition) {
      goal.clauses.push_back({{&*menu->condition, WANT_TRUE}});
    }
    return goal;
  }

  bool mayCount(const CompiledStatement& menu) {
    return proof_.findHealthy(countsIn(&menu)).verdict == VERDICT_POSSIBLE;
  }

  // Of a span, its ends stand for all: some of what is between may be allowed all the same.
  void askItem(const CompiledStatement& menu, const CompiledItem& item) {
    const Goal counts = countsIn(&menu);
    for (const std::string& value : constantValues(item)) {
      if (!isNeverKept(counts, value)) continue;
      Finding finding{"doc-outside", placeOf(item),
                      "the menu offers \"" + value + "\", which no situation allows" +
                          (menu.condition ? " in which it is told" : "") +
                          "; offer only what is allowed"};
      finding.related.push_back(
          {placeOf(*subject_.rangeValid.front().layout), "the allowed values"});
      proof_.add(std::move(finding));
      return;
    }
  }

  static std::vector<std::string> constantValues(const CompiledItem& item) {
    if (item.text) return {*item.text};
    std::vector<std::string> values;
    forEachExpression(item, [&](const CompiledExpression& end) {
      if (const std::optional<std::string> value = constantText(end)) values.push_back(*value);
    });
    return values;
  }

  // Whether it is proved that no situation keeps `value`.
  bool isNeverKept(const Goal& counts, const std::string& value) {
    std::string wanted = value;
    subject_.parm->parm.translateTwice(wanted);
    const HealthyResult result = proof_.findHealthy(counts, [&](const IndexTuple& indices) {
      return valueKept(*subject_.parm, indices, value) == wanted;
    });
    return result.atRest() == VERDICT_IMPOSSIBLE;
  }

  Proof& proof_;
  const Subject& subject_;
};

}  // namespace

void askDocumented(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    const bool isAsked = subject.parm != nullptr && subject.parm->parm.mode() != MODE_NEVER &&
                         !subject.rangeValid.empty() && !explained.explains(subject.rangeValid) &&
                         explained.explainedText(subject) == nullptr;
    if (!isAsked) return;
    Documented documented(proof, subject);
    documented.askMenus();
    documented.askTranslations();
  });
}
