#include "ctl/words/levels.h"

#include <algorithm>
#include <iterator>

#include "ctl/text/assignment.h"

Levels::Levels(Service& service) : Levels(service.list("")) {}

Levels::Levels(std::vector<ListedParameter> all) {
  for (ListedParameter& listed : all) {
    if (listed.isIndex()) continue;
    bases_[listed.level].push_back(listed.name);
    parameters_.emplace(listed.name, std::move(listed));
  }
}

bool Levels::has(const std::string& name) const { return parameters_.contains(baseOf(name)); }

uint32_t Levels::of(const std::string& name) const {
  return parameters_.find(baseOf(name))->second.level;
}

const std::string& Levels::access(const std::string& name) const {
  return parameters_.find(baseOf(name))->second.access;
}

bool Levels::canBeSet(const std::string& name) const {
  const auto found = parameters_.find(baseOf(name));
  return found != parameters_.end() && found->second.canBeSet();
}

std::vector<Assignment> Levels::known(const std::vector<Assignment>& assignments) const {
  std::vector<Assignment> known;
  std::ranges::copy_if(assignments, std::back_inserter(known),
                       [&](const Assignment& each) { return has(each.name); });
  return known;
}

std::map<uint32_t, Names> Levels::sorted(const Names& names) const {
  std::map<uint32_t, Names> all;
  for (const std::string& name : names) all[of(name)].push_back(name);
  return all;
}

std::map<uint32_t, std::vector<Assignment>> Levels::sorted(
    const std::vector<Assignment>& assignments) const {
  std::map<uint32_t, std::vector<Assignment>> all;
  for (const Assignment& each : assignments) all[of(each.name)].push_back(each);
  return all;
}
