#include "check/proof/domain.h"

#include "base/number.h"

Domain Domain::all() {
  Domain domain;
  domain.isAll_ = true;
  return domain;
}

Domain Domain::of(std::string_view text) {
  Domain domain;
  domain.addText(text);
  return domain;
}

void Domain::addText(std::string_view text) {
  const std::optional<int32_t> number = wholeNumber(text);
  if (number && !text.empty()) {
    integers_.addSpan(*number, *number);
  } else {
    texts_.emplace(text);
  }
}

void Domain::add(const BoundsParm& bounds) {
  if (bounds.count() == 0) isAll_ = true;
  for (const auto& [low, high] : bounds.integers().spans()) integers_.addSpan(low, high);
  for (const std::string& text : bounds.strings().texts()) addText(text);
}

void Domain::add(const Domain& other) {
  isAll_ = isAll_ || other.isAll_;
  for (const auto& [low, high] : other.spans()) integers_.addSpan(low, high);
  texts_.insert(other.texts_.begin(), other.texts_.end());
}

Domain Domain::withoutEmpty() const {
  Domain domain = *this;
  domain.texts_.erase("");
  return domain;
}

bool Domain::contains(std::string_view text) const {
  if (isAll_ || texts_.contains(text)) return true;
  if (text.empty()) return false;
  const std::optional<int32_t> number = wholeNumber(text);
  if (!number || spans().empty()) return false;
  std::string value(text);
  return integers_.check(value, number, false);
}

uint64_t Domain::size() const {
  if (isAll_) return UINT64_MAX;
  uint64_t count = texts_.size();
  for (const auto& [low, high] : spans()) {
    count += static_cast<uint64_t>(static_cast<int64_t>(high) - low) + 1;
  }
  return count;
}

std::optional<std::vector<std::string>> Domain::values(uint64_t most) const {
  if (size() > most) return std::nullopt;
  std::vector<std::string> values;
  for (const auto& [low, high] : spans()) {
    for (int64_t number = low; number <= high; ++number) {
      values.push_back(numberText(static_cast<int32_t>(number)));
    }
  }
  values.insert(values.end(), texts_.begin(), texts_.end());
  return values;
}

std::vector<std::string> valuesToTry(const Domain& domain, uint64_t few) {
  if (const auto values = domain.values(few)) return *values;
  std::vector<std::string> values;
  for (const auto& [low, high] : domain.spans()) {
    for (const int32_t end : {low, high}) {
      if (values.size() < few) values.push_back(std::to_string(end));
    }
  }
  for (const std::string& text : domain.texts()) {
    if (values.size() < few) values.push_back(text);
  }
  return values;
}
