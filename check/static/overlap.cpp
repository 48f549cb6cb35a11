#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "base/number.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

std::optional<int32_t> literalOf(const Expression& expression) {
  const std::span<const Token> tokens = expression.tokens;
  if (tokens.size() != 1 || tokens.front().kind != TOKEN_NUMBER) return std::nullopt;
  return tokens.front().number;
}

// The numbers of an item that is written with numbers only.
std::optional<Span> spanOf(const RangeItem& item) {
  if (item.text) return std::nullopt;
  const std::optional<int32_t> low = literalOf(item.lower);
  const std::optional<int32_t> high = item.upper ? literalOf(*item.upper) : low;
  if (!low || !high || *high < *low) return std::nullopt;
  return Span{*low, *high};
}

std::string spanText(const Span& span) {
  if (span.first == span.second) return numberText(span.first);
  return numberText(span.first) + ".." + numberText(span.second);
}

// Two expressions are the same when their tokens are.
bool isBefore(const Token& a, const Token& b) {
  return std::tie(a.kind, a.number, a.text) < std::tie(b.kind, b.number, b.text);
}
struct TokenOrder {
  bool operator()(const Expression* a, const Expression* b) const {
    return std::ranges::lexicographical_compare(a->tokens, b->tokens, isBefore);
  }
};
using ConditionPlaces = std::map<const Expression*, size_t, TokenOrder>;

// Two computed items are the same when both of their ends are.
struct ItemOrder {
  bool operator()(const RangeItem* a, const RangeItem* b) const {
    const Expression none;
    const auto upperOf = [&](const RangeItem& item) { return item.upper ? &*item.upper : &none; };
    const TokenOrder before;
    if (before(&a->lower, &b->lower)) return true;
    return !before(&b->lower, &a->lower) && before(upperOf(*a), upperOf(*b));
  }
};

class OverlapCheck {
 public:
  OverlapCheck(StaticContext& context, const NamedDefinition& definition)
      : context_(context), definition_(definition) {}

  void check() {
    const ParameterRecord& record = *definition_.record;
    checkRanges(record.rangeValid, "rangeValid");
    checkRanges(record.rangeDoc, "rangeDoc");
    checkSum();
    checkDefaults();
    checkControls(record.ctrlRO, "ctrlRO");
    checkControls(record.ctrlValid, "ctrlValid");
  }

 private:
  struct EarlierRange {
    size_t place;
    const RangeStatement* statement;
  };

  void checkRanges(const StatementList<RangeStatement>& statements, std::string_view keyword) {
    std::map<const Expression*, EarlierRange, TokenOrder> ranges;  // by condition
    size_t place = 0;
    for (const RangeStatement& statement : statements) {
      checkItems(statement.items);
      if (!statement.condition.empty()) {
        const auto [same, isNew] =
            ranges.emplace(&statement.condition, EarlierRange{place, &statement});
        if (!isNew) checkSameCondition(keyword, statement, place, same->second);
      }
      ++place;
    }
  }

  void checkSameCondition(std::string_view keyword, const RangeStatement& statement, size_t place,
                          const EarlierRange& earlier) {
    if (keyword == "rangeDoc") {
      tellSame(keyword, place, earlier.place,
               "an earlier rangeDoc has this condition and answers alone; join the two, or change "
               "one condition");
      explain(statement.condition);
    } else if (!haveOtherKinds(statement, *earlier.statement)) {
      tellSame(keyword, place, earlier.place,
               "an earlier rangeValid has this condition, and the values of both are allowed; join "
               "the two, or change one condition");
    }
  }

  // Whether one has texts only and the other none: each then judges values of its own.
  static bool haveOtherKinds(const RangeStatement& one, const RangeStatement& other) {
    const auto isText = [](const RangeItem& item) { return item.text.has_value(); };
    return (std::ranges::all_of(one.items, isText) && std::ranges::none_of(other.items, isText)) ||
           (std::ranges::none_of(one.items, isText) && std::ranges::all_of(other.items, isText));
  }

  // What an item has in common with the others of its statement. Sorted first, so that a long list
  // takes no more than its share.
  void checkItems(std::span<const RangeItem> items) {
    std::map<std::string_view, const RangeItem*> texts;
    std::map<const RangeItem*, const RangeItem*, ItemOrder> computed;
    std::vector<std::pair<Span, const RangeItem*>> spans;
    for (const RangeItem& item : items) {
      if (item.text) {
        const auto [same, isNew] = texts.emplace(*item.text, &item);
        if (!isNew) {
          tellItem(item, *same->second, inQuotes(*item.text) + " is in this list already");
        }
      } else if (const std::optional<Span> span = spanOf(item)) {
        spans.emplace_back(*span, &item);
      } else if (const auto [same, isNew] = computed.emplace(&item, &item); !isNew) {
        tellItem(item, *same->second, "this is in this list already");
      }
    }
    std::ranges::stable_sort(spans, {}, [](const auto& entry) { return entry.first.first; });
    const std::pair<Span, const RangeItem*>* reaching = nullptr;  // the farthest so far
    for (const auto& entry : spans) {
      if (reaching != nullptr && entry.first.first <= reaching->first.second) {
        tellOverlap(*reaching, entry);
      }
      if (reaching == nullptr || reaching->first.second < entry.first.second) reaching = &entry;
    }
  }

  void tellOverlap(const std::pair<Span, const RangeItem*>& one,
                   const std::pair<Span, const RangeItem*>& other) {
    const bool isInOrder = std::tie(one.second->at.line, one.second->at.column) <
                           std::tie(other.second->at.line, other.second->at.column);
    const auto& first = isInOrder ? one : other;
    const auto& second = isInOrder ? other : one;
    tellItem(*second.second, *first.second,
             spanText(second.first) + " overlaps " + spanText(first.first) + " of the same list");
  }

  void tellItem(const RangeItem& item, const RangeItem& earlier, std::string text) {
    text += "; leave it out, or correct one of the two";
    add(itemPlace(context_.source(), item), std::move(text), itemPlace(context_.source(), earlier),
        "the other one");
  }

  // Statements without a condition add up, though they are often written as limits of one another.
  void checkSum() {
    std::vector<SumItem> items;
    std::map<std::string_view, size_t> texts;  // their statements
    size_t place = 0;
    for (const RangeStatement& statement : definition_.record->rangeValid) {
      if (statement.condition.empty()) {
        for (const RangeItem& item : statement.items) {
          if (!item.text) {
            items.push_back(sumItemOf(item, place, statement.items.size() == 1));
          } else if (const size_t earlier = texts.emplace(*item.text, place).first->second;
                     earlier != place) {
            tellSum(place, earlier);
            return;
          }
        }
      }
      ++place;
    }
    for (size_t i = 1; i < items.size() && i < MAX_SUM; ++i) {
      for (size_t j = 0; j < i; ++j) {
        if (!sayTheSame(items[j], items[i])) continue;
        tellSum(items[i].statement, items[j].statement);
        return;
      }
    }
  }

  // An item that is no text, with the ends that are written as numbers.
  struct SumItem {
    size_t statement;
    bool isSpanAlone;
    std::optional<int32_t> low, high;
  };

  static SumItem sumItemOf(const RangeItem& item, size_t statement, bool isAlone) {
    return {statement, isAlone && item.upper.has_value(), literalOf(item.lower),
            literalOf(item.upper ? *item.upper : item.lower)};
  }

  static bool sayTheSame(const SumItem& a, const SumItem& b) {
    if (a.statement == b.statement) return false;
    if (!a.isSpanAlone || !b.isSpanAlone) {
      return a.low && a.high && a.low == b.low && a.high == b.high;
    }
    return sameEnd(a.low, b.low) || sameEnd(a.high, b.high) ||
           (a.low && a.high && b.low && b.high &&
            std::max(*a.low, *b.low) <= std::min(*a.high, *b.high));
  }

  void tellSum(size_t place, size_t earlier) {
    add(definition_.keyword("rangeValid", place),
        "ranges without a condition add up, so this one limits nothing that the other allows; "
        "write one range, or a condition for each",
        definition_.keyword("rangeValid", earlier), "the other range");
  }

  static bool sameEnd(std::optional<int32_t> a, std::optional<int32_t> b) { return a && a == b; }

  // The engine reports two defaults with one condition, unless that names a constant.
  void checkDefaults() {
    ConditionPlaces conditions;
    size_t place = 0;
    for (const DefaultStatement& statement : definition_.record->defaults) {
      if (!statement.condition.empty()) {
        const auto [same, isNew] = conditions.emplace(&statement.condition, place);
        if (!isNew && namesConstant(statement.condition)) {
          tellSame("default", place, same->second,
                   "an earlier default has this condition, so this one never counts; remove one "
                   "of the two, or change its condition");
          explain(statement.condition);
        }
      }
      ++place;
    }
  }

  [[nodiscard]] bool namesConstant(const Expression& condition) const {
    return std::ranges::any_of(condition.tokens, [&](const Token& token) {
      if (token.kind != TOKEN_VARIABLE) return false;
      const Reference reference = context_.referenceOf(token);
      return reference.named == nullptr && reference.figure == nullptr &&
             context_.checked().database().findConstant(reference.name) != nullptr;
    });
  }

  void checkControls(const StatementList<Expression>& statements, std::string_view keyword) {
    ConditionPlaces conditions;
    size_t place = 0;
    for (const Expression& condition : statements) {
      const auto [same, isNew] = conditions.emplace(&condition, place);
      // The engine compares those that are decided.
      if (!isNew && !context_.decidedCondition(condition)) {
        tellSame(keyword, place, same->second,
                 "an earlier " + std::string(keyword) +
                     " has this condition; remove one of the two, or change its condition");
      }
      ++place;
    }
  }

  void tellSame(std::string_view keyword, size_t place, size_t earlier, std::string text) {
    add(definition_.keyword(keyword, place), std::move(text), definition_.keyword(keyword, earlier),
        "the earlier one");
  }

  void explain(const Expression& condition) {
    for (const Token& token : condition.tokens) context_.explained().add(token.at);
  }

  void add(const TextPlace& at, std::string text, const TextPlace& other, std::string what) {
    // Two definitions under one name are told of as such.
    if (definition_.partOf(at) != definition_.partOf(other)) return;
    context_.add({"overlap", at, std::move(text), {{other, std::move(what)}}});
  }

  static constexpr size_t MAX_SUM = 64;  // pairs are looked at, and nobody writes more by hand

  StaticContext& context_;
  const NamedDefinition& definition_;
};

}  // namespace

void checkOverlap(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (!context.hasExplainedRange(definition)) OverlapCheck(context, definition).check();
  }
}
