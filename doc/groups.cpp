#include "doc/groups.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

// The first `parts` parts of a name, which its signs and the number at its end divide; empty where
// it has no more than these.
std::string_view prefixOf(std::string_view name, size_t parts) {
  size_t end = 0;
  for (size_t part = 0; part < parts; ++part) {
    end = name.find_first_of("_.-:", end + (part == 0 ? 0 : 1));
    if (end == std::string_view::npos) break;
  }
  if (end != std::string_view::npos && end > 0) return name.substr(0, end);
  // "p" of "p1", where no sign divides the name.
  if (parts > 1) return {};
  const size_t digits = name.find_last_not_of("0123456789") + 1;
  return digits < name.size() ? name.substr(0, digits) : std::string_view();
}

class Grouping {
 public:
  explicit Grouping(const DocModel& model) : model_(model) {}

  void part(const std::vector<size_t>& members, const std::string& title, size_t parts) {
    if (members.size() <= MANY_IN_A_GROUP && !title.empty()) {
      groups_.push_back({title, members});
      return;
    }
    std::vector<std::string> prefixes;  // in the order of the first members
    std::unordered_map<std::string, std::vector<size_t>> byPrefix;
    for (const size_t member : members) {
      std::string prefix(prefixOf(model_.parameters[member].name, parts));
      std::vector<size_t>& list = byPrefix[prefix];
      if (list.empty()) prefixes.push_back(prefix);
      list.push_back(member);
    }
    std::vector<size_t> rest;
    for (const std::string& prefix : prefixes) {
      const std::vector<size_t>& list = byPrefix[prefix];
      if (prefix.empty() || list.size() == 1) {
        rest.insert(rest.end(), list.begin(), list.end());
      } else {
        part(list, prefix, parts + 1);
      }
    }
    std::ranges::sort(rest);
    addByCount(rest, title);
  }

  std::vector<DocGroup> take() {
    // Those without a prefix stay behind the others.
    const auto end = std::stable_partition(
        groups_.begin(), groups_.end(), [](const DocGroup& group) { return !group.title.empty(); });
    std::ranges::sort(groups_.begin(), end, {},
                      [](const DocGroup& group) { return group.members.front(); });
    for (auto group = end; group != groups_.end(); ++group) {
      nameByEnds(*group);
      group->hasPrefix = false;
    }
    return std::move(groups_);
  }

 private:
  // As few groups as possible, of nearly one size.
  void addByCount(const std::vector<size_t>& members, const std::string& title) {
    if (members.empty()) return;
    const size_t count = (members.size() + MANY_IN_A_GROUP - 1) / MANY_IN_A_GROUP;
    for (size_t i = 0; i < count; ++i) {
      const auto at = [&](size_t part) {
        return members.begin() + static_cast<ptrdiff_t>(members.size() * part / count);
      };
      DocGroup group{{}, {at(i), at(i + 1)}};
      if (!title.empty()) nameByEnds(group);
      groups_.push_back(std::move(group));
    }
  }

  void nameByEnds(DocGroup& group) const {
    const std::string& first = model_.parameters[group.members.front()].name;
    const std::string& last = model_.parameters[group.members.back()].name;
    group.title = group.members.size() == 1 ? first : first + " … " + last;
  }

  const DocModel& model_;
  std::vector<DocGroup> groups_;
};

}  // namespace

std::vector<DocGroup> groupsOf(const DocModel& model, const std::vector<size_t>& parameters) {
  Grouping grouping(model);
  grouping.part(parameters, {}, 1);
  return grouping.take();
}
