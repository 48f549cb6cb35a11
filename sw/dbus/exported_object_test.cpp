#include "sw/dbus/exported_object.h"

#include <gtest/gtest.h>

#include <string>

namespace {

bool hasMemory = true;
std::string registeredPath;

}  // namespace

// In the place of the bus library's.
extern "C" dbus_bool_t dbus_connection_register_object_path(DBusConnection* /*connection*/,
                                                            const char* path,
                                                            const DBusObjectPathVTable* vtable,
                                                            void* /*data*/) {
  EXPECT_NE(vtable->message_function, nullptr);
  registeredPath = path;
  return hasMemory ? 1 : 0;
}

namespace {

TEST(ExportedObject, IsThereOrThereIsAnError) {
  for (const bool memory : {true, false}) {
    SCOPED_TRACE(memory);
    hasMemory = memory;
    const DBusObjectPathVTable binding = {};
    DBusError error = DBUS_ERROR_INIT;
    EXPECT_EQ(dbus_connection_try_register_object_path(nullptr, "/a", &binding, nullptr, &error),
              memory ? 1U : 0U);
    EXPECT_EQ(registeredPath, "/a");
    EXPECT_EQ(dbus_error_is_set(&error) == 0, memory);
    EXPECT_EQ(dbus_error_has_name(&error, DBUS_ERROR_NO_MEMORY) != 0, !memory);
    dbus_error_free(&error);
  }
}

TEST(ExportedObject, IsServedByTheBinding) {
  static DBusMessage* served = nullptr;
  static int given = 0;
  DBusObjectPathVTable binding = {};
  binding.message_function = [](DBusConnection*, DBusMessage* message, void* data) {
    served = message;
    EXPECT_EQ(data, &given);
    return DBUS_HANDLER_RESULT_HANDLED;
  };
  DBusError error = DBUS_ERROR_INIT;
  hasMemory = true;
  ASSERT_NE(dbus_connection_try_register_object_path(nullptr, "/a", &binding, &given, &error), 0U);
  DBusMessage* const call = dbus_message_new_method_call(nullptr, "/a", nullptr, "start");
  EXPECT_EQ(serveExported(nullptr, call), DBUS_HANDLER_RESULT_HANDLED);
  EXPECT_EQ(served, call);
  dbus_message_unref(call);
}

}  // namespace
