#include "check/proof/resting.h"

#include <algorithm>

#include "check/proof/replay.h"
#include "database/commit.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MANY_RELATED = 8;

std::string motionText(const Motion& motion, std::string_view movement, std::string_view when) {
  return motion.name + std::string(movement) + ": " + std::string(when) + " it is \"" +
         motion.before + "\", and \"" + motion.after + "\" after the same values are set again";
}

using Pairs = std::vector<const NamedValues::value_type*>;

int setAndCommit(const Pairs& pairs, Database& database) {
  Transaction transaction(database);
  for (const auto* pair : pairs) {
    static_cast<void>(transaction.set(pair->first, pair->second, true));
  }
  std::vector<Change> changes;
  return commit(transaction, changes);
}

// Where one value fails, a commit leaves out others of its level: then each is set alone. Returns
// false where there is too much for a commit.
bool commitTogether(const Pairs& pairs, Database& database) {
  const int result = setAndCommit(pairs, database);
  if (result == COMMIT_DONE || result == COMMIT_TOO_LARGE || pairs.size() == 1) {
    return result != COMMIT_TOO_LARGE;
  }
  return std::ranges::all_of(
      pairs, [&](const auto* pair) { return setAndCommit({pair}, database) != COMMIT_TOO_LARGE; });
}

}  // namespace

NamedValues heldValues(const std::vector<std::string>& names, Database& database) {
  NamedValues values;
  values.reserve(names.size());
  const Transaction reader(database);
  for (const std::string& name : names) {
    const std::string* const value = reader.find(name);
    values.emplace_back(name, value == nullptr ? std::string() : *value);
  }
  return values;
}

bool commitAgain(const NamedValues& values, Database& database, const Deadline& deadline) {
  std::map<uint32_t, Pairs> levels;
  for (const auto& pair : values) {
    if (!pair.second.empty()) levels[database.findNamed(pair.first)->level].push_back(&pair);
  }
  bool areDone = true;
  for (const auto& [level, pairs] : levels) {
    if (deadline.isOver()) break;
    areDone = commitTogether(pairs, database) && areDone;
  }
  return areDone;
}

bool restAfterStart(const std::vector<std::string>& names, Database& database,
                    const Deadline& deadline) {
  ConfinedCommits commits(names, database);
  commits.start();
  const NamedValues started = heldValues(names, database);
  static_cast<void>(commitAgain(started, database, deadline));
  return heldValues(names, database) == started;
}

Motions motionsBetween(const NamedValues& before, const NamedValues& after) {
  Motions motions;
  for (size_t i = 0; i < before.size(); ++i) {
    const auto& [name, value] = before[i];
    if (after[i].second == value) continue;
    motions.emplace(baseName(name), Motion{name, value, after[i].second});
  }
  return motions;
}

std::string restlessText(const Motion& motion, std::string_view when) {
  return motionText(motion, " does not come to rest", when);
}

std::optional<Finding> findRestless(const CompiledText& text, const Motions& motions,
                                    std::string_view when) {
  std::optional<Finding> finding;
  for (const Subject& subject : text.subjects()) {
    const auto found = motions.find(subject.name());
    if (found == motions.end()) continue;
    const Motion& motion = found->second;
    if (!finding) {
      finding = Finding{"unsettled", placeOfName(subject), restlessText(motion, when)};
    } else if (finding->related.size() < MANY_RELATED) {
      finding->related.push_back(
          {placeOfName(subject), motionText(motion, " goes on as well", when)});
    }
  }
  return finding;
}
