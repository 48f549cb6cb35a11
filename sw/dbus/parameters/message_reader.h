// Message reader: the arguments of a call, one after the other. The caller has checked that the
// message has the signature that it reads.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <vector>

/// Reads from one message, which has to live as long; so have the texts, which it keeps.
class MessageReader {
 public:
  explicit MessageReader(DBusMessage* message) { dbus_message_iter_init(message, &place_); }

  uint32_t number() { return basic<dbus_uint32_t>(); }
  bool flag() { return basic<dbus_bool_t>() != 0; }
  const char* text() { return basic<const char*>(); }
  /// Raises std::bad_alloc where memory is exhausted.
  std::vector<const char*> texts() {
    DBusMessageIter element;
    dbus_message_iter_recurse(&place_, &element);
    std::vector<const char*> texts;
    texts.reserve(static_cast<size_t>(dbus_message_iter_get_element_count(&place_)));
    for (; dbus_message_iter_get_arg_type(&element) == DBUS_TYPE_STRING;
         dbus_message_iter_next(&element)) {
      dbus_message_iter_get_basic(&element, &texts.emplace_back());
    }
    dbus_message_iter_next(&place_);
    return texts;
  }

 private:
  template <typename T>
  T basic() {
    T value{};
    dbus_message_iter_get_basic(&place_, &value);
    dbus_message_iter_next(&place_);
    return value;
  }

  DBusMessageIter place_ = DBUS_MESSAGE_ITER_INIT_CLOSED;
};
