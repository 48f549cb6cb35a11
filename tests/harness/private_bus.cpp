#include "tests/harness/private_bus.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

// The limits are those of a session bus as it is usually set up: wide enough never to be met.
constexpr const char* BEFORE_DIRECTORY = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=)";
constexpr const char* AFTER_DIRECTORY = R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_replies_per_connection">50000</limit>
  <limit name="reply_timeout">600000</limit>
</busconfig>
)";

std::string writeConfiguration(const std::string& directory) {
  std::string path = directory + "/bus.conf";
  std::ofstream(path) << BEFORE_DIRECTORY << directory << AFTER_DIRECTORY;
  return path;
}

}  // namespace

PrivateBus::PrivateBus() {
  const std::string configuration = writeConfiguration(directory_.path());
  process_ = std::make_unique<Process>(
      Process::Options{.command = {DBUS_DAEMON, "--config-file=" + configuration, "--nofork",
                                   "--nopidfile", "--print-address=1"},
                       .outputToPipe = true});
  address_ = process_->readLine();
  if (address_.empty()) {
    fprintf(stderr, "no private bus: %s\n", process_->errorsSoFar().c_str());
    abort();
  }
}
