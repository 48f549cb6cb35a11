// Right types with wrong contents: texts of every malformed kind, very long ones, very many, counts
// and ids from end to end.
#include "tests/harness/hostile_test.h"

namespace {

constexpr guint MANY = 100000;
constexpr size_t MEBIBYTE = size_t{1} << 20U;

std::string repeated(const std::string& text, size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (size_t i = 0; i < times; ++i) result += text;
  return result;
}

// At least a mebibyte of it.
std::string mebibyteOf(const std::string& text) {
  return repeated(text, MEBIBYTE / text.size() + 1);
}

GVariant* textArray(const std::vector<std::string>& texts) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("as"));
  for (const std::string& text : texts) g_variant_builder_add(&builder, "s", text.c_str());
  return g_variant_builder_end(&builder);
}

// In-arguments of `method`: `name` and `value`, or `length` of them, wherever it takes some.
GVariant* arguments(const BusMethod& method, const std::string& name, const std::string& value,
                    size_t length = 1) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
  for (const BusArgument& argument : method.in) {
    const std::string& text = argument.name == "parm_value" ? value : name;
    if (argument.type == "s") g_variant_builder_add(&builder, "s", text.c_str());
    if (argument.type == "as") {
      g_variant_builder_add_value(&builder, textArray(std::vector<std::string>(length, text)));
    }
    if (argument.type == "u") {
      g_variant_builder_add(&builder, "u", argument.name == "parm_num" ? guint32{G_MAXUINT32} : 0U);
    }
  }
  return g_variant_builder_end(&builder);
}

// An answer of the interface's own: a value, or one of its errors, which tells of no fault inside.
bool isSound(const Reply& reply) {
  return reply.value != nullptr || (reply.errorName == ERROR_NAME &&
                                    reply.errorMessage.find("internal") == std::string::npos &&
                                    reply.errorMessage.find("unknown") == std::string::npos);
}

class HostileArgumentsTest : public HostileTest {
 protected:
  // Calls every method with these arguments.
  void attack(const std::string& name, const std::string& value, size_t length = 1) {
    for (const BusMethod& method : busMethods()) {
      if (method.name == "die" || method.name == "end") continue;
      SCOPED_TRACE(method.name);
      const Reply reply = client().call(method.name, arguments(method, name, value, length));
      EXPECT_TRUE(isSound(reply)) << reply.errorName << ": " << reply.errorMessage;
    }
    expectSound();
  }
};

constexpr const char* MALFORMED[] = {
    "",
    " ",
    "\n",
    "\x7f",
    "\xc3\xa9",
    "%s%n%s%n",
    "[",
    "]",
    "[]",
    "[1]",
    "gain",
    "gain[",
    "gain]",
    "gain[]",
    "gain[[[[",
    "gain]]]]",
    "gain[[1]]",
    "gain[1",
    "gain[1]]",
    "gain[1][",
    "gain[1]x",
    "gain[1][2]",
    "gain[][]",
    "gain[1] ",
    " gain[1]",
    "gain[0]",
    "gain[3]",
    "gain[-1]",
    "gain[0x1]",
    "gain[1e0]",
    "gain[2147483647]",
    "gain[2147483648]",
    "gain[4294967297]",
    "gain[-2147483648]",
    "gain[99999999999999999999999]",
    "gain[level]",
    "gain[\n]",
    "wide[100001]",
    "note[1]",
    "note[[]]",
    "channel",
    "channel[1]",
    "place[[[[",
    "sw::this",
    "::",
    "vidStd::",
    "vidStd::level",
    "vidStd::level::spal",
    "vidStd::gain[1]::spal",
    "vidStd::gain[[[[::spal",
    "level=5",
};

TEST_F(HostileArgumentsTest, MalformedNamesAndValuesAreAnsweredByEveryMethod) {
  for (const char* text : MALFORMED) {
    SCOPED_TRACE(text);
    attack(text, "1");
    attack("note", text);
    attack("level", text);
    attack("gain[1]", text);
    attack(text, text, 2);
  }
}

TEST_F(HostileArgumentsTest, TextsOfAMebibyteAreAnsweredByEveryMethod) {
  for (const char* part : {"9", "[", "[1]", "1][", "%n\n"}) {
    SCOPED_TRACE(part);
    const std::string text = mebibyteOf(part);
    attack(text, text);
    attack("note", text);
    attack("gain[" + text + "]", "1");
  }
}

TEST_F(HostileArgumentsTest, AHundredThousandNamesAreAnsweredByEveryMethod) {
  attack("", "", MANY);
  attack("gain[1]", "1", MANY);
  attack("gain[[[[", "1", MANY);
}

std::vector<std::string> manyInstances(const std::string& name) {
  std::vector<std::string> names;
  for (guint i = 1; i <= MANY; ++i) names.push_back(name + "[" + std::to_string(i) + "]");
  return names;
}

TEST_F(HostileArgumentsTest, AHundredThousandInstancesAreSetAndReadTogether) {
  const std::vector<std::string> names = manyInstances("wide");
  const std::vector<std::string> values(MANY, "4");
  EXPECT_NE(
      client()
          .call("single_set_bulk", g_variant_new("(@as@as)", textArray(names), textArray(values)))
          .value,
      nullptr);
  const Reply reply =
      client().call("single_get_bulk", g_variant_new("(u@as)", MANY, textArray(names)));
  ASSERT_NE(reply.value, nullptr) << reply.errorMessage;
  EXPECT_TRUE(textsOf(VariantPointer(g_variant_get_child_value(reply.value.get(), 0)).get()) ==
              values);
  expectSound();
}

TEST_F(HostileArgumentsTest, AHundredThousandInstancesThatDoNotExistAreRefused) {
  const std::vector<std::string> values(MANY, "4");
  for (const char* name : {"note", "level[1]", "wide[1]"}) {
    SCOPED_TRACE(name);
    const Reply reply =
        client().call("single_set_bulk",
                      g_variant_new("(@as@as)", textArray(manyInstances(name)), textArray(values)));
    EXPECT_EQ(reply.errorMessage,
              "dbus_tavrel_transaction: Commit failed because parameter index is invalid");
    expectSound();
  }
}

struct UnequalCase {
  size_t names;
  size_t values;
};

TEST_F(HostileArgumentsTest, ListsOfUnequalLengthEndWithTheShorter) {
  const UnequalCase cases[] = {{0, 0}, {0, 1}, {1, 0}, {1, MANY}, {MANY, 1}, {0, MANY}, {MANY, 0}};
  for (const UnequalCase& c : cases) {
    SCOPED_TRACE(std::to_string(c.names) + ", " + std::to_string(c.values));
    for (const char* method : {"single_set_bulk", "single_set_status_bulk"}) {
      const Reply reply = client().call(
          method, g_variant_new("(@as@as)", textArray(std::vector<std::string>(c.names, "note")),
                                textArray(std::vector<std::string>(c.values, "x"))));
      EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
    }
    expectSound();
  }
  EXPECT_EQ(client().answer("single_set_bulk(['note', 'level'], ['y'])"), "()");
  EXPECT_EQ(client().answer("single_set_bulk(['level'], ['4', '3'])"), "()");
  EXPECT_EQ(client().answer("single_get_bulk(2, ['note', 'level'])"), "['y', '4']");
  EXPECT_EQ(client().answer("single_set('level', '5')"), "()");
}

void expectTexts(const Reply& reply, size_t count) {
  ASSERT_NE(reply.value, nullptr) << reply.errorMessage;
  const VariantPointer texts(g_variant_get_child_value(reply.value.get(), 0));
  EXPECT_EQ(g_variant_n_children(texts.get()), count);
}

TEST_F(HostileArgumentsTest, CountsBeyondTheNamesEndWithThem) {
  for (const guint32 count :
       {0U, 1U, MANY - 1, MANY, MANY + 1, 2147483647U, 2147483648U, 4294967295U}) {
    for (const size_t names : {size_t{0}, size_t{1}, size_t{MANY}}) {
      SCOPED_TRACE(std::to_string(count) + " of " + std::to_string(names));
      GVariant* list = textArray(std::vector<std::string>(names, "level"));
      const VariantPointer call(g_variant_ref_sink(g_variant_new("(u@as)", count, list)));
      expectTexts(client().call("single_get_bulk", call.get()), std::min<size_t>(count, names));
      const VariantPointer again(g_variant_get_child_value(call.get(), 1));
      expectTexts(client().call("get_bulk", g_variant_new("(uu@as)", 0, count, again.get())),
                  std::min<size_t>(count, names));
    }
  }
  expectSound();
}

TEST_F(HostileArgumentsTest, IdsThatAreNotOpenAreRefusedByEveryMethod) {
  ASSERT_EQ(client().answer("start()"), "3");
  ASSERT_EQ(client().answer("end(3)"), "()");
  // Never given, of a call that opened one for itself, ended; 0 is open.
  for (const guint32 id : {3U, 1U, 4U, 2147483647U, 2147483648U, 4294967295U}) {
    for (const BusMethod& method : busMethods()) {
      if (method.in.empty() || method.in.front().name != "transaction_id") continue;
      SCOPED_TRACE(method.name + " " + std::to_string(id));
      GVariant* right = g_variant_ref_sink(arguments(method, "note", "x"));
      GVariantBuilder builder;
      g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
      g_variant_builder_add(&builder, "u", id);
      for (size_t i = 1; i < method.in.size(); ++i) {
        const VariantPointer argument(g_variant_get_child_value(right, i));
        g_variant_builder_add_value(&builder, argument.get());
      }
      g_variant_unref(right);
      const Reply reply = client().call(method.name, g_variant_builder_end(&builder));
      EXPECT_TRUE(reply.errorMessage.ends_with(" failed because of invalid transaction id"))
          << reply.errorMessage;
    }
  }
  expectSound();
}

}  // namespace
