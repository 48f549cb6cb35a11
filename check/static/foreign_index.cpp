#include <algorithm>
#include <set>
#include <unordered_map>

#include "base/number.h"
#include "check/static/expression_tree.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "sw/parm/parm_name.h"

namespace {

bool lists(IndexStatement list, std::string_view name) {
  return std::ranges::find(list, name, &IndexName::name) != list.end();
}

// Whether a value can be written in brackets, so that it is read as it is.
bool isWritable(std::string_view value) {
  constexpr std::string_view SIGNS = "[](){}\"#, \t";
  return !value.empty() && value.find_first_of(SIGNS) == std::string_view::npos;
}

// A value of an index, as an example: the first that is written down and can be in brackets.
std::optional<std::string> exampleOf(const NamedDefinition* index) {
  if (index == nullptr) return std::nullopt;
  for (const RangeStatement& range : index->record->rangeValid) {
    for (const RangeItem& item : range.items) {
      if (item.text && isWritable(*item.text)) return std::string(*item.text);
      const std::span<const Token> tokens = item.lower.tokens;
      if (tokens.size() == 1 && tokens.front().kind == TOKEN_NUMBER) {
        return numberText(tokens.front().number);
      }
    }
  }
  return std::nullopt;
}

class ForeignIndexCheck {
 public:
  explicit ForeignIndexCheck(StaticContext& context) : context_(context) {
    for (const NamedDefinition& definition : context.definitions()) {
      if (definition.isIndex()) continue;
      for (const IndexName& index : indicesOf(*definition.record)) {
        indexed_[index.name].push_back(&definition);
      }
    }
  }

  void check(const NamedDefinition& definition) {
    std::set<std::string_view> told;
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      std::optional<bool> isWellFormed;  // once it is asked for
      for (const Token& token : expression.tokens) {
        if (token.kind != TOKEN_VARIABLE) continue;
        const Reference reference = context_.referenceOf(token);
        if (reference.named == nullptr) continue;
        if (!isWellFormed) isWellFormed = ExpressionTree::make(expression).has_value();
        if (!*isWellFormed) return;
        std::optional<Finding> finding = definition.isIndex() ? foundInIndex(definition, reference)
                                                              : foundIn(definition, reference);
        if (!finding) continue;
        if (told.insert(reference.name).second) context_.add(*std::move(finding));
        context_.explained().add(token.at);
      }
    });
  }

 private:
  using Result = std::optional<Finding>;

  // In an expression of a parameter.
  [[nodiscard]] Result foundIn(const NamedDefinition& definition,
                               const Reference& reference) const {
    if (reference.named->isIndex()) return std::nullopt;
    if (reference.isQualified()) return foundInValues(reference);
    const IndexName* const missing = missingIn(definition, *reference.named);
    if (missing == nullptr) return std::nullopt;
    return noInstance(reference, *missing, definition,
                      inQuotes(definition.record->name) + " has not");
  }

  // In an expression of an index, which is evaluated for each parameter that has the index.
  [[nodiscard]] Result foundInIndex(const NamedDefinition& index,
                                    const Reference& reference) const {
    if (!reference.named->isIndex() && reference.isQualified()) return foundInValues(reference);
    const auto users = indexed_.find(index.record->name);
    if (users == indexed_.end()) return std::nullopt;
    for (const NamedDefinition* user : users->second) {
      if (reference.named->isIndex()) {
        if (Result late = foundLate(index, reference, *user)) return late;
      } else if (const IndexName* missing = missingIn(*user, *reference.named)) {
        return noInstance(reference, *missing, *user,
                          inQuotes(user->record->name) + ", which " + inQuotes(index.record->name) +
                              " indexes, has not");
      }
    }
    return std::nullopt;
  }

  // The first index of `named` that `evaluated` lacks, or null; also null where a name in one of
  // the lists is wrong, which the engine reports.
  [[nodiscard]] const IndexName* missingIn(const NamedDefinition& evaluated,
                                           const NamedDefinition& named) const {
    const IndexStatement own = indicesOf(*evaluated.record);
    if (!context_.areIndices(own) || !context_.areIndices(indicesOf(*named.record))) return nullptr;
    for (const IndexName& index : indicesOf(*named.record)) {
      if (!lists(own, index.name)) return &index;
    }
    return nullptr;
  }

  [[nodiscard]] Result noInstance(const Reference& reference, const IndexName& missing,
                                  const NamedDefinition& lacking,
                                  const std::string& whoLacks) const {
    const std::string toBeIndexed =
        "; give " + inQuotes(lacking.record->name) + " that index, too, or write an index value";
    std::string advice = toBeIndexed + ", such as " + std::string(reference.base);
    for (const IndexName& index : indicesOf(*reference.named->record)) {
      const std::optional<std::string> value = exampleOf(context_.find(index.name));
      if (!value) {
        advice = toBeIndexed + " in brackets";
        break;
      }
      advice += "[" + *value + "]";
    }
    const std::string_view consequence =
        reference.figure != nullptr ? ", so this is no instance and the figure has no value"
                                    : ", so this is no instance and reads as 0";
    return Finding{"foreign-index",
                   tokenPlace(context_.source(), *reference.token),
                   inQuotes(reference.base) + " has the index " + inQuotes(missing.name) + " and " +
                       whoLacks + std::string(consequence) + advice,
                   {{reference.named->name, "defined here"}}};
  }

  // An instance has an index value as it is written: [0x2] is not [2].
  [[nodiscard]] Result foundInValues(const Reference& reference) const {
    const IndexTuple values = splitName(reference.name).indices;
    const IndexStatement indices = indicesOf(*reference.named->record);
    if (values.size() != indices.size()) return std::nullopt;
    std::string written(reference.base);
    std::string meant = written;
    for (size_t i = 0; i < values.size(); ++i) {
      written += "[" + values[i] + "]";
      meant += "[" + otherSpelling(indices[i].name, values[i]).value_or(values[i]) + "]";
    }
    if (meant == written) return std::nullopt;
    const bool canBeWritten = splitName(meant).indices.size() == values.size() &&
                              std::ranges::all_of(splitName(meant).indices, isWritable);
    return Finding{"foreign-index", tokenPlace(context_.source(), *reference.token),
                   written + " is another instance than " + meant +
                       ", as index values are compared as they are written" +
                       (canBeWritten ? "; write " + meant : "")};
  }

  // The value under which the index has `value`, where that is another text.
  [[nodiscard]] std::optional<std::string> otherSpelling(std::string_view index,
                                                         const std::string& value) const {
    const NamedDefinition* const definition = context_.find(index);
    const IndexDef* const built = definition == nullptr ? nullptr : context_.built(*definition);
    if (built == nullptr) return std::nullopt;
    std::string translated = value;
    built->translate(translated);
    const std::optional<int32_t> number = wholeNumber(translated);
    const bool isText = built->baseBounds().strings().texts().contains(translated);
    if (!isText && number) {
      // A leading 0 is another mistake.
      const bool isOctal = value.starts_with('0') && value.size() > 1 && value[1] <= '9';
      if (isOctal && wholeNumber(value) != number) return std::nullopt;
      if (isOctal && numberText(*number) != value.substr(1)) return std::nullopt;
      translated = numberText(*number);
    }
    return translated == value ? std::nullopt : std::optional(translated);
  }

  // An index sees the values of those before it in the list of a parameter.
  [[nodiscard]] Result foundLate(const NamedDefinition& index, const Reference& reference,
                                 const NamedDefinition& user) const {
    if (reference.named == &index || reference.figure != nullptr) return std::nullopt;
    const IndexStatement list = indicesOf(*user.record);
    if (!context_.areIndices(list)) return std::nullopt;
    const auto own = std::ranges::find(list, index.record->name, &IndexName::name);
    const auto named = std::ranges::find(list, reference.base, &IndexName::name);
    if (named < own) return std::nullopt;
    return Finding{"foreign-index",
                   tokenPlace(context_.source(), *reference.token),
                   inQuotes(reference.base) + " has no value here for " +
                       inQuotes(user.record->name) + ", whose list of indices does not have it " +
                       "before " + inQuotes(index.record->name) + "; put it there",
                   {{{own->at.line, own->at.column, static_cast<uint32_t>(own->name.size())},
                     "the list of indices"}}};
  }

  StaticContext& context_;
  // The parameters that an index indexes.
  std::unordered_map<std::string_view, std::vector<const NamedDefinition*>> indexed_;
};

}  // namespace

void checkForeignIndices(StaticContext& context) {
  ForeignIndexCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) check.check(definition);
}
