#include "sw/dbus/value_object.h"

#include "sw/dbus/null_check.h"
#include "sw/dbus/server_methods.h"

// Generated from transaction_interface.xml: the table of the methods, which it names.
#include <transaction_binding.h>

namespace {

gpointer parentClass = nullptr;

void value_object_init(GTypeInstance* obj, gpointer /*klass*/) {
  assertNotNull(obj, "obj != NULL", __func__);
}

void value_object_class_init(gpointer klass, gpointer /*data*/) {
  assertNotNull(klass, "klass != NULL", __func__);
  parentClass = g_type_class_peek_parent(klass);
  static_cast<ValueObjectClass*>(klass)->signals[0] =
      g_signal_new("transaction", value_object_get_type(), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                   g_cclosure_marshal_VOID__BOXED, G_TYPE_NONE, 1, G_TYPE_STRV);
  dbus_g_object_type_install_info(value_object_get_type(), &dbus_glib_value_object_object_info);
}

}  // namespace

GType value_object_get_type() {
  static gsize registeredType = 0;
  if (g_once_init_enter(&registeredType) != 0) {
    const GType type = g_type_register_static_simple(
        G_TYPE_OBJECT, "ValueObject", sizeof(ValueObjectClass), value_object_class_init,
        sizeof(ValueObject), value_object_init, static_cast<GTypeFlags>(0));
    g_once_init_leave(&registeredType, type);
  }
  return registeredType;
}

void emitTransaction(ValueObject* object, char** changes) {
  const auto* klass = reinterpret_cast<ValueObjectClass*>(G_OBJECT_GET_CLASS(object));
  g_signal_emit(object, klass->signals[0], 0, changes);
}
