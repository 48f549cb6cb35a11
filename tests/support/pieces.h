// The pieces of memory that texts of replies and signals are made in, for tests. To be included by
// one source of a program.
#pragma once

#include <glib.h>

#include <cstdlib>
#include <set>

struct Pieces {
  inline static std::set<gpointer> kept;  ///< that were tried for and not given back
  inline static void (*whenTriedFor)(gsize size) = [](gsize) {};

  static gpointer make(gsize size) {
    whenTriedFor(size);
    gpointer const piece = malloc(size);
    kept.insert(piece);
    return piece;
  }
};

// In the place of those of GLib.
extern "C" void g_free(gpointer piece) {
  Pieces::kept.erase(piece);
  free(piece);
}
extern "C" gpointer g_try_malloc(gsize size) { return Pieces::make(size); }
extern "C" gpointer g_try_malloc_n(gsize count, gsize size) { return Pieces::make(count * size); }
