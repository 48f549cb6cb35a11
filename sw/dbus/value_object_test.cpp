#include "sw/dbus/value_object.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(ValueObject, IsAClassOfItsOwnWithoutFields) {
  const GType type = value_object_get_type();
  EXPECT_EQ(value_object_get_type(), type);
  EXPECT_STREQ(g_type_name(type), "ValueObject");
  EXPECT_EQ(g_type_parent(type), G_TYPE_OBJECT);
  EXPECT_EQ(sizeof(ValueObject), sizeof(GObject));
}

TEST(ValueObject, HasOneSignalWithAListOfTexts) {
  auto* klass = static_cast<ValueObjectClass*>(g_type_class_ref(value_object_get_type()));
  const guint id = g_signal_lookup("transaction", value_object_get_type());
  ASSERT_NE(id, 0U);
  EXPECT_EQ(klass->signals[0], id);
  GSignalQuery query;
  g_signal_query(id, &query);
  EXPECT_EQ(query.signal_flags, G_SIGNAL_RUN_LAST);
  EXPECT_EQ(query.return_type, G_TYPE_NONE);
  ASSERT_EQ(query.n_params, 1U);
  EXPECT_EQ(query.param_types[0], G_TYPE_STRV);
  guint count = 0;
  g_free(g_signal_list_ids(value_object_get_type(), &count));
  EXPECT_EQ(count, 1U);
  g_type_class_unref(klass);
}

using Texts = std::vector<std::string>;

void keepTexts(ValueObject* /*object*/, char** texts, Texts* kept) {
  kept->assign(texts, texts + g_strv_length(texts));
}

TEST(EmitTransaction, HandsTheTextsToWhoListens) {
  auto* object = static_cast<ValueObject*>(g_object_new(value_object_get_type(), nullptr));
  Texts kept;
  g_signal_connect(object, "transaction", G_CALLBACK(keepTexts), &kept);
  const char* changes[] = {"a=1", "b=2", nullptr};
  emitTransaction(object, const_cast<char**>(changes));
  EXPECT_EQ(kept, (Texts{"a=1", "b=2"}));
  g_object_unref(object);
}

}  // namespace
