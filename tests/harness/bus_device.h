// A device on the bus for the recipe that brings devices up.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "play/bring_up.h"
#include "tests/harness/client.h"

class BusDevice final : public DeviceClient {
 public:
  /// Works with a transaction of its own.
  explicit BusDevice(const Client& client);

  Names dependencies(const std::string& parm) override;
  Names presentIndices(const std::string& parm) override;
  Names indexValues(const std::string& index) override;
  bool reset(const Names& names) override;
  void set(const std::string& name, const std::string& value) override;
  Names values(const Names& names) override;
  bool allowsOnlyZero(const std::string& name) override;

 private:
  const Client& client_;
  guint32 id_ = 0;
};

/// The texts of a reply with texts and spans.
std::vector<std::string> rangeTexts(GVariant& reply);
/// Its spans, lowest and highest number each.
std::vector<std::pair<int, int>> rangeSpans(GVariant& reply);
