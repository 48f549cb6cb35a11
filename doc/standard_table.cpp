#include "doc/standard_table.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "base/number.h"
#include "check/printable.h"
#include "doc/short_text.h"
#include "play/bring_up.h"
#include "play/recipe_client.h"
#include "vid_std.h"

namespace {

using Names = std::vector<std::string>;

// Values that may select a standard, in the order of the catalogue: its own names, and behind each
// the other texts of the parameter that select the same.
Names candidatesOf(const DocParameter& parameter) {
  std::map<std::pair<bool, size_t>, Names> byRow;
  const auto offer = [&](const std::string& value) {
    const vidSelection_t selected = selectVid(value);
    if (selected.standard == nullptr && selected.format == nullptr) return;
    const bool isFormat = selected.standard == nullptr;
    const auto row =
        isFormat ? selected.format - vidFormats().data() : selected.standard - vidStds().data();
    Names& names = byRow[{isFormat, static_cast<size_t>(row)}];
    if (std::ranges::find(names, value) == names.end()) names.push_back(value);
  };
  for (const vidStd_t& standard : vidStds()) {
    if (selectVid(standard.name).standard == &standard) offer(standard.name);
  }
  for (const vidFormat_t& format : vidFormats()) {
    if (selectVid(format.name).format == &format) offer(format.name);
  }
  for (const DocRange& range : parameter.ranges) {
    for (const DocItem& item : range.items) {
      if (item.text) offer(*item.text);
    }
  }
  Names all;
  for (const auto& [row, names] : byRow) all.insert(all.end(), names.begin(), names.end());
  return all;
}

// A row before those that are alike are one: of one instance.
struct InstanceRow {
  std::string parameter;
  std::string indices;  // "[1][red]"
  std::vector<DocStandardCell> cells;
};

// Works out one selector after the other.
class StandardsMaker {
 public:
  StandardsMaker(const DocModel& model, Device& device, const KnownDevice& known)
      : model_(model), device_(device), known_(known), id_(device.call({"start"}).transaction) {}

  DocStandards make(const DocParameter& selector) {
    DocStandards result = {selector.name, {}, {}};
    const Names selectors = fullNames(instancesOf(selector.name), selector.name);
    const std::vector<const DocParameter*> followers = followersOf(selector);
    std::vector<InstanceRow> rows;
    for (const DocParameter* follower : followers) {
      for (const std::string& indices : instancesOf(follower->name)) {
        rows.push_back({follower->name, indices, {}});
      }
    }
    for (const std::string& standard : candidatesOf(selector)) {
      if (!select(selectors, standard)) continue;
      result.standards.push_back(printable(standard));
      addCells(rows);
    }
    restore(selectors, rows);
    if (!result.standards.empty()) result.rows = joined(selector, rows);
    return result;
  }

 private:
  static Names fullNames(const Names& instances, const std::string& name) {
    Names names;
    for (const std::string& indices : instances) names.push_back(name + indices);
    return names;
  }

  static Names firstOf(const Names& names) {
    const size_t count = std::min(names.size(), MANY_INSTANCES);
    return {names.begin(), names.begin() + static_cast<ptrdiff_t>(count)};
  }

  // The index values of the instances of a parameter in brackets, MANY_INSTANCES at most.
  [[nodiscard]] Names instancesOf(const std::string& parameter) const {
    Names instances = {""};
    const auto known = known_.parms.find(parameter);
    if (known == known_.parms.end()) return {};
    for (const std::string& index : known->second) {
      instances = crossed(instances, firstOf(known_.indices.at(index)));
      instances = firstOf(instances);
    }
    return instances;
  }

  // What follows the selector, also through others, each after what it follows.
  [[nodiscard]] std::vector<const DocParameter*> followersOf(const DocParameter& selector) const {
    std::set<const DocParameter*> found;
    std::vector<const DocParameter*> open = {&selector};
    while (!open.empty()) {
      const DocParameter* const next = open.back();
      open.pop_back();
      for (const std::string& name : next->followedBy) {
        const DocParameter* const follower = model_.find(name);
        if (follower != &selector && found.insert(follower).second) open.push_back(follower);
      }
    }
    std::vector<const DocParameter*> followers(found.begin(), found.end());
    std::ranges::sort(followers, {}, [](const DocParameter* follower) {
      return std::pair(follower->level, follower);  // of one list, so in the order of the text
    });
    return followers;
  }

  Answer call(std::string_view method, const std::string& name, Names values = {}) {
    return device_.call({method, id_, {name}, std::move(values)});
  }
  bool commit() { return device_.call({"commit", id_}).error.empty(); }

  // Whether all instances of the selector that there are hold the value then.
  bool select(const Names& selectors, const std::string& standard) {
    bool isHeld = false;
    for (const std::string& name : selectors) {
      const bool isStored = call("set_status", name, {standard}).error.empty();
      if (!commit() || !isStored) continue;
      if (valueOf(name) != standard) return false;
      isHeld = true;
    }
    return isHeld;
  }

  std::string valueOf(const std::string& name) {
    const Answer answer = call("get", name);
    return answer.texts.empty() ? std::string() : answer.texts.front();
  }

  // What does not exist keeps its value.
  void reset(const std::string& name) {
    static_cast<void>(call("reset_status", name));
    static_cast<void>(commit());
  }

  void addCells(std::vector<InstanceRow>& rows) {
    // What a first round resets may be looked at by a default that has come before it.
    for (const InstanceRow& row : rows) reset(row.parameter + row.indices);
    for (const InstanceRow& row : rows) reset(row.parameter + row.indices);
    for (InstanceRow& row : rows) row.cells.push_back(cellOf(row.parameter + row.indices));
  }

  DocStandardCell cellOf(const std::string& name) {
    DocStandardCell cell;
    cell.exists = call("why", name).isValid;
    if (!cell.exists) return cell;
    cell.value = shortened(printable(valueOf(name)), MANY_CHARACTERS);
    const Answer answer = call("get_range", name);
    if (!answer.error.empty() || answer.ranges.empty()) return cell;
    const NamedRange& range = answer.ranges.front();
    cell.hasRange = true;
    const size_t spans = std::min(range.spans.size(), MANY_ITEMS);
    const size_t texts = std::min(range.texts.size(), MANY_ITEMS);
    cell.isCut = spans < range.spans.size() || texts < range.texts.size();
    cell.spans.assign(range.spans.begin(), range.spans.begin() + static_cast<ptrdiff_t>(spans));
    for (size_t i = 0; i < texts; ++i) {
      cell.texts.push_back(shortened(printable(range.texts[i]), MANY_CHARACTERS));
    }
    return cell;
  }

  // Leaves the device with its defaults to the next selector.
  void restore(const Names& selectors, const std::vector<InstanceRow>& rows) {
    for (const std::string& name : selectors) reset(name);
    for (const InstanceRow& row : rows) reset(row.parameter + row.indices);
  }

  [[nodiscard]] static bool isVaried(const InstanceRow& row) {
    return std::ranges::any_of(
        row.cells, [&](const DocStandardCell& cell) { return cell != row.cells.front(); });
  }

  // In the order of the text; instances of a parameter that are alike are one row.
  [[nodiscard]] std::vector<DocStandardRow> joined(const DocParameter& selector,
                                                   const std::vector<InstanceRow>& rows) const {
    std::map<size_t, std::vector<DocStandardRow>> byPlace;
    for (const InstanceRow& row : rows) {
      const size_t place = model_.places.at(row.parameter);
      const Names& direct = model_.parameters[place].standards;
      const bool isDirect = std::ranges::find(direct, selector.name) != direct.end();
      if (!isDirect && !isVaried(row)) continue;
      std::vector<DocStandardRow>& list = byPlace[place];
      const auto same = std::ranges::find(list, row.cells, &DocStandardRow::cells);
      if (same == list.end()) {
        list.push_back({row.parameter, printable(row.indices), row.cells});
      } else {
        same->instances += " " + printable(row.indices);
      }
    }
    std::vector<DocStandardRow> result;
    for (auto& [place, list] : byPlace) {
      if (list.size() == 1 && isWhole(list.front(), rows)) list.front().instances.clear();
      std::ranges::move(list, std::back_inserter(result));
    }
    return result;
  }

  // Whether a row has all instances of its parameter.
  [[nodiscard]] static bool isWhole(const DocStandardRow& row,
                                    const std::vector<InstanceRow>& rows) {
    const auto count = std::ranges::count(rows, row.parameter, &InstanceRow::parameter);
    return count == 1 + std::ranges::count(row.instances, ' ');
  }

  const DocModel& model_;
  Device& device_;
  const KnownDevice& known_;
  const uint32_t id_;
};

// Numbers ascending, then texts.
void putInOrder(Names& values) {
  std::ranges::sort(values, {}, [](const std::string& value) {
    const std::optional<int32_t> number = wholeNumber(value);
    return std::tuple(!number, number.value_or(0), value);
  });
}

// Whether the instances of all parameters are too many to be brought up.
bool isTooLarge(const KnownDevice& known) {
  size_t total = 0;
  for (const auto& [name, indices] : known.parms) {
    size_t count = 1;
    for (const std::string& index : indices) {
      count *= known.indices.at(index).size();  // a known device has a million at most
    }
    total += count;
  }
  return total > MANY_TO_BRING_UP;
}

}  // namespace

std::vector<DocStandards> standardsOf(const DocModel& model, Device& device) {
  std::set<std::string> selectors;
  for (const DocParameter& parameter : model.parameters) {
    selectors.insert(parameter.standards.begin(), parameter.standards.end());
  }
  for (const DocIndex& index : model.indices) {
    selectors.insert(index.standards.begin(), index.standards.end());
  }
  std::optional<KnownDevice> known = device.known();
  if (selectors.empty() || !known || isTooLarge(*known)) return {};
  static_cast<void>(bringUpDevice(device, *known));
  for (auto& [name, values] : known->indices) putInOrder(values);
  StandardsMaker maker(model, device, *known);
  std::vector<DocStandards> result;
  for (const DocParameter& parameter : model.parameters) {
    if (!selectors.contains(parameter.name)) continue;
    DocStandards standards = maker.make(parameter);
    if (!standards.rows.empty()) result.push_back(std::move(standards));
  }
  return result;
}
