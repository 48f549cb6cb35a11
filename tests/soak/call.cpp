#include "tests/soak/call.h"

namespace {

std::string joined(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

std::string quotedList(const std::vector<std::string>& texts) {
  std::vector<std::string> items;
  items.reserve(texts.size());
  for (const std::string& text : texts) items.push_back(quoted(text));
  return listed(items);
}

}  // namespace

std::string shown(const Call& call) {
  return call.method + "(id " + std::to_string(call.id) + ", count " + std::to_string(call.count) +
         ", " + quotedList(call.names) + ", " + quotedList(call.values) + ")";
}

std::string quoted(const std::string& text) { return "'" + text + "'"; }
std::string listed(const std::vector<std::string>& items) { return "[" + joined(items) + "]"; }
std::string structured(const std::vector<std::string>& items) { return "(" + joined(items) + ")"; }
