// ostrelctl: waiting until a device has been brought up, and saying so.
#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/harness/ctl_test.h"
#include "tests/harness/parameters_client.h"

namespace {

constexpr const char* TEXT = "mode rw { rangeValid { \"wide\", \"slim\" } default { \"wide\" } }\n";

class CtlReadyTest : public CtlServiceTest {
 protected:
  void serveNotReady() { serve(TEXT, {}, {{"OSTREL_BRING_UP", "1"}}); }
  std::string isReady() { return ParametersClient(client()).answer("Get('Ready')"); }
};

TEST_F(CtlReadyTest, WaitsForTheBringUpUnlessToldOtherwise) {
  serveNotReady();
  const char* const late =
      "no service: org.tavrel.transaction has not become ready within 1 s; --no-wait asks it as it "
      "is\n";
  expectLines({{"ctl --no-wait get mode", "\n"},
               {"ctl --no-wait range mode", "slim, wide\n"},
               {"ctl --timeout 1 get mode", "", late, 3},
               {"ctl --timeout 1 ls", "", late, 3},
               {"ctl --timeout 1 set mode=slim", "", late, 3},
               {"ctl --timeout 1 try mode=slim", "", late, 3},
               {"ctl --timeout 1 watch", "", late, 3}});
  const auto reading = start("ctl get mode");
  const auto writing = start("ctl set mode=slim");
  EXPECT_EQ(isReady(), "<false>");
  expectLines({{"ctl up", "up: 1 value in 1 level\n"}});
  EXPECT_EQ(isReady(), "<true>");
  EXPECT_EQ(writing->waitForEnd().out, "mode = slim\n");
  const std::string read = reading->waitForEnd().out;
  EXPECT_TRUE(read == "wide\n" || read == "slim\n") << read;
}

TEST_F(CtlReadyTest, SaysWhenItHasBroughtUpTheDeviceWhateverWasRefused) {
  const struct {
    CtlLine line;
    const char* isReady;
  } cases[] = {
      {{"ctl -q up"}, "<true>"},
      {{"echo mode=slim > v; ctl -q restore v"}, "<true>"},
      {{"echo mode=loud > v; ctl -q restore v", "",
        "refused: mode: it takes slim, wide, not loud\n", 1},
       "<true>"},
      {{"echo nosuch=1 > v; ctl -q up --from v", "", "unknown: no parameter \"nosuch\"\n", 5},
       "<true>"},
      {{"echo mode=slim > v; ctl -q restore --dry-run v"}, "<false>"},
      {{"ctl -q up --from nosuch", "", "cannot read nosuch: No such file or directory\n", 2},
       "<false>"},
      {{"ctl -q --no-wait set mode=slim"}, "<false>"},
  };
  for (const auto& [line, expected] : cases) {
    serveNotReady();
    expectLines({line});
    EXPECT_EQ(isReady(), expected) << line.line;
    expectOrderlyEnd();
  }
}

struct OlderMethod {
  std::string_view name;
  const char* answer;
};
constexpr OlderMethod OLDER_METHODS[] = {
    {"GetState", "([('mode', uint32 67, 'wide', @a(ii) [], @as [])],)"},
    {"List",
     "([('mode', 'rw', @as [], uint32 1, uint32 0), "
     "('lamp', 'ro', [], 2, 0), ('i', 'index', [], 3, 0)],)"},
    {"ListInstances", "(['mode'],)"},
};

// A service of before there was a wait, or a list of names alone.
class OlderService {
 public:
  explicit OlderService(const std::string& address)
      : context_(g_main_context_new()), thread_([this, address] { run(address); }) {
    while (!isThere_) std::this_thread::yield();
  }
  ~OlderService() {
    isOver_ = true;
    g_main_context_wakeup(context_);
    thread_.join();
    g_main_context_unref(context_);
  }
  OlderService(const OlderService&) = delete;
  OlderService& operator=(const OlderService&) = delete;

 private:
  static void onCall(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                     const gchar* /*path*/, const gchar* /*interface*/, const gchar* method,
                     GVariant* /*arguments*/, GDBusMethodInvocation* call, gpointer /*self*/) {
    const auto* const found =
        std::ranges::find(OLDER_METHODS, std::string_view(method), &OlderMethod::name);
    g_dbus_method_invocation_return_value(call, g_variant_new_parsed(found->answer));
  }

  void run(const std::string& address) {
    static constexpr GDBusInterfaceVTable HANDLERS = {onCall, nullptr, nullptr, {}};
    g_main_context_push_thread_default(context_);
    const Client client(address);
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(
        "<node><interface name='org.tavrel.parameters1'><method name='GetState'>"
        "<arg type='u' direction='in'/><arg type='as' direction='in'/>"
        "<arg type='a(susa(ii)as)' direction='out'/></method>"
        "<method name='List'><arg type='s' direction='in'/>"
        "<arg type='a(ssasuu)' direction='out'/></method>"
        "<method name='ListInstances'><arg type='u' direction='in'/>"
        "<arg type='as' direction='in'/><arg type='as' direction='out'/></method>"
        "</interface></node>",
        nullptr);
    g_dbus_connection_register_object(client.connection(), PARAMETERS_PATH, node->interfaces[0],
                                      &HANDLERS, this, nullptr, nullptr);
    const VariantPointer named(g_dbus_connection_call_sync(
        client.connection(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", INTERFACE_NAME, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr));
    isThere_ = true;
    while (!isOver_) g_main_context_iteration(context_, TRUE);
    g_dbus_node_info_unref(node);
    g_main_context_pop_thread_default(context_);
  }

  GMainContext* context_;
  std::atomic<bool> isThere_ = false;
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

TEST_F(CtlReadyTest, TakesAnOlderServiceForReady) {
  const OlderService service(bus().address());
  for (const char* const line : {"ctl get mode", "ctl --no-wait get mode"}) {
    EXPECT_EQ(start(line)->waitForEnd().out, "wide\n") << line;
  }
}

TEST_F(CtlReadyTest, CompletesNamesOfAnOlderService) {
  const OlderService service(bus().address());
  EXPECT_EQ(start("ctl complete words set ''")->waitForEnd().out, "open\nmode=\n");
  EXPECT_EQ(start("ctl complete words ls ''")->waitForEnd().out, "whole\nmode\nlamp\ni\n");
}

}  // namespace
