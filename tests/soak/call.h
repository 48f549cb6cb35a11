// One method call, as the load makes it, the bus carries it and the model answers it; and how
// answers are written down, so that those of the daemon and of the model can be compared.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Call {
  std::string method = {};
  uint32_t id = 0;                       ///< of the transaction, where the method takes one
  uint32_t count = 0;                    ///< `parm_num`, where the method takes it
  std::vector<std::string> names = {};   ///< one where the method takes one
  std::vector<std::string> values = {};  ///< likewise
};

/// The call as a reader of a report wants it.
std::string shown(const Call& call);

/// An answer is its out-arguments, divided by "; ": numbers and true and false as they are, texts
/// in quotes, arrays in brackets, structures in parentheses. An error is "failed: " and its message
/// without the beginning that all have.
constexpr const char* ERROR_MARK = "failed: ";
constexpr const char* BETWEEN_ARGUMENTS = "; ";
std::string quoted(const std::string& text);
/// `items` are written down already.
std::string listed(const std::vector<std::string>& items);
std::string structured(const std::vector<std::string>& items);
