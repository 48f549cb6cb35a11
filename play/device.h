// A device as a session sees it: the methods of the service, with texts in and texts out.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "play/bring_up.h"
#include "sw/parm/bounds.h"

/// The constants of a definition text: values by name.
using PlayConstants = std::map<std::string, std::string>;

/// A call of a method that org.tavrel.transaction(7) describes.
struct Call {
  using Texts = std::vector<std::string>;
  std::string_view method;   ///< its name there
  uint32_t transaction = 0;  ///< the id; a method without one does not look at it
  Texts names = {};          ///< one, or for a "_bulk" method any number
  Texts values = {};         ///< as many, for a method that takes values
};

/// A name with its range.
struct NamedRange {
  std::string name;
  std::vector<std::string> texts = {};  ///< ascending
  Spans spans = {};                     ///< ascending

  /// Whether every value is allowed.
  [[nodiscard]] bool isOpen() const { return texts.empty() && spans.empty(); }
};

/// How many values a range has; 0 where every value is allowed.
uint64_t countValues(const NamedRange& range);
/// All values of a range, each number of a span by itself.
std::vector<std::string> valuesOf(const NamedRange& range);

/// What a call gives. After an error only `changes` and `notes` may hold something.
struct Answer {
  std::string error = {};  ///< as in org.tavrel.transaction(7), "Set failed because ..."; or empty
  uint32_t transaction = 0;  ///< of start
  /// Of is_valid, check_set and their single_ forms; of "why", whether the instance exists.
  bool isValid = false;
  std::vector<std::string> texts = {};  ///< values or names
  /// Of a query for ranges; where that names no names, one range without a name.
  std::vector<NamedRange> ranges = {};
  /// What was announced, or of "try" would be: "name=value" each, in order.
  std::vector<std::string> changes = {};
  /// Where the device knows: what the system log got of a refusal, or an explanation.
  std::vector<std::string> notes = {};
};

/// Whatever serves the methods. One session plays with it, from its start.
class Device {
 public:
  Device() = default;
  virtual ~Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /// Calls a method other than die; or "try", which says what commit would; or "why", which
  /// explains a name, or what becomes of a value for it. The texts are valid UTF-8 without NUL
  /// bytes.
  virtual Answer call(const Call& call) = 0;
  /// What the author of its definition text knows of it, without any last values; nullopt where it
  /// may have more than MAX_KNOWN_INSTANCES.
  virtual std::optional<KnownDevice> known() = 0;
};

/// Starts a device with these constants, all of whose values are empty. Returns null where that
/// cannot be done, and has said why on standard error. At most one lives at a time.
using StartDevice = std::function<std::unique_ptr<Device>(const PlayConstants&)>;
