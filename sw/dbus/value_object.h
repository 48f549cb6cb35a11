// The service object: a class of objects that carry the bus interface and its signal, nothing else.
//
// The objects have no fields of their own: the state of the service is elsewhere (service_state.h).
// The generated binding (transaction_binding.h) makes the names of the methods, with value_object_
// before the name of each; so the names here follow GLib's form and not ours.
#pragma once

#include <glib-object.h>

/// An object of the class, with the layout that GLib asks for: made by g_object_new(), counted and
/// freed by GLib. The service makes one and keeps it as long as the process lives.
struct ValueObject {
  GObject parent;
};

/// The class itself, made by GLib with the first object.
struct ValueObjectClass {
  GObjectClass parent;
  guint signals[1];  ///< the id of the signal "transaction"
};

/// The type; registered with GLib at the first call, and the same from then on.
GType value_object_get_type();

/// Emits the signal "transaction" of `object`, which the binding library hands to the bus library.
/// `changes` are texts in valid UTF-8 with a null pointer at the end; they stay the caller's.
void emitTransaction(ValueObject* object, char** changes);
