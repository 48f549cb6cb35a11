#include "sw/dbus/reply.h"

#include <dbus/dbus-glib.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <utility>

namespace {

// Sizes in a message, in bytes. A text has its length, a number, before it and a NUL behind it.
// Numbers and structures start at multiples of their alignment.
constexpr size_t NUMBER_BYTES = 4;
constexpr size_t STRUCT_ALIGNMENT = 8;

size_t aligned(size_t bytes, size_t alignment) {
  return (bytes + alignment - 1) / alignment * alignment;
}

// Gives `member` a copy of `text`. Returns how many bytes of a message the text takes.
size_t setText(GValue& member, std::string_view text) {
  const NewText made = newText({text});
  g_value_take_string(&member, made.text);
  // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the member owns the text that it takes.
  return bytesInMessage(made.length);
}

// Frees `text`, which is not valid UTF-8, and returns one that is; a null pointer where memory is
// exhausted.
NewText mended(const NewText& text) {
  // Each byte can become three, and GLib's buffer grows twofold as that of a message does.
  constexpr size_t COPIES = 3 * COPIES_IN_MESSAGE;
  MemoryReserve reserve;
  char* valid = nullptr;
  if (reserve.grow(COPIES * text.length)) {
    reserve.giveBack();
    valid = g_utf8_make_valid(text.text, static_cast<gssize>(text.length));
  }
  g_free(text.text);
  return {valid, valid == nullptr ? 0 : strlen(valid)};
}

}  // namespace

NewText tryNewText(std::initializer_list<std::string_view> parts) noexcept {
  size_t length = 0;
  for (const std::string_view part : parts) length += part.size();
  char* const text = g_try_new(char, length + 1);
  if (text == nullptr) return {nullptr, 0};
  char* end = text;
  for (const std::string_view part : parts) end = std::copy(part.begin(), part.end(), end);
  *end = '\0';
  if (g_utf8_validate_len(text, length, nullptr) == TRUE) return {text, length};
  return mended({text, length});
}

NewText newText(std::initializer_list<std::string_view> parts) {
  const NewText text = tryNewText(parts);
  if (text.text == nullptr) throw std::bad_alloc();
  return text;
}

size_t bytesInMessage(size_t length) { return aligned(NUMBER_BYTES + length + 1, NUMBER_BYTES); }

TextList::TextList(const char* what, size_t capacity)
    : texts_(retried(what, [capacity] { return g_try_new(char*, capacity + 1); })),
      capacity_(capacity) {}

TextList::~TextList() {
  clear();
  g_free(texts_);
}

void TextList::adopt(const NewText& text) {
  assert(count_ < capacity_);
  texts_[count_++] = text.text;
  bytes_ += bytesInMessage(text.length);
}

char** TextList::texts() {
  texts_[count_] = nullptr;
  return texts_;
}

void TextList::clear() {
  std::for_each_n(texts_, std::exchange(count_, 0), g_free);
  bytes_ = 0;
}

char** TextList::release() {
  char** const list = texts();
  texts_ = nullptr;
  count_ = 0;
  return list;
}

// The binding library's type of a structure, and an empty structure of that type to be copied.
struct StructArray::StructType {
  explicit StructType(GType structType)
      : type(structType), empty(dbus_g_type_specialized_construct(structType)) {}
  GType type;
  gpointer empty;
};

StructArray::~StructArray() {
  if (array_ == nullptr) return;
  for (guint i = 0; i < array_->len; ++i) g_boxed_free(type_, g_ptr_array_index(array_, i));
  g_ptr_array_free(array_, TRUE);
}

void StructArray::addSpan(const Span& span) {
  static const StructType TYPE(
      dbus_g_type_get_struct("GValueArray", G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID));
  GValue* const members = add(TYPE);
  g_value_set_int(&members[0], span.first);
  g_value_set_int(&members[1], span.second);
  bytes_ += 2 * NUMBER_BYTES;
}

void StructArray::addSpan(std::string_view name, const Span& span) {
  static const StructType TYPE(
      dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID));
  GValue* const members = add(TYPE);
  const size_t nameBytes = setText(members[0], name);
  g_value_set_int(&members[1], span.first);
  g_value_set_int(&members[2], span.second);
  bytes_ += aligned(nameBytes + 2 * NUMBER_BYTES, STRUCT_ALIGNMENT);
}

void StructArray::addText(std::string_view name, std::string_view text) {
  static const StructType TYPE(
      dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_STRING, G_TYPE_INVALID));
  GValue* const members = add(TYPE);
  const size_t nameBytes = setText(members[0], name);
  bytes_ += aligned(nameBytes + setText(members[1], text), STRUCT_ALIGNMENT);
}

GPtrArray* StructArray::release() { return std::exchange(array_, nullptr); }

// For the binding library a structure is a GValueArray whose members have the structure's types.
// The library's functions that make or fill a structure ask GLib for the types over and over, under
// a lock, which takes most of the time of a large reply; so each structure is a copy of an empty
// one.
GValue* StructArray::add(const StructType& type) {
  type_ = type.type;
  auto* const structure = static_cast<GValueArray*>(g_boxed_copy(type.type, type.empty));
  g_ptr_array_add(array_, structure);
  return structure->values;
}
