#include "tests/soak/model.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <tuple>
#include <utility>

// What a commit or a range query has to judge, in the order in which it does.
struct Model::Step {
  int level;
  std::string base;
  Indices at;
  std::string name;
  bool operator<(const Step& other) const {
    return std::tie(level, base, at) < std::tie(other.level, other.base, other.at);
  }
};

namespace {

constexpr int INVALID_NAME = 1;
constexpr int NOT_IN_RANGE = -6;

const char* const INVALID_ID = "of invalid transaction id";

std::string failed(const std::string& family, const std::string& cause) {
  return ERROR_MARK + family + " failed because " + cause;
}

std::string inDoubleQuotes(const std::string& text) { return '"' + text + '"'; }

bool isFailure(const std::string& answer) { return answer.starts_with(ERROR_MARK); }

std::string fullName(const std::string& base, const Indices& at) {
  std::string name = base;
  for (const std::string& value : at) name += "[" + value + "]";
  return name;
}

void translate(const Parm& parm, std::string& value) {
  const auto found = parm.translations.find(value);
  if (found != parm.translations.end()) value = found->second;
}

// Whether a value can be set at all.
bool isAcceptable(const Parm& parm, std::string value) {
  translate(parm, value);
  return parm.kind == WITH_RUN_TIME || parm.constant.takes(value);
}

bool hasDependents(const std::string& base) {
  return std::any_of(device().begin(), device().end(),
                     [&](const auto& parm) { return parm.second.names.contains(base); });
}

// Everything that names one of `changing`, or something that does.
std::set<std::string> dependentsOf(const std::set<std::string>& changing) {
  std::set<std::string> dependents;
  std::vector<std::string> open(changing.begin(), changing.end());
  while (!open.empty()) {
    const std::string next = open.back();
    open.pop_back();
    for (const auto& [base, parm] : device()) {
      if (parm.names.contains(next) && dependents.insert(base).second) open.push_back(base);
    }
  }
  return dependents;
}

std::vector<Indices> instancesOf(const Parm& parm) {
  std::vector<Indices> all = {{}};
  for (const std::string& index : parm.indices) {
    const Range values = constantValues(index);
    std::vector<Indices> longer;
    for (const Indices& at : all) {
      for (const auto& [low, high] : values.spans) {
        for (int value = low; value <= high; ++value) {
          longer.push_back(at);
          longer.back().push_back(std::to_string(value));
        }
      }
      for (const std::string& value : values.texts) {
        longer.push_back(at);
        longer.back().push_back(value);
      }
    }
    all = std::move(longer);
  }
  return all;
}

// Whether the instance can exist at all, whatever the situation.
bool fits(const Parm& parm, const Indices& at) {
  if (at.size() != parm.indices.size()) return false;
  for (size_t i = 0; i < at.size(); ++i) {
    if (!constantValues(parm.indices[i]).takesWithoutCorrection(at[i])) return false;
  }
  return true;
}

bool existsNow(const Parm& parm, const Indices& at, const See& see) {
  if (!fits(parm, at)) return false;
  for (size_t i = 0; i < at.size(); ++i) {
    const std::optional<Range> values = presentValues(parm.indices[i], see);
    if (!values || !values->takesWithoutCorrection(at[i])) return false;
  }
  return true;
}

// What an instance depends on; of a base name, base names.
std::set<std::string> dependencies(const Parm& parm, const Indices& at) {
  std::set<std::string> names;
  std::istringstream words(parm.deps);
  for (std::string name; words >> name;) {
    for (const std::string index : {"channel", "side"}) {
      const size_t place = name.find("[" + index + "]");
      if (place != std::string::npos) {
        const auto own = std::find(parm.indices.begin(), parm.indices.end(), index);
        const std::string value =
            at.empty() ? "" : "[" + at[static_cast<size_t>(own - parm.indices.begin())] + "]";
        name.replace(place, index.size() + 2, value);
      }
    }
    names.insert(name);
  }
  return names;
}

std::string getDependencies(const std::string& name, const Parm* parm, const Indices& at) {
  if (parm == nullptr) return failed("Get deps", "of invalid parameter name");
  const bool isBaseName = name.find('[') == std::string::npos;
  if (!isBaseName && !fits(*parm, at)) return failed("Get deps", "of invalid parameter index");
  std::vector<std::string> items;
  for (const std::string& dependency : dependencies(*parm, at)) items.push_back(quoted(dependency));
  return listed(items);
}

// Accepted by any, or corrected by the first.
void bringInto(const std::vector<const Range*>& ranges, std::string& value) {
  std::string corrected = value;
  if (ranges.empty() || ranges.front()->takes(corrected)) return;
  if (std::none_of(ranges.begin() + 1, ranges.end(),
                   [&](const Range* range) { return range->takesWithoutCorrection(value); })) {
    value = corrected;
  }
}

// Corrects a value. False when it cannot be brought into the constant range.
bool correct(const Parm& parm, const std::vector<Statement>& statements, std::string& value) {
  static const Range EVERYTHING;
  translate(parm, value);
  translate(parm, value);
  std::vector<const Range*> usable;
  std::vector<const Range*> all;
  bool isComputed = false;
  for (const Statement& statement : statements) {
    all.push_back(statement.code == 0 ? &statement.range : &EVERYTHING);
    if (statement.code == 0) {
      usable.push_back(&statement.range);
      isComputed = isComputed || statement.runTime;
    }
  }
  if (isComputed) {
    bringInto(usable, value);
    return true;
  }
  parm.constant.takes(value);
  bringInto(all, value);
  return parm.kind != WITH_CONDITIONS || isAcceptable(parm, value);
}

std::vector<Statement> statementsOf(const Parm& parm, const Indices& at, const See& see) {
  return parm.statements ? parm.statements(see, at) : std::vector<Statement>();
}

bool isReadOnly(const Parm& parm, const Indices& at, const See& see) {
  switch (parm.access) {
    case ACCESS_RW:
      return parm.locked && parm.locked(see, at);
    case ACCESS_WO:
      return false;
    default:
      return true;
  }
}

// The texts and the spans of a range, each with `name` in front unless that is null.
void addRange(const Range& range, const std::string* name, std::vector<std::string>& texts,
              std::vector<std::string>& spans) {
  for (const std::string& text : std::set<std::string>(range.texts.begin(), range.texts.end())) {
    texts.push_back(name == nullptr ? quoted(text) : structured({quoted(*name), quoted(text)}));
  }
  for (const auto& [low, high] : range.spans) {
    std::vector<std::string> items = {std::to_string(low), std::to_string(high)};
    if (name != nullptr) items.insert(items.begin(), quoted(*name));
    spans.push_back(structured(items));
  }
}

std::string writtenRange(const Range& range) {
  std::vector<std::string> texts;
  std::vector<std::string> spans;
  addRange(range, nullptr, texts, spans);
  return listed(texts) + BETWEEN_ARGUMENTS + listed(spans);
}

std::string rangeFailure(int code) {
  return failed("Get range", "of invalid bounds (" + std::to_string(code) + ")");
}

// What messages call the operation.
std::string familyOf(const std::string& operation) {
  static const std::map<std::string, std::string> FAMILIES = {{"commit", "Commit"},
                                                              {"get", "Get"},
                                                              {"get_bulk", "Get bulk"},
                                                              {"is_valid", "Validate"},
                                                              {"check_set", "Validate"},
                                                              {"set", "Set"},
                                                              {"set_bulk", "Set"},
                                                              {"set_status", "Set status"},
                                                              {"set_status_bulk", "Set status"},
                                                              {"reset", "Reset"},
                                                              {"reset_bulk", "Reset"},
                                                              {"reset_status", "Reset status"},
                                                              {"reset_status_bulk", "Reset status"},
                                                              {"get_range", "Get range"},
                                                              {"get_range_bulk", "Get range"},
                                                              {"get_parm_idx", "Get parm index"},
                                                              {"get_idx_range", "Get index range"}};
  return FAMILIES.at(operation);
}

bool isWriting(const std::string& operation) {
  return operation.starts_with("set") || operation.starts_with("reset");
}

}  // namespace

Effect Model::answer(const Call& call) {
  Effect effect;
  effect.answer = serve(call, effect.signal);
  return effect;
}

std::vector<std::string> Model::takeLog() { return std::exchange(log_, {}); }

std::string Model::get(const std::string& name) const { return seeing({})(name); }

Model::Instance Model::instanceOf(const std::string& name) {
  Instance instance;
  size_t open = name.find('[');
  instance.base = name.substr(0, open);
  while (open != std::string::npos) {
    const size_t close = name.find(']', open);
    instance.at.push_back(name.substr(open + 1, close - open - 1));
    open = name.find('[', close);
  }
  const auto found = device().find(instance.base);
  instance.parm = found == device().end() ? nullptr : &found->second;
  return instance;
}

See Model::seeing(const Staged& staged) const {
  return [this, &staged](const std::string& name) -> std::string {
    const auto entry = staged.find(name);
    if (entry != staged.end()) return entry->second.value;
    const auto value = committed_.find(name);
    if (value != committed_.end()) return value->second;
    return name == CONSTANT_NAME ? CONSTANT_VALUE : "";
  };
}

Model::Entry& Model::stage(Staged& staged, const std::string& name, bool generated) const {
  const auto [place, isNew] = staged.try_emplace(name);
  Entry& entry = place->second;
  if (isNew) {
    entry.instance = instanceOf(name);
    entry.value = get(name);
    entry.generated = generated;
  }
  return entry;
}

std::string Model::serve(const Call& call, std::vector<std::string>& signal) {
  if (call.method == "start") return start();
  if (call.method == "end") return end(call.id);
  if (call.method == "die") return "";
  if (call.method == "get_deps") {
    const Instance instance = instanceOf(call.names[0]);
    return getDependencies(call.names[0], instance.parm, instance.at);
  }
  if (call.method.starts_with("single_")) return serveSingle(call, signal);
  const auto transaction = open_.find(call.id);
  if (transaction == open_.end()) return failed(familyOf(call.method), INVALID_ID);
  return serveIn(transaction->second, call.method, call, signal);
}

std::string Model::serveSingle(const Call& call, std::vector<std::string>& signal) {
  const std::string operation = call.method.substr(call.method.find('_') + 1);
  ++nextId_;
  Staged staged;
  std::string answer = serveIn(staged, operation, call, signal);
  if (isWriting(operation)) {
    std::string committed = commit(staged, signal);
    answer = isFailure(answer) ? answer : committed;
  }
  return answer;
}

std::string Model::serveIn(Staged& staged, const std::string& operation, const Call& call,
                           std::vector<std::string>& signal) {
  const bool force = operation.find("_status") != std::string::npos;
  if (operation == "commit") return commit(staged, signal);
  if (operation == "get") return quoted(seeing(staged)(call.names[0]));
  if (operation == "get_bulk") return getAll(staged, call);
  if (operation == "is_valid" || operation == "check_set") {
    const Instance instance = instanceOf(call.names[0]);
    const bool valid = instance.parm != nullptr && isAcceptable(*instance.parm, call.values[0]);
    if (valid && operation == "check_set") set(staged, call.names[0], call.values[0], false);
    return valid ? "true" : "false";
  }
  if (operation.starts_with("set")) return setAll(staged, call, force);
  if (operation.starts_with("reset")) return resetAll(staged, call, force);
  if (operation == "get_range") return rangeAnswer(staged, call.names[0]);
  if (operation == "get_range_bulk") return rangesAnswer(staged, call.names);
  return operation == "get_parm_idx" ? indices(staged, call.names[0])
                                     : indexRange(staged, call.names[0]);
}

std::string Model::start() {
  open_[nextId_];
  return std::to_string(nextId_++);
}

std::string Model::end(uint32_t id) {
  return open_.erase(id) == 1 ? "" : failed("End", INVALID_ID);
}

std::string Model::getAll(const Staged& staged, const Call& call) const {
  std::vector<std::string> items;
  for (size_t i = 0; i < std::min<size_t>(call.count, call.names.size()); ++i) {
    items.push_back(quoted(seeing(staged)(call.names[i])));
  }
  return listed(items);
}

std::string Model::setAll(Staged& staged, const Call& call, bool force) const {
  std::string first;
  for (size_t i = 0; i < std::min(call.names.size(), call.values.size()); ++i) {
    const std::string answer = set(staged, call.names[i], call.values[i], force);
    first = first.empty() ? answer : first;
  }
  return first;
}

std::string Model::resetAll(Staged& staged, const Call& call, bool force) const {
  std::string first;
  for (const std::string& name : call.names) {
    if (instanceOf(name).parm == nullptr) {
      first = failed(force ? "Reset status" : "Reset", "parameter name is invalid");
    } else {
      Entry& entry = stage(staged, name, false);
      entry.reset = true;
      entry.force = force;
    }
  }
  return first;
}

std::string Model::set(Staged& staged, const std::string& name, const std::string& value,
                       bool force) const {
  const std::string family = force ? "Set status" : "Set";
  const Parm* parm = instanceOf(name).parm;
  if (parm == nullptr) return failed(family, "parameter name is invalid");
  Entry& entry = stage(staged, name, false);
  if (!isAcceptable(*parm, value)) return failed(family, "parameter value is invalid");
  entry.reset = false;
  entry.force = force;
  entry.value = value;
  return "";
}

Model::Verdict Model::judge(const Instance& instance, std::string& value, bool force,
                            const See& see) {
  const Parm& parm = *instance.parm;
  if (parm.exists && !parm.exists(see)) return PASSED_OVER;
  if (!existsNow(parm, instance.at, see)) return NO_INSTANCE;
  if (!force && isReadOnly(parm, instance.at, see)) return PASSED_OVER;
  return correct(parm, statementsOf(parm, instance.at, see), value) ? STORED : REFUSED;
}

Model::Verdict Model::evaluate(Entry& entry, const std::string& name, const Staged& staged,
                               bool store) {
  std::string value = entry.value;
  const Verdict verdict = judge(entry.instance, value, entry.force, seeing(staged));
  if (verdict == STORED) {
    entry.value = value;
    if (store) committed_[name] = value;
    return STORED;
  }
  takeCommitted(entry, name);
  return verdict == NO_INSTANCE && entry.generated ? PASSED_OVER : verdict;
}

void Model::takeCommitted(Entry& entry, const std::string& name) const {
  entry.value = get(name);
  entry.force = true;
}

void Model::resolveResets(Staged& staged) const {
  for (auto& [name, entry] : staged) {
    if (entry.reset) {
      const auto& fallback = entry.instance.parm->fallback;
      entry.value = fallback ? fallback(seeing(staged)) : "";
    }
  }
}

Model::Plan Model::planCommit(Staged& staged) const {
  Plan plan;
  std::set<std::string> changing;
  for (const auto& [name, entry] : staged) {
    const Instance& instance = entry.instance;
    const bool isFollowed = hasDependents(instance.base);
    plan.insert({isFollowed ? instance.parm->level : 0, instance.base, instance.at, name});
    if (isFollowed) changing.insert(instance.base);
  }
  for (const std::string& base : dependentsOf(changing)) {
    const Parm& parm = device().at(base);
    for (const Indices& at : instancesOf(parm)) {
      const std::string name = fullName(base, at);
      stage(staged, name, true);
      plan.insert({parm.level, base, at, name});
    }
  }
  return plan;
}

// The daemon's result code of a refusal.
std::string Model::refusalCode(Verdict verdict) { return verdict == NO_INSTANCE ? "-3" : "-2"; }

bool Model::isReported(const Step& step, Access access, const std::string& before) const {
  if (access == ACCESS_ROSTRICT) return false;
  return !announced_.contains(step.name) || access == ACCESS_WO || get(step.name) != before;
}

// A refusal ends its level; what the level has left is as if it had not been staged.
std::string Model::commit(Staged& staged, std::vector<std::string>& signal) {
  resolveResets(staged);
  std::set<std::string> changed;
  std::string answer;
  std::optional<int> endedLevel;
  for (const Step& step : planCommit(staged)) {
    Entry& entry = staged.at(step.name);
    const std::string before = get(step.name);
    const std::string wanted = entry.value;
    if (step.level == endedLevel) {
      takeCommitted(entry, step.name);
      continue;
    }
    const Verdict verdict = evaluate(entry, step.name, staged, true);
    if (isRefusal(verdict)) {
      endedLevel = step.level;
      log_.push_back("commit: ERROR " + inDoubleQuotes(step.name) + "=" + inDoubleQuotes(wanted) +
                     ": ret=" + refusalCode(verdict));
      answer = answer.empty() ? commitFailure(verdict) : answer;
    } else if (verdict == STORED && isReported(step, entry.instance.parm->access, before)) {
      announced_.insert(step.name);
      changed.insert(step.name);
    }
  }
  for (const std::string& name : changed) signal.push_back(name + "=" + get(name));
  staged.clear();
  return answer;
}

std::string Model::commitFailure(Verdict verdict) {
  return failed("Commit", verdict == NO_INSTANCE ? "parameter index is invalid"
                                                 : "parameter definition is invalid");
}

// What the query has to judge: the target and what it depends on, from the level of the lowest of
// them that is staged.
Model::Plan Model::planQuery(Staged& scratch, const std::set<std::string>& names,
                             int targetLevel) const {
  int startLevel = targetLevel;
  for (const std::string& name : names) {
    if (scratch.contains(name)) {
      startLevel = std::min(startLevel, scratch.at(name).instance.parm->level);
    }
  }
  Plan plan;
  for (const std::string& name : names) {
    const Instance instance = instanceOf(name);
    if (instance.parm != nullptr && instance.at.size() == instance.parm->indices.size() &&
        instance.parm->level >= startLevel) {
      stage(scratch, name, true);
      plan.insert({instance.parm->level, instance.base, instance.at, name});
    }
  }
  return plan;
}

int Model::evaluateQuery(const Plan& plan, Staged& scratch) {
  int result = 0;
  std::optional<int> endedLevel;
  for (const Step& step : plan) {
    if (step.level != endedLevel &&
        isRefusal(evaluate(scratch.at(step.name), step.name, scratch, false))) {
      endedLevel = step.level;
      result = NOT_IN_RANGE;
    }
  }
  return result;
}

int Model::presentRange(const Instance& instance, const See& see, Range& out) {
  const Parm& parm = *instance.parm;
  const std::optional<Range> documented = parm.documented ? parm.documented(see) : std::nullopt;
  const std::vector<Statement> statements = statementsOf(parm, instance.at, see);
  if (documented || statements.empty()) {
    out = documented.value_or(parm.constant);
    return 0;
  }
  out = statements.front().range;
  return statements.front().code;
}

int Model::range(Staged scratch, const std::string& name, Range& out) {
  const Instance target = instanceOf(name);
  if (target.parm == nullptr || !fits(*target.parm, target.at)) return INVALID_NAME;
  std::set<std::string> names = dependencies(*target.parm, target.at);
  names.insert(name);
  const int planned = evaluateQuery(planQuery(scratch, names, target.parm->level), scratch);
  Entry& entry = stage(scratch, name, true);
  entry.generated = false;
  if (isRefusal(evaluate(entry, name, scratch, false))) return NOT_IN_RANGE;
  const int code = presentRange(target, seeing(scratch), out);
  return code != 0 ? code : planned;
}

std::string Model::rangeAnswer(const Staged& staged, const std::string& name) {
  Range out;
  const int code = range(staged, name, out);
  return code != 0 ? rangeFailure(code) : writtenRange(out);
}

std::string Model::rangesAnswer(const Staged& staged, const std::vector<std::string>& names) {
  std::map<std::string, Range> ranges;
  for (const std::string& name : names) {
    if (const int code = range(staged, name, ranges[name]); code != 0) return rangeFailure(code);
  }
  std::vector<std::string> texts;
  std::vector<std::string> spans;
  for (const auto& [name, range] : ranges) addRange(range, &name, texts, spans);
  return listed(texts) + BETWEEN_ARGUMENTS + listed(spans);
}

std::string Model::indices(const Staged& staged, const std::string& name) const {
  const Parm* parm = instanceOf(name).parm;
  if (parm == nullptr) return failed("Get parm index", "parm not found");
  std::vector<std::string> items;
  for (const std::string& index : parm->indices) {
    if (presentValues(index, seeing(staged))) items.push_back(quoted(index));
  }
  return listed(items);
}

std::string Model::indexRange(const Staged& staged, const std::string& index) const {
  if (index != "channel" && index != "side") return failed("Get index range", "index not found");
  const std::optional<Range> values = presentValues(index, seeing(staged));
  return values ? writtenRange(*values) : failed("Get index range", "index is not valid");
}
