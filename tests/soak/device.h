// What device.ostrel means, parameter by parameter, written out by hand: the soak's measure of the
// daemon, so it uses nothing of the daemon's own code.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/soak/range.h"

/// What a full name holds in the situation that is looked at.
using See = std::function<std::string(const std::string& name)>;
using Indices = std::vector<std::string>;

/// A range statement beyond the constant range, whose condition holds.
struct Statement {
  bool runTime = false;
  int code = 0;  ///< why it cannot be used, as a range query tells it; 0 when it can
  Range range = {};
};

enum Access { ACCESS_RW, ACCESS_RO, ACCESS_ROSTRICT, ACCESS_WO };
/// What a parameter has besides its constant range.
enum Statements { ONLY_CONSTANT, WITH_CONDITIONS, WITH_RUN_TIME };

struct Parm {
  Access access = ACCESS_RW;
  Indices indices = {};              ///< the names of its indices
  int level = 0;                     ///< the longest way down to what depends on nothing
  std::set<std::string> names = {};  ///< the parameters that its text and its indices' name
  /// What get_deps answers, divided by blanks, with the names of indices for their values.
  std::string deps = {};
  Range constant = {};
  Statements kind = ONLY_CONSTANT;
  std::map<std::string, std::string> translations = {};
  /// The statements whose conditions hold, in the order of the text; null when there are none.
  std::function<std::vector<Statement>(const See& see, const Indices& at)> statements = {};
  /// The documented range, where one applies.
  std::function<std::optional<Range>(const See& see)> documented = {};
  /// The default; null means the empty text.
  std::function<std::string(const See& see)> fallback = {};
  /// Null: always.
  std::function<bool(const See& see)> exists = {};
  /// Of a parameter that is not "ro" or "rostrict". Null: never.
  std::function<bool(const See& see, const Indices& at)> locked = {};
};

/// By their names.
const std::map<std::string, Parm>& device();

/// The values of an index that a text without conditions gives it.
Range constantValues(const std::string& index);
/// The values that an index has in a situation; nullopt where the index is not available.
std::optional<Range> presentValues(const std::string& index, const See& see);

extern const char* const CONSTANT_NAME;
extern const char* const CONSTANT_VALUE;
