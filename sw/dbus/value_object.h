// The service object: a class of objects that carry the bus interface and its signal, nothing else.
#pragma once

#include <glib-object.h>

struct ValueObject {
  GObject parent;
};

struct ValueObjectClass {
  GObjectClass parent;
  guint signals[1];  ///< the id of the signal "transaction"
};

/// The type; registered at the first call.
GType value_object_get_type();

/// Emits the signal "transaction". `changes` ends with a null pointer and stays the caller's.
void emitTransaction(ValueObject* object, char** changes);
