// Replies: what goes out on the bus, allocated for the binding library, which frees it.
#pragma once

#include <glib-object.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "sw/dbus/memory_reserve.h"
#include "sw/parm/bounds.h"

/// The most bytes of texts and arrays, all together, in one message. A bus whose configuration says
/// nothing else takes messages of 32 MiB and disconnects the sender of a larger one; the rest is
/// for what goes around them.
constexpr size_t MAX_MESSAGE_BYTES = (size_t{32} << 20U) - 4096;

/// What a span takes in a message, beside a name.
constexpr size_t SPAN_BYTES = 8;

/// What a structure takes while the binding library has it, in bytes: room for eight members.
constexpr size_t STRUCT_MEMORY = 256;

/// The most memory, in bytes, that the structures of one reply and what they are gathered in may
/// take: some 190,000 structures. As texts in a message they are a tenth of that.
constexpr size_t MAX_REPLY_MEMORY = size_t{48} << 20U;

/// Calls `allocate` until it gives something; each failure is a line on standard error, which names
/// `what`, and a wait of 500 microseconds. For allocations that can fail, which is to say not for
/// those of GLib's own containers: these end the process.
template <typename Allocate>
auto retried(const char* what, Allocate allocate) {
  auto memory = allocate();
  while (memory == nullptr) {
    g_printerr("Transaction server: %s - out of memory\n", what);
    g_usleep(500);
    memory = allocate();
  }
  return memory;
}

/// A text as it goes out, for g_free().
struct NewText {
  char* text;
  size_t length;
};

/// The parts of a text, put together as it goes out: what is not valid UTF-8 in it is replaced by
/// U+FFFD, because the bus library ends the process for such a text. A null pointer where memory is
/// exhausted.
NewText tryNewText(std::initializer_list<std::string_view> parts) noexcept;
/// The same; raises std::bad_alloc where memory is exhausted.
NewText newText(std::initializer_list<std::string_view> parts);

/// How much of a message a text of `length` bytes takes, with its length and the gap to the next.
size_t bytesInMessage(size_t length);

/// Raises std::bad_alloc where the bus library would not find the memory to put together a message
/// of so many bytes.
inline void requireMessageMemory(size_t bytes) { requireMemory(COPIES_IN_MESSAGE * bytes); }

/// An array of texts. The array itself is waited for, see retried().
class TextList {
 public:
  /// With room for `capacity` texts; `what` is what messages call the list.
  TextList(const char* what, size_t capacity);
  ~TextList();
  TextList(const TextList&) = delete;
  TextList& operator=(const TextList&) = delete;

  /// Raises std::bad_alloc where memory is exhausted.
  void add(std::string_view text) { take(newText({text})); }
  /// Adds a text made by newText, which then belongs to the list.
  void take(const NewText& text);
  /// Adds texts, up to the first that is too much for a message.
  template <typename Texts>
  void addAll(const Texts& texts) {
    for (const std::string& text : texts) {
      add(text);
      if (bytes_ > MAX_MESSAGE_BYTES) return;
    }
  }
  [[nodiscard]] bool empty() const { return count_ == 0; }
  /// How much of a message the list takes.
  [[nodiscard]] size_t bytes() const { return bytes_; }
  /// The texts, with a null pointer at the end; they stay the list's.
  [[nodiscard]] char** texts();
  void clear();
  /// Gives the texts away, with a null pointer at the end; the list must not be used then.
  char** release();

 private:
  char** texts_;
  size_t capacity_;
  size_t count_ = 0;
  size_t bytes_ = 0;
};

/// An array of structures of one kind. Adding raises std::bad_alloc where memory is exhausted for a
/// text; for the structures, requireMemory() is asked before: GLib has no answer to less.
class StructArray {
 public:
  StructArray() : array_(g_ptr_array_new()) {}
  ~StructArray();
  StructArray(const StructArray&) = delete;
  StructArray& operator=(const StructArray&) = delete;

  void addSpan(const Span& span);                              ///< (minimum, maximum)
  void addSpan(std::string_view name, const Span& span);       ///< (name, minimum, maximum)
  void addText(std::string_view name, std::string_view text);  ///< (name, text)
  /// How much of a message the array takes.
  [[nodiscard]] size_t bytes() const { return bytes_; }
  /// Gives the structures away; the array must not be used then.
  GPtrArray* release();

 private:
  struct StructType;
  // The members of a new structure of `type`, at the end.
  GValue* add(const StructType& type);

  GPtrArray* array_;
  GType type_ = G_TYPE_INVALID;
  size_t bytes_ = 0;
};
