// GLib allocations: the memory that texts of replies and signals are made in, counted for tests. To
// be included by one source of a program: it replaces g_try_malloc, g_try_malloc_n and g_free.
#pragma once

#include <glib.h>

#include <cstdlib>
#include <set>

/// What is asked for by g_try_malloc; what g_malloc gives is not counted.
struct GlibAllocations {
  inline static std::set<gpointer> kept;  ///< the pieces that have not been given back
  /// Called before each piece is made, with its bytes.
  inline static void (*whenTriedFor)(gsize size) = [](gsize) {};

  /// A new piece of `size` bytes, or null.
  static gpointer make(gsize size) {
    whenTriedFor(size);
    gpointer const piece = malloc(size);
    kept.insert(piece);
    return piece;
  }
};

// These take the place of GLib's own.
extern "C" void g_free(gpointer piece) {
  GlibAllocations::kept.erase(piece);
  free(piece);
}
extern "C" gpointer g_try_malloc(gsize size) { return GlibAllocations::make(size); }
extern "C" gpointer g_try_malloc_n(gsize count, gsize size) {
  return GlibAllocations::make(count * size);
}
