// A connection of the bus library itself, which does nothing that it is not asked for.
#pragma once

#include <string>

struct DBusConnection;

/// Open and registered for as long as it lives; what is on its way then is dropped.
class PlainConnection {
 public:
  explicit PlainConnection(const std::string& busAddress);
  ~PlainConnection();
  PlainConnection(const PlainConnection&) = delete;
  PlainConnection& operator=(const PlainConnection&) = delete;

  [[nodiscard]] DBusConnection* get() const { return connection_; }

 private:
  DBusConnection* connection_;
};
