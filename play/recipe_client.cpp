#include "play/recipe_client.h"

#include <utility>

#include "play/known_device.h"

namespace {

class RecipeClient final : public DeviceClient {
 public:
  RecipeClient(Device& device, BroughtUp& result)
      : device_(device), result_(result), id_(device.call({"start"}).transaction) {}
  ~RecipeClient() override { static_cast<void>(device_.call({"end", id_})); }
  RecipeClient(const RecipeClient&) = delete;
  RecipeClient& operator=(const RecipeClient&) = delete;

  Names dependencies(const std::string& parm) override {
    return device_.call({"get_deps", id_, {parm}}).texts;
  }
  Names presentIndices(const std::string& parm) override {
    return device_.call({"get_parm_idx", id_, {parm}}).texts;
  }
  Names indexValues(const std::string& index) override {
    const Answer answer = device_.call({"get_idx_range", id_, {index}});
    if (answer.ranges.empty()) return {};
    // Only what has no instances has such an index: see MAX_KNOWN_INSTANCES.
    if (countValues(answer.ranges.front()) > MAX_KNOWN_INSTANCES) return {};
    return valuesOf(answer.ranges.front());
  }
  bool reset(const Names& names) override {
    static_cast<void>(device_.call({"reset_status_bulk", id_, names}));
    return commit();
  }
  void set(const std::string& name, const std::string& value) override {
    static_cast<void>(device_.call({"set_status", id_, {name}, {value}}));
    static_cast<void>(commit());
  }
  Names values(const Names& names) override {
    Names values = device_.call({"get_bulk", id_, names}).texts;
    values.resize(names.size());  // too many names for one reply have no values
    return values;
  }
  bool allowsOnlyZero(const std::string& name) override {
    const Answer answer = device_.call({"get_range", id_, {name}});
    return answer.error.empty() && answer.ranges.front().texts.empty() &&
           answer.ranges.front().spans == Spans{{0, 0}};
  }

 private:
  bool commit() {
    const Answer answer = device_.call({"commit", id_});
    for (const std::string& change : answer.changes) {
      const size_t sign = change.find('=');
      result_.changes[change.substr(0, sign)] = change.substr(sign + 1);
    }
    return answer.error.empty();
  }

  Device& device_;
  BroughtUp& result_;
  uint32_t id_;
};

}  // namespace

BroughtUp bringUpDevice(Device& device, KnownDevice known) {
  BroughtUp result;
  RecipeClient client(device, result);
  BringUp recipe(client, std::move(known));
  recipe.run();
  result.restless.assign(recipe.restless().begin(), recipe.restless().end());
  return result;
}

std::vector<std::string> presentInstances(Device& device, KnownDevice known) {
  BroughtUp nothing;
  RecipeClient client(device, nothing);
  return BringUp(client, std::move(known)).instances();
}
