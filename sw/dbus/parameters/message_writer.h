// Message writer: the arguments of a reply or a signal, appended one by one.
//
//   MessageWriter out(reply);
//   out.array("(su)", [&] {
//     for (const auto& [name, line] : lines) out.structure([&] { out.text(name); out.number(line);
//     });
//   });
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "sw/parm/bounds.h"

/// Raised where a message would have more than MAX_MESSAGE_BYTES (sw/dbus/reply.h).
struct MessageTooLong {};

/// Appends to one message, which has to live as long. Every function may raise MessageTooLong, and
/// std::bad_alloc where memory is exhausted; the message is of no use then, and only to be freed.
class MessageWriter {
 public:
  explicit MessageWriter(DBusMessage* message) { dbus_message_iter_init_append(message, &place_); }
  MessageWriter(const MessageWriter&) = delete;
  MessageWriter& operator=(const MessageWriter&) = delete;

  /// `text` without NUL bytes; what is not valid UTF-8 in it is replaced by U+FFFD.
  void text(const std::string& text);
  void flag(bool flag);
  void number(uint32_t number);
  void signedNumber(int32_t number);
  void longNumber(uint64_t number);
  /// An array whose elements have `signature`, appended by `fill`.
  template <typename Fill>
  void array(const char* signature, const Fill& fill) {
    contain(DBUS_TYPE_ARRAY, signature, fill);
  }
  template <typename Fill>
  void structure(const Fill& fill) {
    contain(DBUS_TYPE_STRUCT, nullptr, fill);
  }
  /// An entry of a dictionary, which is an array of such.
  template <typename Fill>
  void entry(const Fill& fill) {
    contain(DBUS_TYPE_DICT_ENTRY, nullptr, fill);
  }
  template <typename Fill>
  void variant(const char* signature, const Fill& fill) {
    contain(DBUS_TYPE_VARIANT, signature, fill);
  }
  /// An array of texts.
  template <typename Texts>
  void texts(const Texts& texts) {
    array("s", [&] {
      for (const std::string& each : texts) text(each);
    });
  }
  /// An array of (minimum, maximum).
  void spans(const Spans& spans);
  /// How many bytes of the message the arguments take, about.
  [[nodiscard]] size_t bytes() const { return bytes_; }

 private:
  void append(int type, const void* value, size_t bytes);
  void open(int type, const char* signature, DBusMessageIter& outer);
  void close(DBusMessageIter& outer);

  template <typename Fill>
  void contain(int type, const char* signature, const Fill& fill) {
    DBusMessageIter outer;
    open(type, signature, outer);
    try {
      fill();
    } catch (...) {
      dbus_message_iter_abandon_container(&outer, &place_);
      place_ = outer;
      throw;
    }
    close(outer);
  }

  DBusMessageIter place_ = DBUS_MESSAGE_ITER_INIT_CLOSED;
  size_t bytes_ = 0;
};
