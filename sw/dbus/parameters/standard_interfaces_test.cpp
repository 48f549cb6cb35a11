#include "sw/dbus/parameters/standard_interfaces.h"

#include "tests/support/parameters.h"

namespace {

TEST(StandardInterfaces, GiveProperties) {
  TestParameters device("a rw { }\ni index { rangeValid { 1..2 } }\n");
  device.commit(":1.1", {{"a", "3"}});
  device.service().state().setCaller(":1.1");
  device.call(answerBegin);
  device.call(answerWatch, true, true);
  const char* const interface = "org.tavrel.parameters1";
  const struct {
    const char* property;
    std::string answer;
  } cases[] = {
      {"Version", "<\"2.0 test\">"},
      {"Definitions", "<2>"},
      {"Commits", "<1>"},
      {"OpenTransactions", "<1>"},
      {"Watchers", "<1>"},
      {"Started", "<" + std::to_string(device.state().started()) + ">"},
      {"Ready", "<true>"},
      {"Nosuch", "UnknownProperty: There is no property \"Nosuch\""},
  };
  for (const auto& [property, answer] : cases) {
    EXPECT_EQ(device.call(answerGet, interface, property), answer) << property;
    EXPECT_EQ(device.call(answerGet, "", property), answer) << property;
  }
  EXPECT_EQ(device.call(answerGetAll, interface),
            "{\"Version\": <\"2.0 test\">, \"Definitions\": <2>, \"Commits\": <1>, "
            "\"OpenTransactions\": <1>, \"Watchers\": <1>, \"Started\": <" +
                std::to_string(device.state().started()) + ">, \"Ready\": <true>}");
  EXPECT_EQ(device.call(answerGetAll, "a.b"),
            "UnknownInterface: The interface \"a.b\" has no properties here; "
            "org.tavrel.parameters1 has");
  EXPECT_EQ(device.call(answerSet, interface, "Version"),
            "PropertyReadOnly: The property \"Version\" is read-only");
}

TEST(StandardInterfaces, TellTheirOwnAndTheFile) {
  TestParameters device("a rw { }\n");
  const std::string text = device.call(answerIntrospect);
  for (const char* const part :
       {"<interface name=\"org.tavrel.parameters1\">", "<method name=\"ListInstances\">",
        "<interface name=\"org.freedesktop.DBus.Properties\">",
        "<interface name=\"org.freedesktop.DBus.Introspectable\">", "</interface>\n</node>\n"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(text.find("</node>"), text.rfind("</node>"));
}

}  // namespace
