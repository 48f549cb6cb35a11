#include "ctl/text/suggestion.h"

#include <algorithm>

#include "base/nearest_word.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"

namespace {

const ListedParameter* find(const std::vector<ListedParameter>& parameters, std::string_view base) {
  const auto found = std::ranges::find(parameters, base, &ListedParameter::name);
  return found == parameters.end() ? nullptr : &*found;
}

// The base exists, so it is the index values that do not fit.
std::string misfitText(const std::string& name, const ListedParameter& parameter) {
  if (parameter.isIndex()) return quotedWord(name) + " is an index, not a parameter";
  const std::string start = "no parameter \"" + name + "\": ";
  if (parameter.indices.empty()) return start + parameter.name + " has no index";
  return start + "it is " + shapeOf(parameter);
}

}  // namespace

std::string shapeOf(const ListedParameter& parameter) {
  std::string shape = parameter.name;
  for (const std::string& index : parameter.indices) shape += "[" + index + "]";
  return shape;
}

std::string unknownNameText(const std::string& name,
                            const std::vector<ListedParameter>& parameters) {
  const std::string_view base = baseOf(name);
  const ListedParameter* const same = find(parameters, base);
  if (same != nullptr) return misfitText(name, *same);
  NearestWord nearest(base);
  for (const ListedParameter& parameter : parameters) {
    if (!parameter.isIndex()) nearest.offer(parameter.name);
  }
  std::string text = "no parameter \"" + name + "\"";
  if (!nearest.found()) return text;
  const ListedParameter& meant = *find(parameters, *nearest.found());
  const bool fits = indexCountOf(name) == meant.indices.size();
  return text + ": did you mean " +
         (fits ? meant.name + name.substr(base.size()) : shapeOf(meant)) + "?";
}
