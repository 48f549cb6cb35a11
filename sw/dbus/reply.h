// Replies: what goes out on the bus, allocated for the binding library, which frees it.
//
// The operations fill a TextList or a StructArray and release it into a reply argument. Every text
// and array goes out through here, because three things would end the service: a text that is not
// valid UTF-8, a message above the bus's limit, and an allocation for which GLib has no memory.
#pragma once

#include <glib-object.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "sw/dbus/memory_reserve.h"
#include "sw/parm/bounds.h"

/// The most bytes of texts and arrays, all together, in one message. A bus whose configuration
/// gives no limit takes messages of 32 MiB and disconnects the sender of a larger one; the 4 KiB
/// less are for the message's header.
constexpr size_t MAX_MESSAGE_BYTES = (size_t{32} << 20U) - 4096;

/// What a span takes in a message, beside a name, in bytes: two numbers.
constexpr size_t SPAN_BYTES = 8;

/// What a structure takes while the binding library has it, in bytes: room for eight members,
/// however few it has.
constexpr size_t STRUCT_MEMORY = 256;

/// The most memory, in bytes, that the structures of one reply and the tables in which they are
/// gathered may take: some 190,000 structures, as org.tavrel.transaction(7) says. In a message they
/// take a tenth of that.
constexpr size_t MAX_REPLY_MEMORY = size_t{48} << 20U;

/// Calls `allocate`, which takes no argument and returns a pointer, until that is not null, and
/// returns it. After each failure it writes a line with `what` to standard error and waits 500
/// microseconds, for ever if need be: for what must not get lost. Only for functions that return
/// null; GLib's own containers end the process instead.
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

/// A text as it goes out. Whoever has one owns it; it has no destructor, as the binding library
/// takes the bare pointer in the end.
struct NewText {
  char* text;     ///< ends with a NUL; for g_free()
  size_t length;  ///< in bytes, without the NUL
};

/// Joins `parts` to a text as it goes out: what is not valid UTF-8 in it is replaced by U+FFFD,
/// because the bus library ends the process for such a text. Returns a null pointer and 0 where
/// memory is exhausted.
NewText tryNewText(std::initializer_list<std::string_view> parts) noexcept;
/// As tryNewText(), but raises std::bad_alloc where memory is exhausted.
NewText newText(std::initializer_list<std::string_view> parts);

/// How many bytes of a message a text of `length` bytes takes: with the number of its length before
/// it, its NUL, and the gap to the next text.
size_t bytesInMessage(size_t length);

/// Raises std::bad_alloc where the bus library would not find the memory to put together a message
/// of so many bytes.
inline void requireMessageMemory(size_t bytes) { requireMemory(COPIES_IN_MESSAGE * bytes); }

/// An array of texts that grows up to a capacity, for a reply argument or a signal.
class TextList {
 public:
  /// With room for `capacity` texts. That room is waited for, see retried(), with `what` as the
  /// list's name in messages.
  TextList(const char* what, size_t capacity);
  /// Frees the list and its texts, unless they were released.
  ~TextList();
  TextList(const TextList&) = delete;
  TextList& operator=(const TextList&) = delete;

  /// Adds a copy of `text`, mended as by newText(). Raises std::bad_alloc where memory is
  /// exhausted: the list is then as before. A text beyond the capacity is a programming error and
  /// stops the program.
  void add(std::string_view text) { adopt(newText({text})); }
  /// Adds a text that newText() has made; the list owns it from now on. Asks for no memory.
  void adopt(const NewText& text);
  /// Adds `texts` as add() does, up to and with the first that makes the list longer than
  /// MAX_MESSAGE_BYTES.
  template <typename Texts>
  void addAll(const Texts& texts) {
    for (const std::string& text : texts) {
      add(text);
      if (bytes_ > MAX_MESSAGE_BYTES) return;
    }
  }
  /// Whether the list has no text.
  [[nodiscard]] bool empty() const { return count_ == 0; }
  /// How many bytes of a message the list takes.
  [[nodiscard]] size_t bytes() const { return bytes_; }
  /// The texts, with a null pointer at the end. They stay the list's, and valid until it changes.
  [[nodiscard]] char** texts();
  /// Frees the texts; the capacity stays.
  void clear();
  /// Gives the texts away, with a null pointer at the end, for g_strfreev(). Only the destructor
  /// may be called then.
  char** release();

 private:
  char** texts_;
  size_t capacity_;
  size_t count_ = 0;
  size_t bytes_ = 0;
};

/// An array of structures of one kind, that is by one of the three adding functions: spans without
/// names, spans with names, or texts with names. They raise std::bad_alloc where memory is
/// exhausted for a text. For the structures themselves requireMemory() is asked before, with
/// STRUCT_MEMORY for each: GLib ends the process where it has less.
class StructArray {
 public:
  /// An empty array.
  StructArray() : array_(g_ptr_array_new()) {}
  /// Frees the array and its structures, unless they were released.
  ~StructArray();
  StructArray(const StructArray&) = delete;
  StructArray& operator=(const StructArray&) = delete;

  void addSpan(const Span& span);                              ///< adds (minimum, maximum)
  void addSpan(std::string_view name, const Span& span);       ///< adds (name, minimum, maximum)
  void addText(std::string_view name, std::string_view text);  ///< adds (name, text)
  /// How many bytes of a message the array takes.
  [[nodiscard]] size_t bytes() const { return bytes_; }
  /// Gives the structures away, for the binding library. Only the destructor may be called then.
  GPtrArray* release();

 private:
  struct StructType;
  // The members of a new structure of `type`, at the end.
  GValue* add(const StructType& type);

  GPtrArray* array_;
  GType type_ = G_TYPE_INVALID;  // of the structures; invalid while there is none
  size_t bytes_ = 0;
};
