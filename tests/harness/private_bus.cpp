#include "tests/harness/private_bus.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

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
)";
constexpr const char* ALLOWED_NAMES = "    <allow own=\"*\"/>\n";
constexpr const char* DENIED_NAMES = "    <deny own=\"*\"/>\n";
constexpr const char* BEFORE_LIMITS = "  </policy>\n";
constexpr const char* AFTER_LIMITS = "</busconfig>\n";

std::string writeConfiguration(const std::string& directory, const PrivateBus::Options& options) {
  std::string path = directory + "/bus.conf";
  std::ofstream file(path);
  file << BEFORE_DIRECTORY << directory << AFTER_DIRECTORY
       << (options.allowsNames ? ALLOWED_NAMES : DENIED_NAMES) << options.policy << BEFORE_LIMITS;
  if (!options.configuration.empty()) {
    file << "  <include>" << options.configuration << "</include>\n";
  }
  for (const auto& [name, value] : options.limits) {
    file << "  <limit name=\"" << name << "\">" << value << "</limit>\n";
  }
  file << AFTER_LIMITS;
  return path;
}

}  // namespace

PrivateBus::PrivateBus(const Options& options) {
  const std::string configuration = writeConfiguration(directory_.path(), options);
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
