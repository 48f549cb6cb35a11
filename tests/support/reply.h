// What replies hold, for the tests: reads a reply as texts and frees it, as the binding library
// does. `taken` in a name means that: what is passed in is freed.
#pragma once

#include <dbus/dbus-glib.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using Texts = std::vector<std::string>;

/// The texts of a list that ends with a null pointer.
inline Texts taken(char** list) {
  Texts texts(list, list + g_strv_length(list));
  g_strfreev(list);
  return texts;
}

/// The type of a structure of the lowest and the highest number of a span.
inline GType spanType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID);
}
/// The type of a structure of a name and a span.
inline GType namedSpanType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT,
                                G_TYPE_INVALID);
}
/// The type of a structure of a name and a text.
inline GType namedTextType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_STRING, G_TYPE_INVALID);
}

/// One structure of `type`, its members joined by commas: "gain,0,9".
inline std::string takenStructure(gpointer structure, GType type) {
  GValue holder = G_VALUE_INIT;
  g_value_init(&holder, type);
  g_value_take_boxed(&holder, structure);
  std::string text;
  for (guint member = 0; member < dbus_g_type_get_struct_size(type); ++member) {
    GValue value = G_VALUE_INIT;
    g_value_init(&value, dbus_g_type_get_struct_member_type(type, member));
    EXPECT_TRUE(dbus_g_type_struct_get_member(&holder, member, &value));
    text += member == 0 ? "" : ",";
    text += G_VALUE_HOLDS_INT(&value) ? std::to_string(g_value_get_int(&value))
                                      : g_value_get_string(&value);
    g_value_unset(&value);
  }
  g_value_unset(&holder);
  return text;
}

/// The structures of `type` in an array, each as takenStructure() gives it.
inline Texts taken(GPtrArray* structures, GType type) {
  Texts texts;
  for (guint i = 0; i < structures->len; ++i) {
    texts.push_back(takenStructure(g_ptr_array_index(structures, i), type));
  }
  g_ptr_array_free(structures, TRUE);
  return texts;
}
