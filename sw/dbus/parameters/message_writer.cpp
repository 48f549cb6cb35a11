#include "sw/dbus/parameters/message_writer.h"

#include <glib.h>

#include <memory>
#include <new>

#include "sw/dbus/reply.h"

namespace {

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};

void require(dbus_bool_t hasMemory) {
  if (hasMemory == 0) throw std::bad_alloc();
}

}  // namespace

void MessageWriter::append(int type, const void* value, size_t bytes) {
  bytes_ += bytes;
  if (bytes_ > MAX_MESSAGE_BYTES) throw MessageTooLong();
  require(dbus_message_iter_append_basic(&place_, type, value));
}

void MessageWriter::text(const std::string& text) {
  if (g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE) {
    const char* const bytes = text.c_str();
    append(DBUS_TYPE_STRING, &bytes, bytesInMessage(text.size()));
    return;
  }
  const NewText mended = newText({text});
  const std::unique_ptr<char, FreeText> owner(mended.text);
  append(DBUS_TYPE_STRING, &mended.text, bytesInMessage(mended.length));
}

void MessageWriter::flag(bool flag) {
  const dbus_bool_t value = flag ? TRUE : FALSE;
  append(DBUS_TYPE_BOOLEAN, &value, sizeof(value));
}

void MessageWriter::number(uint32_t number) {
  const dbus_uint32_t value = number;
  append(DBUS_TYPE_UINT32, &value, sizeof(value));
}

void MessageWriter::signedNumber(int32_t number) {
  const dbus_int32_t value = number;
  append(DBUS_TYPE_INT32, &value, sizeof(value));
}

void MessageWriter::longNumber(uint64_t number) {
  const dbus_uint64_t value = number;
  append(DBUS_TYPE_UINT64, &value, sizeof(value));
}

void MessageWriter::spans(const Spans& spans) {
  array("(ii)", [&] {
    for (const Span& span : spans) {
      structure([&] {
        signedNumber(span.first);
        signedNumber(span.second);
      });
    }
  });
}

void MessageWriter::open(int type, const char* signature, DBusMessageIter& outer) {
  constexpr size_t ALIGNED = 8;  // a container begins at such a place
  bytes_ += ALIGNED;
  if (bytes_ > MAX_MESSAGE_BYTES) throw MessageTooLong();
  outer = place_;
  DBusMessageIter inner = DBUS_MESSAGE_ITER_INIT_CLOSED;
  require(dbus_message_iter_open_container(&outer, type, signature, &inner));
  place_ = inner;
}

void MessageWriter::close(DBusMessageIter& outer) {
  DBusMessageIter inner = place_;
  place_ = outer;
  require(dbus_message_iter_close_container(&place_, &inner));
}
