// Bus messages as texts, for tests: the arguments of a message, as `("gain", 7, ["a"], {"k": 1})`.
#pragma once

#include <dbus/dbus.h>

#include <string>

inline std::string textOf(DBusMessageIter& place);

/// All values from `place` on, with commas between them.
inline std::string textOfAll(DBusMessageIter& place) {
  std::string text;
  for (; dbus_message_iter_get_arg_type(&place) != DBUS_TYPE_INVALID;
       dbus_message_iter_next(&place)) {
    text += (text.empty() ? "" : ", ") + textOf(place);
  }
  return text;
}

inline std::string textOfContainer(DBusMessageIter& place, int type) {
  DBusMessageIter inner;
  dbus_message_iter_recurse(&place, &inner);
  const bool isDictionary =
      type == DBUS_TYPE_ARRAY && dbus_message_iter_get_element_type(&place) == DBUS_TYPE_DICT_ENTRY;
  if (type == DBUS_TYPE_DICT_ENTRY) {
    const std::string key = textOf(inner);
    dbus_message_iter_next(&inner);
    return key + ": " + textOf(inner);
  }
  const std::string values = textOfAll(inner);
  if (isDictionary) return "{" + values + "}";
  if (type == DBUS_TYPE_ARRAY) return "[" + values + "]";
  return type == DBUS_TYPE_STRUCT ? "(" + values + ")" : "<" + values + ">";
}

/// The value at `place`, and what is in it.
inline std::string textOf(DBusMessageIter& place) {
  const int type = dbus_message_iter_get_arg_type(&place);
  DBusBasicValue value;
  switch (type) {
    case DBUS_TYPE_STRING:
      dbus_message_iter_get_basic(&place, &value);
      return '"' + std::string(value.str) + '"';
    case DBUS_TYPE_BOOLEAN:
      dbus_message_iter_get_basic(&place, &value);
      return value.bool_val != 0 ? "true" : "false";
    case DBUS_TYPE_UINT32:
      dbus_message_iter_get_basic(&place, &value);
      return std::to_string(value.u32);
    case DBUS_TYPE_INT32:
      dbus_message_iter_get_basic(&place, &value);
      return std::to_string(value.i32);
    case DBUS_TYPE_UINT64:
      dbus_message_iter_get_basic(&place, &value);
      return std::to_string(value.u64);
    default:
      return textOfContainer(place, type);
  }
}

/// The arguments of `message`.
inline std::string argumentsOf(DBusMessage* message) {
  DBusMessageIter place;
  dbus_message_iter_init(message, &place);
  return textOfAll(place);
}
