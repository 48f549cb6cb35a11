#include "ctl/words/limit_changes.h"

#include <map>
#include <set>

#include "ctl/service/bulk.h"
#include "ctl/text/assignment.h"
#include "ctl/text/range_text.h"

namespace {

using Causes = std::map<std::string, std::set<std::string>>;  // of a base name

// Who refers to `names` directly; an index passes on to the parameters that it indexes.
Causes usersOf(Client& client, const Names& names) {
  Causes users;
  const std::vector<Definition> definitions = client.service.definitions(names);
  for (size_t i = 0; i < names.size(); ++i) {
    for (const std::string& user : definitions[i].usedBy) users[user].insert(names[i]);
  }
  return users;
}

// The parameters among the users of `names`, with those of the indices among them.
Causes parametersUsing(Client& client, const Names& names) {
  Causes users = usersOf(client, names);
  std::set<std::string> indices;
  for (const ListedParameter& listed : client.service.list("")) {
    if (listed.isIndex() && users.contains(listed.name)) indices.insert(listed.name);
  }
  for (const auto& [user, through] : usersOf(client, {indices.begin(), indices.end()})) {
    for (const std::string& index : through) {
      users[user].insert(users[index].begin(), users[index].end());
    }
  }
  for (const std::string& index : indices) users.erase(index);
  return users;
}

bool isSame(const InstanceState& one, const InstanceState& other) {
  constexpr uint32_t COMPARED = STATE_EXISTS | STATE_WRITABLE | STATE_LIMITED | STATE_NO_LIMITS;
  return (one.flags & COMPARED) == (other.flags & COMPARED) && one.spans == other.spans &&
         one.texts == other.texts;
}

// Those of the changed instances that each reads, in place of their base names.
void nameInstances(Client& client, const std::set<std::string>& changed,
                   std::vector<LimitChange>& different) {
  Names names;
  for (const LimitChange& each : different) names.push_back(each.after.name);
  const std::optional<std::vector<Names>> uses = client.service.uses(names);
  for (size_t i = 0; uses && i < names.size(); ++i) {
    Names causes = (*uses)[i];
    std::erase_if(causes, [&](const std::string& name) { return !changed.contains(name); });
    // Where only what they read in turn has changed, a base name is better than none.
    if (!causes.empty()) different[i].because = std::move(causes);
  }
}

}  // namespace

std::vector<LimitChange> limitChanges(Client& client, const std::vector<Change>& changes,
                                      const std::vector<Assignment>& untold) {
  std::set<std::string> changed;
  std::set<std::string> changedBases;
  std::vector<Assignment> left = untold;
  for (const Change& change : changes) {
    if (change.before == change.after) continue;
    changed.insert(change.name);
    changedBases.emplace(baseOf(change.name));
    left.push_back({change.name, change.after});
  }
  const Causes users = parametersUsing(client, {changedBases.begin(), changedBases.end()});
  Names bases;
  for (const auto& [name, causes] : users) bases.push_back(name);
  if (bases.empty()) return {};
  // What the commit leaves, as by the device itself: where it is only staged, nothing has followed
  // yet, and what will be cut is as it was asked for.
  const OwnTransaction after(client.service);
  static_cast<void>(stageValues(client.service, after.id(), left, true));
  std::set<std::string> instances;
  for (const uint32_t situation : {COMMITTED, after.id()}) {
    for (const std::string& name : client.service.instances(situation, bases)) {
      instances.insert(name);
    }
  }
  const Names names(instances.begin(), instances.end());
  const std::vector<InstanceState> before = client.service.states(COMMITTED, names);
  const std::vector<InstanceState> later = client.service.states(after.id(), names);
  std::vector<LimitChange> different;
  for (size_t i = 0; i < names.size(); ++i) {
    if (isSame(before[i], later[i])) continue;
    const std::set<std::string>& causes = users.at(std::string(baseOf(names[i])));
    different.push_back({before[i], later[i], {causes.begin(), causes.end()}});
  }
  nameInstances(client, changed, different);
  return different;
}

std::vector<std::string> limitTexts(const LimitChange& change) {
  const InstanceState& before = change.before;
  const InstanceState& after = change.after;
  if (!after.is(STATE_EXISTS)) return {"would not exist"};
  std::vector<std::string> texts;
  if (!before.is(STATE_EXISTS)) texts.emplace_back("would exist");
  if (before.is(STATE_EXISTS) && before.is(STATE_WRITABLE) != after.is(STATE_WRITABLE)) {
    texts.emplace_back(after.is(STATE_WRITABLE) ? "could be written" : "could not be written");
  }
  const std::string range = rangeText(after);
  const std::string was = rangeText(before);
  if (!before.is(STATE_EXISTS) || before.is(STATE_NO_LIMITS)) {
    texts.push_back("would take " + range);
  } else if (range != was) {
    texts.push_back("would take " + range + ", not " + was);
  }
  return texts;
}
