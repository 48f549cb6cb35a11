#include "ctl/service/answers.h"

#include <set>
#include <string_view>

std::vector<std::string> namesOf(const std::vector<Assignment>& assignments) {
  std::vector<std::string> names;
  names.reserve(assignments.size());
  for (const Assignment& assignment : assignments) names.push_back(assignment.name);
  return names;
}

void removeRefused(std::vector<Assignment>& assignments, const std::vector<Refusal>& refused) {
  std::set<std::string_view> names;
  for (const Refusal& refusal : refused) names.insert(refusal.name);
  std::erase_if(assignments, [&](const Assignment& each) { return names.contains(each.name); });
}
