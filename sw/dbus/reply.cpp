#include "sw/dbus/reply.h"

#include <dbus/dbus-glib.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>
#include <utility>

namespace {

// Sizes in a message: a text has its length before it and a NUL behind it, and what follows starts
// at a multiple of its alignment.
constexpr size_t NUMBER_BYTES = 4;
constexpr size_t STRUCT_ALIGNMENT = 8;

size_t aligned(size_t bytes, size_t alignment) {
  return (bytes + alignment - 1) / alignment * alignment;
}

using Text = std::unique_ptr<char, decltype(&g_free)>;

Text ownedText(const std::string& text) { return {newText(text), g_free}; }

// A structure whose members are still empty.
GValue newStructure(GType type) {
  GValue structure = G_VALUE_INIT;
  g_value_init(&structure, type);
  g_value_take_boxed(&structure, dbus_g_type_specialized_construct(type));
  return structure;
}

}  // namespace

char* newText(std::string_view text) {
  return g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
}

size_t bytesInMessage(const char* text) {
  return aligned(NUMBER_BYTES + strlen(text) + 1, NUMBER_BYTES);
}

TextList::TextList(const char* what, size_t capacity)
    : texts_(retried(what, [capacity] { return g_try_new(char*, capacity + 1); })),
      capacity_(capacity) {}

TextList::~TextList() {
  clear();
  g_free(texts_);
}

void TextList::take(char* text) {
  assert(count_ < capacity_);
  texts_[count_++] = text;
  bytes_ += bytesInMessage(text);
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

StructArray::~StructArray() {
  if (array_ == nullptr) return;
  for (guint i = 0; i < array_->len; ++i) g_boxed_free(type_, g_ptr_array_index(array_, i));
  g_ptr_array_free(array_, TRUE);
}

void StructArray::addSpan(const Span& span) {
  static const GType TYPE =
      dbus_g_type_get_struct("GValueArray", G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID);
  GValue structure = newStructure(TYPE);
  dbus_g_type_struct_set(&structure, 0, span.first, 1, span.second, G_MAXUINT);
  add(structure);
  bytes_ += 2 * NUMBER_BYTES;
}

void StructArray::addSpan(const std::string& name, const Span& span) {
  static const GType TYPE =
      dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID);
  const Text nameText = ownedText(name);
  GValue structure = newStructure(TYPE);
  dbus_g_type_struct_set(&structure, 0, nameText.get(), 1, span.first, 2, span.second, G_MAXUINT);
  add(structure);
  bytes_ += aligned(bytesInMessage(nameText.get()) + 2 * NUMBER_BYTES, STRUCT_ALIGNMENT);
}

void StructArray::addText(const std::string& name, const std::string& text) {
  static const GType TYPE =
      dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_STRING, G_TYPE_INVALID);
  const Text nameText = ownedText(name);
  const Text valueText = ownedText(text);
  GValue structure = newStructure(TYPE);
  dbus_g_type_struct_set(&structure, 0, nameText.get(), 1, valueText.get(), G_MAXUINT);
  add(structure);
  bytes_ +=
      aligned(bytesInMessage(nameText.get()) + bytesInMessage(valueText.get()), STRUCT_ALIGNMENT);
}

GPtrArray* StructArray::release() { return std::exchange(array_, nullptr); }

void StructArray::add(GValue& structure) {
  type_ = G_VALUE_TYPE(&structure);
  g_ptr_array_add(array_, g_value_get_boxed(&structure));
}
