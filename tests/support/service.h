// A service without a bus, on a definition text, for the tests: the state that the methods work on,
// the service object, and the signals that it emits.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "sw/dbus/service_state.h"
#include "sw/dbus/value_object.h"
#include "tests/support/database.h"

/// Methods called while it lives find its state as the present one.
class TestService {
 public:
  /// Builds the service on `definitions`. A text whose build fails also fails the test.
  explicit TestService(std::string_view definitions, const Constants& constants = {})
      : object_(static_cast<ValueObject*>(g_object_new(value_object_get_type(), nullptr))) {
    define(database_, definitions, constants);
    EXPECT_EQ(state_.createLock(), 0);
    g_signal_connect(object_, "transaction", G_CALLBACK(note), this);
  }
  ~TestService() { g_object_unref(object_); }
  TestService(const TestService&) = delete;
  TestService& operator=(const TestService&) = delete;

  /// The parts of the service, valid as long as it.
  Database& database() { return database_; }
  ServiceState& state() { return state_; }
  ValueObject* object() { return object_; }
  /// The signals since the last call of this function, in their order, each with its texts.
  std::vector<std::vector<std::string>> newSignals() { return std::exchange(signals_, {}); }

 private:
  static void note(ValueObject* /*object*/, char** changes, TestService* service) {
    service->signals_.emplace_back(changes, changes + g_strv_length(changes));
  }

  Database database_;
  ServiceState state_{database_};
  ValueObject* object_;
  std::vector<std::vector<std::string>> signals_;
};
