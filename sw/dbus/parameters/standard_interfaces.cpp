#include "sw/dbus/parameters/standard_interfaces.h"

#include <string>
#include <string_view>

#include "sw/dbus/parameters/bus_error.h"

// The interface as a text, from org.tavrel.parameters1.xml.
#include <parameters_interface.h>

namespace {

// What every object of the bus has that answers these.
constexpr std::string_view STANDARD_INTERFACES =
    R"(  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="xml_data" type="s" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="GetAll">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="properties" type="a{sv}" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
  </interface>
</node>
)";

struct Property {
  std::string_view name;
  const char* signature;
  void (*write)(ParametersState& state, MessageWriter& out);
};

uint32_t countDefinitions(ParametersState& state) {
  Database& database = state.service().database();
  return static_cast<uint32_t>(database.parmCount() + database.indexCount());
}

constexpr Property PROPERTIES[] = {
    {"Version", "s", [](ParametersState& state, MessageWriter& out) { out.text(state.version()); }},
    {"Definitions", "u",
     [](ParametersState& state, MessageWriter& out) { out.number(countDefinitions(state)); }},
    {"Commits", "t",
     [](ParametersState& state, MessageWriter& out) { out.longNumber(state.commits()); }},
    {"OpenTransactions", "u",
     [](ParametersState& state, MessageWriter& out) {
       out.number(static_cast<uint32_t>(state.service().transactions().all().size()));
     }},
    {"Watchers", "u",
     [](ParametersState& state, MessageWriter& out) {
       out.number(static_cast<uint32_t>(state.watchers().all().size()));
     }},
    {"Started", "t",
     [](ParametersState& state, MessageWriter& out) { out.longNumber(state.started()); }},
    {"Ready", "b",
     [](ParametersState& state, MessageWriter& out) { out.flag(state.readiness().isReady()); }},
};

// The empty text stands for any interface.
void requireInterface(std::string_view name) {
  if (name.empty() || name == PARAMETERS_INTERFACE_NAME) return;
  throw BusError{DBUS_ERROR_UNKNOWN_INTERFACE, "The interface " + quoted(name) +
                                                   " has no properties here; " +
                                                   std::string(PARAMETERS_INTERFACE_NAME) + " has"};
}

const Property& propertyOf(std::string_view name) {
  for (const Property& property : PROPERTIES) {
    if (property.name == name) return property;
  }
  throw BusError{DBUS_ERROR_UNKNOWN_PROPERTY, "There is no property " + quoted(name)};
}

void writeValue(const Property& property, ParametersState& state, MessageWriter& out) {
  out.variant(property.signature, [&] { property.write(state, out); });
}

}  // namespace

void answerIntrospect(ParametersState& /*state*/, MessageReader& /*in*/, MessageWriter& out) {
  const size_t end = ORG_TAVREL_PARAMETERS1_XML.rfind("</node>");
  out.text(std::string(ORG_TAVREL_PARAMETERS1_XML.substr(0, end)).append(STANDARD_INTERFACES));
}

void answerGet(ParametersState& state, MessageReader& in, MessageWriter& out) {
  requireInterface(in.text());
  writeValue(propertyOf(in.text()), state, out);
}

void answerGetAll(ParametersState& state, MessageReader& in, MessageWriter& out) {
  requireInterface(in.text());
  out.array("{sv}", [&] {
    for (const Property& property : PROPERTIES) {
      out.entry([&] {
        out.text(std::string(property.name));
        writeValue(property, state, out);
      });
    }
  });
}

void answerSet(ParametersState& /*state*/, MessageReader& in, MessageWriter& /*out*/) {
  requireInterface(in.text());
  const Property& property = propertyOf(in.text());
  throw BusError{DBUS_ERROR_PROPERTY_READ_ONLY,
                 "The property " + quoted(property.name) + " is read-only"};
}
