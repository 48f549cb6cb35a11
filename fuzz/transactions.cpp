// Fuzzes transactions: the input makes a small device and a script of what two clients do with it.
// Whatever they do, each sees what it staged and else what is committed, the signals tell every
// change, a range query changes nothing and foretells what a commit brings about, an ended
// transaction leaves nothing, and a commit leaves its values settled.
#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/system_log.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/instance_state.h"
#include "database/present_instances.h"
#include "database/preview.h"
#include "database/range_query.h"
#include "database/reason_rows.h"
#include "database/transaction.h"
#include "fuzz/built_text.h"
#include "fuzz/commit_watch.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/instance.h"
#include "fuzz/range_watch.h"
#include "fuzz/small_device.h"
#include "fuzz/trace.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MAX_STEPS = 50;

const char* const VALUES[] = {"0",  "1",  "2",   "3",  "4", "5",   "6",    "7",        "8",
                              "9",  "12", "30",  "-1", "",  "on",  "off",  "x",        "0x5",
                              "07", " 4", "1e3", "sd", "c", "720", "1920", "1080i/50", "720p/50"};
// Most choices exist.
const char* const NUMBER_INDICES[] = {"0", "1", "2", "0", "1", "2", "0", "1", "2", "01", "9"};
const char* const TEXT_INDICES[] = {"a", "b", "a", "b", "a", "b", "c"};

std::string stagedText(const StagedEntry& entry) {
  return fullName(entry) + "=" + entry.value.text() + (entry.reset ? " reset" : "") +
         (entry.force ? " force" : "") + (entry.generated ? " generated" : "") + "\n";
}

class Script {
 public:
  Script(Database& database, FuzzInput& input)
      : database_(database),
        input_(input),
        parms_(database.parmsInNameOrder()),
        transactions_(database) {
    for (ParmEntry* parm : parms_) addAllInstances(instances_, database, *parm);
    for (uint32_t& id : ids_) demand(transactions_.open(id) != nullptr, "no transaction");
  }

  void run() {
    for (size_t step = 0; step < MAX_STEPS && !input_.atEnd(); ++step) runStep();
    for (const uint32_t id : ids_) runCommit(transactionOf(id));
  }

 private:
  void runStep() {
    uint32_t& id = ids_[input_.below(2)];
    Transaction& transaction = transactionOf(id);
    trace("transaction ", std::to_string(id));
    switch (input_.below(12)) {
      case 0:
      case 1:
      case 2:
        return runSet(transaction, false);
      case 3:
      case 4:
        return runSet(transaction, true);
      case 5:
        return runReset(transaction);
      case 6:
        return bringUp(transaction);
      case 7:
      case 8:
        return runCommit(transaction);
      case 9:
        return runEnd(id);
      default:
        return runQueries(transaction);
    }
  }

  Transaction& transactionOf(uint32_t id) {
    Transaction* const transaction = transactions_.find(id);
    if (transaction == nullptr) endWith("an open transaction is not found");
    return *transaction;
  }

  // The name of an instance, which need not exist; it is one of those to look at from now on.
  std::string pickName() {
    ParmEntry& parm = *parms_[input_.below(static_cast<uint32_t>(parms_.size()))];
    IndexTuple indices;
    for (const IndexDef* index : parm.parm.indices()) {
      indices.emplace_back(index->name() == "i" ? input_.pick(NUMBER_INDICES)
                                                : input_.pick(TEXT_INDICES));
    }
    addInstance(instances_, parm, indices);
    return fullName(parm.parm.name(), indices);
  }

  static std::string valueOf(const Transaction& transaction, const std::string& name) {
    std::string value;
    demand(transaction.get(name, value) == 0, "no value of ", name);
    return value;
  }

  void runSet(Transaction& transaction, bool force) {
    const std::string name = pickName();
    const std::string value = input_.pick(VALUES);
    const std::string before = valueOf(transaction, name);
    const bool valid = transaction.validate(name, value);
    const int result = transaction.set(name, value, force);
    trace(force ? "set_status " : "set ", name, " ", value, " -> ", std::to_string(result));
    demand(result == (valid ? STAGE_DONE : STAGE_INVALID_VALUE), "set is not as validated");
    demand(valueOf(transaction, name) == (valid ? value : before), name, " shows another value");
  }

  void runReset(Transaction& transaction) {
    const std::string name = pickName();
    const std::string before = valueOf(transaction, name);
    demand(transaction.reset(name, input_.flip()) == STAGE_DONE, "no reset of ", name);
    trace("reset ", name);
    demand(valueOf(transaction, name) == before, "a reset shows before the commit");
  }

  // Resets what the indices' base bounds accept.
  void bringUp(Transaction& transaction) {
    trace("bring up");
    for (const auto& [name, instance] : instances_) {
      std::set<std::string> names;
      if (dependencies(database_, name, true, names) != DEPENDENCIES_FOUND) continue;
      demand(transaction.reset(name, true) == STAGE_DONE, "no reset of ", name);
    }
  }

  void runCommit(Transaction& transaction) {
    const RangeWatch range(database_, transaction.staged(), pickName());
    const CommitWatch watch(database_, transaction.staged(), instances_);
    std::vector<Change> changes;
    Preview foretold;
    const int expected = preview(transaction, foretold);
    CommitRecord record;
    const int result = commit(transaction, changes, nullptr, &record);
    trace("commit -> ", std::to_string(result), "\n", isTracing() ? committedState() : "");
    demand(
        result == COMMIT_DONE || result == COMMIT_INVALID_VALUE || result == COMMIT_INVALID_INDEX,
        "commit returned ", std::to_string(result));
    demand(transaction.staged().empty(), "a commit left something staged");
    watch.expectOnlyPlannedChanged(instances_);
    expectAnnounced(changes, watch);
    demand(result == expected, "the preview foretold another result");
    expectForetold(changes, record, foretold);
    if (result != COMMIT_DONE) return;
    watch.expectSettled();
    range.expectForetold();
  }

  static void expectForetold(const std::vector<Change>& changes, const CommitRecord& record,
                             const Preview& foretold) {
    demand(changes.size() == foretold.changes.size(), "the preview foretold other changes");
    for (size_t i = 0; i < changes.size(); ++i) {
      const PreviewedChange& previewed = foretold.changes[i];
      const bool isSame = previewed.name == changes[i].name &&
                          previewed.before == record.before(changes[i]) &&
                          previewed.after == changes[i].held->value.text();
      demand(isSame, changes[i].name, " was foretold otherwise");
    }
  }

  // What the state of an instance says, its reasons and the list of instances say, too.
  void compareState(Transaction& transaction, const std::string& name) {
    InstanceStates states(transaction);
    const InstanceState state = states.of(name);
    const auto rows = reasonRows(transaction, states.outlook(), name);
    demand(rows.has_value(), name, " has no reasons");
    for (const ReasonRow& row : *rows) {
      if (row.question == "exists") demand((row.answer == "yes") == state.exists, "exists");
      if (row.question == "writable") demand((row.answer == "yes") == state.isWritable, "writable");
      if (row.question == "value") demand(row.answer == *state.value, "value");
    }
    size_t count = 0;
    PresentInstances present(states.outlook().values());
    present.visit(*database_.findNamed(name), [&](const std::string& each) {
      count += each == name ? 1 : 0;
      return true;
    });
    const bool isListed = count == 1;
    demand(count <= 1 && (state.exists || !isListed), name, " is listed and does not exist");
  }

  static bool isHeld(const Instance& instance) {
    return instance.parm->parm.committed(instance.indices) != nullptr;
  }

  // Each name once, and only with a reason; then what get says of every instance is what the
  // signals have said of it. A stored "rostrict" value is told to nobody.
  void expectAnnounced(const std::vector<Change>& changes, const CommitWatch& watch) {
    const Transaction fresh(database_);
    for (size_t i = 0; i < changes.size(); ++i) {
      const std::string& name = changes[i].name;
      demand(i == 0 || changes[i - 1].name < name, name, " is announced out of order");
      const ParmDef& parm = instances_.at(name).parm->parm;
      const std::string value = valueOf(fresh, name);
      demand(parm.mode() != MODE_ROSTRICT, "a rostrict parameter is announced: ", name);
      // What was staged may be evaluated on level 0 and on its own level, to and fro.
      demand(!announced_.contains(name) || value != watch.before(name) || watch.isStaged(name) ||
                 parm.mode() == MODE_WRITE_ONLY,
             name, " is announced without a change");
      demand(changes[i].held->value.text() == value, name, " is told with another value");
      announced_[name] = value;
    }
    for (const auto& [name, instance] : instances_) {
      if (instance.parm->parm.mode() == MODE_ROSTRICT) continue;
      const auto announced = announced_.find(name);
      const bool isAnnounced = announced != announced_.end();
      demand(valueOf(fresh, name) == (isAnnounced ? announced->second : ""), name,
             " changed without a word");
      // An instance with indices is only there once it was stored.
      demand(isAnnounced || instance.indices.empty() || !isHeld(instance), name,
             " was stored without a word");
    }
  }

  void runEnd(uint32_t& id) {
    trace("end");
    const uint32_t other = ids_[0] == id ? ids_[1] : ids_[0];
    const std::string before = committedState() + stagedState(other);
    const uint32_t ended = id;
    demand(transactions_.end(ended) == 0, "an open transaction cannot be ended");
    demand(transactions_.find(ended) == nullptr, "an ended transaction is found");
    demand(transactions_.end(ended) == 1, "a transaction ends twice");
    const Transaction* const opened = transactions_.open(id);
    demand(opened != nullptr && id != ended, "an id is used again at once");
    demand(opened->staged().empty() && committedState() + stagedState(other) == before,
           "an ended transaction left traces");
  }

  void runQueries(Transaction& transaction) {
    const std::string name = pickName();
    trace("query ", name);
    const std::string before = state();
    const StagedValues& staged = transaction.staged();
    BoundsParm range;
    static_cast<void>(queryRange(database_, staged, name, range));
    demand(range.isConsistent(), "no proper range of ", name);
    std::set<std::string> names;
    static_cast<void>(dependencies(database_, name, true, names));
    const ParmDef& parm = instances_.at(name).parm->parm;
    const std::vector<std::string> valid = validIndices(database_, staged, parm);
    demand(valid.size() <= parm.indices().size(), "more indices than there are");
    for (const IndexDef* index : parm.indices()) {
      std::vector<std::string> texts;
      Spans spans;
      static_cast<void>(indexRange(database_, staged, index->name(), texts, spans));
    }
    compareState(transaction, name);
    demand(state() == before, "a query of ", name, " changed something");
  }

  std::string committedState() const {
    std::string state;
    for (const auto& [name, instance] : instances_) {
      const CommittedValue* const value = instance.parm->parm.committed(instance.indices);
      state += name + (value == nullptr ? " -" : "=" + value->value.text()) +
               (value != nullptr && value->announced ? " announced" : "") + "\n";
    }
    return state;
  }

  std::string stagedState(uint32_t id) {
    std::string state;
    for (const StagedEntry* entry : transactionOf(id).staged().inNameOrder()) {
      state += std::to_string(id) + " " + stagedText(*entry);
    }
    return state;
  }

  // Everything committed and everything staged.
  std::string state() { return committedState() + stagedState(ids_[0]) + stagedState(ids_[1]); }

  Database& database_;
  FuzzInput& input_;
  std::vector<ParmEntry*> parms_;
  Transactions transactions_;
  std::array<uint32_t, 2> ids_{};
  Instances instances_;                           // all that can be named, or has been
  std::map<std::string, std::string> announced_;  // the last value that was told, by full name
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const LogRedirection silence([](const std::string&) {});
  FuzzInput input(data, size);
  const std::string device = smallDevice(input);
  trace(device);
  BuiltText built(device);
  demand(built.readable, "a device cannot be read:\n", device);
  if (built.result == 0) Script(built.database, input).run();
  return 0;
}
