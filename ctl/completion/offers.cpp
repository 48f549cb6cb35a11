#include "ctl/completion/offers.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "ctl/completion/number_beginnings.h"
#include "ctl/text/assignment.h"
#include "ctl/text/range_text.h"
#include "ctl/words/waiting_commits.h"

namespace {

using Words = std::vector<std::string>;

constexpr const char* OPTIONAL_VALUE = "NAME[=VALUE]";

// Where more begin with what is typed, beginnings are offered.
constexpr size_t MOST_VALUES = 100;
// As many commits as undo is offered.
constexpr uint32_t LAST_COMMITS = 20;

// Of an assignment that is being typed.
struct TypedAssignment {
  std::string name;
  std::optional<std::string> value;  // none where the name is still typed
};

TypedAssignment typedAssignment(const std::string& text) {
  const size_t sign = signOfAssignment(text);
  const std::string name = text.substr(0, sign);
  // A bracket is still open: the sign is one of an index value.
  const bool isIndex = std::ranges::count(name, '[') > std::ranges::count(name, ']');
  if (sign == std::string::npos || isIndex) return {text, std::nullopt};
  return {name, text.substr(sign + 1)};
}

// Signs that List would take for a pattern.
bool isPlain(const std::string& base) { return base.find_first_of("*?\\]") == std::string::npos; }

class Offers {
 public:
  Offers(Service& service, const TypedLine& typed)
      : service_(service), typed_(typed), word_(typed.word->get_name()) {}

  Candidates bases() { return narrowed(namesFor(typed_.text, {})); }

  Candidates names() { return narrowed(instancesFor(typed_.text)); }

  Candidates assignments() {
    const TypedAssignment assignment = typedAssignment(typed_.text);
    if (assignment.value) return values(assignment.name, *assignment.value);
    Words all = instancesFor(assignment.name);
    std::erase_if(all, [&](const std::string& name) { return isAssigned(name); });
    Candidates offered = narrowed(std::move(all));
    if (typed_.kind == OPTIONAL_VALUE || !offered.isWhole) return offered;
    for (std::string& name : offered.words) name += '=';
    offered.isWhole = false;
    return offered;
  }

  Candidates transactions() {
    Words all;
    for (const OpenTransaction& each : service_.transactions()) {
      if (each.owner.empty()) all.push_back(std::to_string(each.id));
    }
    return fitting(std::move(all));
  }

  Candidates commits() {
    Words all;
    for (const PastCommit& each : service_.history(LAST_COMMITS)) {
      all.push_back(std::to_string(each.serial));
    }
    return fitting(std::move(all));
  }

  Candidates waiting() {
    Words all;
    for (const WaitingCommit& each : waitingCommits(service_)) {
      all.push_back(std::to_string(each.process));
    }
    return fitting(std::move(all));
  }

 private:
  [[nodiscard]] Candidates fitting(Words all) const {
    std::erase_if(all, [&](const std::string& word) { return !word.starts_with(typed_.text); });
    return {.words = std::move(all)};
  }

  Names namesFor(const std::string& text, const Names& access) {
    const std::string base(baseOf(text));
    if (!isPlain(base)) return {};
    return service_.names(base.size() < text.size() ? base : base + "*", access);
  }

  // No index has an instance.
  [[nodiscard]] Names wantedAccess() const {
    const bool isToBeSet = word_ == "set" || word_ == "try" || word_ == "reset";
    if (isToBeSet && !typed_.isStatus) return {"rw", "wo"};
    return {"rw", "wo", "ro", "rostrict"};
  }

  // The instances with a name that begins with the text, also what has no indices.
  Words instancesFor(const std::string& text) {
    Words all = namesFor(text, wantedAccess());
    // Of more, beginnings are offered, for which their instances are not needed.
    if (all.size() <= MOST_CANDIDATES) all = instancesOf(all);
    std::erase_if(all, [&](const std::string& name) { return !name.starts_with(text); });
    return all;
  }

  // Also a parameter without indices that does not exist now, about which somebody may ask.
  Words instancesOf(const Names& names) {
    if (names.empty()) return {};  // no names would be all of them
    Words all = service_.instances(COMMITTED, names);
    Names absent;
    std::ranges::set_difference(names, all, std::back_inserter(absent), {}, {}, baseOf);
    if (absent.empty()) return all;
    const std::vector<Definition> definitions = service_.definitions(absent);
    for (size_t i = 0; i < absent.size(); ++i) {
      if (definitions[i].indices.empty()) all.push_back(std::move(absent[i]));
    }
    std::ranges::stable_sort(all, {}, baseOf);
    return all;
  }

  [[nodiscard]] bool isAssigned(const std::string& name) const {
    return std::ranges::any_of(typed_.others, [&](const std::string& other) {
      const std::optional<Assignment> assignment = assignmentOf(other);
      return assignment && assignment->name == name;
    });
  }

  // As the other assignments of the line would leave it.
  InstanceState stateOf(const std::string& name) {
    std::vector<Assignment> others;
    for (const std::string& other : typed_.others) {
      std::optional<Assignment> assignment = assignmentOf(other);
      if (assignment && assignment->name != name) others.push_back(*std::move(assignment));
    }
    if (others.empty()) return service_.states(COMMITTED, {name}).front();
    const OwnTransaction transaction(service_);
    // What is refused is left out.
    static_cast<void>(service_.set(transaction.id(), others, typed_.isStatus));
    return service_.states(transaction.id(), {name}).front();
  }

  [[nodiscard]] bool isWanted(const std::string& base) {
    return isPlain(base) && !service_.names(base, wantedAccess()).empty();
  }

  Candidates values(const std::string& name, const std::string& text) {
    const std::string base(baseOf(name));
    if (!isWanted(base)) return {};
    const InstanceState state = stateOf(name);
    if (!state.is(STATE_EXISTS) || !state.is(STATE_LIMITED)) return {};
    Words all = state.texts;
    const auto definition = service_.definitions({base}).front();
    for (const Assignment& translation : definition.translations) {
      if (isAllowed(state, translation.value)) all.push_back(translation.name);
    }
    std::erase_if(all, [&](const std::string& value) { return !value.starts_with(text); });
    Candidates offered = withNumbers(narrowed(std::move(all)), state.spans, text);
    for (std::string& value : offered.words) value.insert(0, name + "=");
    return offered;
  }

  static Candidates withNumbers(Candidates offered, const std::vector<Span>& spans,
                                const std::string& text) {
    const bool isLong = countNumbers(spans, text) > MOST_VALUES;
    std::ranges::move(isLong ? numberBeginnings(spans, text) : numbersFrom(spans, text),
                      std::back_inserter(offered.words));
    offered.isWhole = offered.isWhole && !isLong;
    return offered;
  }

  Service& service_;
  const TypedLine& typed_;
  const std::string word_;
};

struct Kind {
  std::string_view name;
  Candidates (Offers::*offer)();
};
constexpr std::array<Kind, 7> KINDS = {{{"NAME", &Offers::names},
                                        {"NAME=VALUE", &Offers::assignments},
                                        {OPTIONAL_VALUE, &Offers::assignments},
                                        {"PATTERN", &Offers::bases},
                                        {"ID", &Offers::transactions},
                                        {"PROCESS", &Offers::waiting},
                                        {"SERIAL", &Offers::commits}}};

}  // namespace

Candidates offersOf(Service& service, const TypedLine& typed) {
  const auto found = std::ranges::find(KINDS, typed.kind, &Kind::name);
  if (found == KINDS.end()) return {};
  Offers offers(service, typed);
  return (offers.*found->offer)();
}

bool isOfService(const std::string& kind) {
  return std::ranges::find(KINDS, kind, &Kind::name) != KINDS.end();
}
