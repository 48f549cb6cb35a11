// Levels: the parameters in the order in which they follow each other. A commit never stages a
// parameter together with one that it follows.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "ctl/words/client.h"

class Levels {
 public:
  explicit Levels(Service& service);
  /// Of a list of all of them.
  explicit Levels(std::vector<ListedParameter> all);

  /// The base names of each level, the lowest first.
  [[nodiscard]] const std::map<uint32_t, Names>& bases() const { return bases_; }
  /// Whether there is a parameter with the base name of `name`.
  [[nodiscard]] bool has(const std::string& name) const;
  /// The level of a parameter that there is.
  [[nodiscard]] uint32_t of(const std::string& name) const;
  [[nodiscard]] const std::string& access(const std::string& name) const;
  /// Whether there is such a parameter, and a client may ever set it.
  [[nodiscard]] bool canBeSet(const std::string& name) const;
  /// Those of parameters that there are.
  [[nodiscard]] std::vector<Assignment> known(const std::vector<Assignment>& assignments) const;

  [[nodiscard]] std::map<uint32_t, Names> sorted(const Names& names) const;
  [[nodiscard]] std::map<uint32_t, std::vector<Assignment>> sorted(
      const std::vector<Assignment>& assignments) const;

 private:
  std::map<std::string, ListedParameter, std::less<>> parameters_;
  std::map<uint32_t, Names> bases_;
};
