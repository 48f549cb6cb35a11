// Odd names: definitions whose names have a sign that is most likely no part of them.
#pragma once

#include <map>
#include <string_view>

#include "check/text/text_facts.h"

/// `name` without quotes around it, without a byte order mark in front, and without a ":", ";", ","
/// or "=" at its end; empty where that leaves nothing.
std::string_view plainName(std::string_view name);

/// The definitions of which the name has such a sign.
class OddNames {
 public:
  explicit OddNames(const TextFacts& facts);

  /// What is wrong where an expression has, at `use`, a plain name of which the definition has such
  /// a sign. No value for any other name.
  [[nodiscard]] std::optional<Finding> usedPlainly(std::string_view name,
                                                   const TextPlace& use) const;
  /// A finding for each definition, the daemon taking the name as it is.
  [[nodiscard]] std::vector<Finding> findings() const;

 private:
  [[nodiscard]] Finding findingOf(std::string_view plain, const ParameterRecord& record) const;

  const TextFacts& facts_;
  std::map<std::string_view, const ParameterRecord*> records_;  // by plain names
};
