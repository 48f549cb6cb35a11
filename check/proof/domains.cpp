#include "check/proof/domains.h"

#include <algorithm>
#include <tuple>

#include "base/number.h"
#include "check/proof/staged_domain.h"
#include "database/gather.h"
#include "deflang/expression/operators.h"
#include "srcs/vid_std_figures.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr std::string_view OTHER_VALUE = "another value";

// The base name of what a name of the text refers to.
std::string_view baseOf(const VariableSource& source) { return baseName(source.name); }

// Whether `reader` reads one of the instances of the parameter `source`: with too few index values
// it reads what is never there.
bool readsInstance(const ParmEntry& reader, const VariableSource& source) {
  const IndexTuple own(reader.parm.indices().size());
  return indicesOf(source, reader.parm, own).size() == source.parm->parm.indices().size();
}

// Whether what `source` holds may be read as it was staged when `own` is judged: in a ring, where
// it is judged later, or is another instance of the same.
bool isReadAsStaged(const VariableSource& source, const ParmEntry& own) {
  return source.parm != nullptr &&
         std::tie(source.parm->level, source.parm->rank) >= std::tie(own.level, own.rank);
}

bool isAlwaysComputed(const CompiledStatement& statement) {
  return !statement.condition &&
         std::any_of(statement.items.begin(), statement.items.end(), [](const CompiledItem& item) {
           return (item.lower && item.lower->program.usesVariables()) ||
                  (item.upper && item.upper->program.usesVariables());
         });
}

bool isNever(const CompiledStatement& statement, const auto& valueOf) {
  return statement.condition && !evaluateAbstractly(*statement.condition, valueOf).mayBeTrue();
}

bool itemMayFail(const CompiledItem& item, const auto& valueOf) {
  if (item.text) return false;
  const AbstractValue lower = evaluateAbstractly(*item.lower, valueOf);
  if (lower.mayBeMissing) return true;
  if (!item.upper) return false;
  const AbstractValue upper = evaluateAbstractly(*item.upper, valueOf);
  return lower.mayBeText() || upper.mayBeText() || upper.mayBeMissing || lower.high > upper.low;
}

void addItem(const CompiledItem& item, const auto& valueOf, Domain& domain) {
  if (item.text) {
    domain.addText(*item.text);
    return;
  }
  const AbstractValue lower = evaluateAbstractly(*item.lower, valueOf);
  const AbstractValue upper = item.upper ? evaluateAbstractly(*item.upper, valueOf) : lower;
  if (lower.mayBeNumber && upper.mayBeNumber && lower.low <= upper.high) {
    domain.addSpan(lower.low, upper.high);
  }
  if (!lower.texts) {
    domain.addAll();
  } else {
    for (const std::string& text : *lower.texts) domain.addText(text);
  }
}

// Adds what a number of `held` may become where it is outside the one span that is `item`: it comes
// from above to an end that is lower, or from below to one that is higher.
void addCorrected(const CompiledItem& item, const AbstractValue& held, const auto& valueOf,
                  Domain& domain) {
  const AbstractValue lower = evaluateAbstractly(*item.lower, valueOf);
  const AbstractValue upper = evaluateAbstractly(*item.upper, valueOf);
  if (!lower.mayBeNumber || !upper.mayBeNumber) return;
  if (held.high > upper.low && held.high > lower.low) {
    domain.addSpan(lower.low, std::max(lower.low, std::min(upper.high, held.high - 1)));
  }
  if (held.low < lower.high && held.low < upper.high) {
    domain.addSpan(std::min(upper.high, std::max(lower.low, held.low + 1)), upper.high);
  }
}

// Whether a name is by itself what is true or not.
bool standsAlone(std::span<const Token> tokens, size_t place) {
  const auto isBorder = [&](size_t at) {
    if (at >= tokens.size()) return true;
    const int32_t kind = tokens[at].kind;
    return kind == TOKEN_OPEN || kind == TOKEN_CLOSE || kind == OP_LOGICAL_AND ||
           kind == OP_LOGICAL_OR;
  };
  return (place == 0 || isBorder(place - 1)) && isBorder(place + 1);
}

}  // namespace

Domains::Domains(const CompiledText& text) : text_(text) {}

const NameDomain& Domains::domainOf(const VariableSource& source, Reading reading) {
  DomainsByName& domains = domains_[reading];
  const auto known = domains.find(baseOf(source));
  if (known != domains.end()) return known->second;
  const std::string name(baseOf(source));
  NameDomain domain;
  if (source.parm != nullptr) {
    // Two parameters may refer to each other; then either may be anything for the other one.
    const bool isOpen = !open_.insert(name).second;
    const Subject* const subject = text_.find(name);
    if (isOpen || subject == nullptr) {
      static const NameDomain anything{Domain::all(), false};
      return anything;
    }
    domain.values = parmDomain(*subject, [&](const VariableSource& read) {
      return readBy(*subject->parm, read, reading);
    });
    domain.values.addText("");
    open_.erase(name);
  } else if (source.constant != nullptr) {
    domain.values = Domain::of(source.constant->text());
  } else if (IndexEntry* const index = text_.database().findIndexEntry(name); index != nullptr) {
    domain = indexDomain(*index);
  } else {
    domain.mayBeUndefined = true;
  }
  return domains.emplace(name, std::move(domain)).first->second;
}

const NameDomain& Domains::ofAnyVariant(const VariableSource& source) {
  if (source.constant == nullptr) return of(source);
  if (variants_.empty()) noteComparedConstants();
  const auto found = variants_.find(source.name);
  return found != variants_.end() ? found->second : of(source);
}

// A constant's values are those of the command line and those of the literals beside it, and 0 and
// 1 where it is a condition by itself.
void Domains::noteComparedConstants() {
  // A product that nobody has thought of has a value that is none of them.
  for (const auto& [name, values] : text_.checked().choices) {
    variants_[name].values.addText(OTHER_VALUE);
    for (const std::string& value : values) variants_[name].values.addText(value);
  }
  const auto note = [&](const CompiledExpression& expression) {
    const auto& tokens = expression.expression.tokens;
    for (size_t i = 0; i < tokens.size(); ++i) {
      if (tokens[i].kind != TOKEN_VARIABLE || !standsAlone(tokens, i)) continue;
      const auto found = variants_.find(tokens[i].text);
      if (found != variants_.end()) found->second.values.addSpan(0, 1);
    }
    for (size_t i = 0; i + 2 < tokens.size(); ++i) {
      for (const auto& [name, literal] : {std::pair(i, i + 2), std::pair(i + 2, i)}) {
        if (tokens[name].kind != TOKEN_VARIABLE) continue;
        const auto found = variants_.find(tokens[name].text);
        if (found == variants_.end()) continue;
        if (tokens[literal].kind == TOKEN_NUMBER) {
          found->second.values.addSpan(tokens[literal].number, tokens[literal].number);
        } else if (tokens[literal].kind == TOKEN_STRING) {
          found->second.values.addText(tokens[literal].text);
        }
      }
    }
  };
  for (const Subject& subject : text_.subjects()) forEachExpression(subject, note);
}

AbstractValue Domains::abstractOf(const VariableSource& source) {
  return abstractOf(source, of(source));
}

AbstractValue Domains::readBy(const ParmEntry& own, const VariableSource& source, Reading reading) {
  const NameDomain& held = domainOf(source, reading);
  if (reading == READ_AS_HELD || !isReadAsStaged(source, own)) return abstractOf(source, held);
  NameDomain staged = held;
  staged.values.add(stagedDomain(source.parm->parm));
  return abstractOf(source, staged);
}

AbstractValue Domains::abstractOf(const VariableSource& source, const NameDomain& domain) {
  AbstractValue value;
  if (source.figure == nullptr) {
    value = ::abstractOf(domain.values);
  } else if (domain.values.isAll()) {
    value = ::abstractOf(Domain::all());
    value.texts.emplace();
    value.mayBeMissing = true;
  } else {
    value.mayBeMissing = !domain.values.spans().empty();
    for (const std::string& text : domain.values.texts()) {
      const std::optional<uint32_t> number = vidStdFigure(text, *source.figure);
      value.mayBeMissing = value.mayBeMissing || !number;
      if (number) value.addNumbers(static_cast<int32_t>(*number), static_cast<int32_t>(*number));
    }
  }
  value.mayBeMissing = value.mayBeMissing || domain.mayBeUndefined;
  return value;
}

// A value is what the base bounds or conditional bounds have corrected it to. Where none of these
// has entries, or none applies, it is whatever was set; an always computed range that always has
// its values leaves no such situation.
Domain Domains::parmDomain(const Subject& subject, const ValueOf& valueOf) {
  Domain domain;
  if (subject.parm->parm.mode() == MODE_NEVER) return domain;
  bool isComputed = false;
  bool mayBeUnusable = false;
  for (const CompiledStatement& statement : subject.rangeValid) {
    if (isNever(statement, valueOf)) continue;
    isComputed = isComputed || isAlwaysComputed(statement);
    for (const CompiledItem& item : statement.items) {
      if (!statement.condition) mayBeUnusable = mayBeUnusable || itemMayFail(item, valueOf);
      addItem(item, valueOf, domain);
    }
    if (statement.items.empty()) domain.addAll();
  }
  if (!isComputed || mayBeUnusable) domain.add(subject.definition().baseBounds());
  return domain;
}

bool Domains::mayFail(const CompiledItem& item) { return itemMayFail(item, ownValueOf()); }

// What a commit that sets another parameter makes of a value of `held`. Its ring partner is read as
// it was staged, whatever that is, where it is judged later. A value stays where it fits, and where
// a range has no values at that moment: any value, if it is set together with the other one.
Domain Domains::correctedDomain(Staging staging, const Subject& subject, const Domain& held,
                                const ValueOf& valueOf) const {
  const ParmEntry& own = *subject.parm;
  const ValueOf stagedValueOf = [&](const VariableSource& source) {
    return isReadAsStaged(source, own) ? abstractOf(source, {Domain::all(), false})
                                       : valueOf(source);
  };
  Domain domain;
  const bool isOneRange = staging == STAGED_ALONE && subject.rangeValid.size() == 1 &&
                          subject.rangeValid.front().items.size() == 1;
  for (const CompiledStatement& statement : subject.rangeValid) {
    if (isNever(statement, stagedValueOf)) continue;
    for (const CompiledItem& item : statement.items) {
      const bool isUsable = statement.condition || !itemMayFail(item, stagedValueOf);
      if (staging == STAGED_TOGETHER && !isUsable) domain.add(subject.definition().baseBounds());
      if (isOneRange && item.upper && !::abstractOf(held).mayBeText()) {
        addCorrected(item, ::abstractOf(held), stagedValueOf, domain);
      } else {
        addItem(item, stagedValueOf, domain);
      }
    }
  }
  return domain;
}

DomainsByName Domains::leastOf(const DomainsByName& start, Staging staging) {
  constexpr int MANY_ROUNDS = 30;
  const NameDomain neverSet{Domain::of(""), false};
  DomainsByName least = start;
  const auto valueFor = [&](const ParmEntry& reader) {
    return [&](const VariableSource& source) {
      const auto found = least.find(baseOf(source));
      if (found == least.end()) return abstractOf(source);
      return abstractOf(source, readsInstance(reader, source) ? found->second : neverSet);
    };
  };
  bool grows = true;
  for (int round = 0; grows; ++round) {
    grows = false;
    for (auto& [name, domain] : least) {
      const AbstractValue before = ::abstractOf(domain.values);
      const Subject& subject = *text_.find(name);
      const ValueOf valueOf = valueFor(*subject.parm);
      domain.values.add(parmDomain(subject, valueOf));
      domain.values.add(correctedDomain(staging, subject, domain.values, valueOf));
      // What does not come to an end by itself may be anything.
      if (round > MANY_ROUNDS) domain.values.addAll();
      grows = grows || ::abstractOf(domain.values) != before;
    }
  }
  return least;
}

NameDomain Domains::indexDomain(const IndexEntry& index) const {
  NameDomain domain;
  domain.mayBeUndefined = true;
  domain.values.add(index.index->baseBounds());
  for (const auto& [source, target] : index.index->translations()) domain.values.addText(source);
  return domain;
}
