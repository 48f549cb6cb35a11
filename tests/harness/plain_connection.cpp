#include "tests/harness/plain_connection.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

PlainConnection::PlainConnection(const std::string& busAddress)
    : connection_(dbus_connection_open_private(busAddress.c_str(), nullptr)) {
  EXPECT_NE(dbus_bus_register(connection_, nullptr), 0);
}

PlainConnection::~PlainConnection() {
  dbus_connection_close(connection_);
  dbus_connection_unref(connection_);
}
