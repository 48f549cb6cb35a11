#include "tests/harness/bus_methods.h"

#include <algorithm>

std::string BusMethod::inType() const {
  std::string type = "(";
  for (const BusArgument& argument : in) type += argument.type;
  return type + ")";
}

const std::vector<BusMethod>& busMethods() {
  static const BusArgument id = {"transaction_id", "u"};
  static const BusArgument count = {"parm_num", "u"};
  static const BusArgument name = {"parm_name", "s"};
  static const BusArgument names = {"parm_name", "as"};
  static const BusArgument value = {"parm_value", "s"};
  static const BusArgument values = {"parm_value", "as"};
  static const BusArgument valid = {"valid", "b"};
  static const std::vector<BusMethod> methods = {
      {"start", {}, {id}},
      {"get", {id, name}, {value}},
      {"get_bulk", {id, count, names}, {values}},
      {"is_valid", {id, name, value}, {valid}},
      {"check_set", {id, name, value}, {valid}},
      {"set", {id, name, value}, {}},
      {"set_status", {id, name, value}, {}},
      {"set_bulk", {id, names, values}, {}},
      {"set_status_bulk", {id, names, values}, {}},
      {"reset", {id, name}, {}},
      {"reset_status", {id, name}, {}},
      {"reset_bulk", {id, names}, {}},
      {"reset_status_bulk", {id, names}, {}},
      {"commit", {id}, {}},
      {"end", {id}, {}},
      {"single_get", {name}, {value}},
      {"single_get_bulk", {count, names}, {values}},
      {"single_is_valid", {name, value}, {valid}},
      {"single_check_set", {name, value}, {valid}},
      {"single_set", {name, value}, {}},
      {"single_set_status", {name, value}, {}},
      {"single_set_bulk", {names, values}, {}},
      {"single_set_status_bulk", {names, values}, {}},
      {"single_reset", {name}, {}},
      {"single_reset_status", {name}, {}},
      {"single_reset_bulk", {names}, {}},
      {"single_reset_status_bulk", {names}, {}},
      {"get_deps", {name}, {{"parm_dep", "as"}}},
      {"get_range", {id, name}, {{"parm_str_range", "as"}, {"parm_int_range", "a(ii)"}}},
      {"get_range_bulk", {id, names}, {{"parm_str_range", "a(ss)"}, {"parm_int_range", "a(sii)"}}},
      {"get_parm_idx", {id, name}, {{"idx_list", "as"}}},
      {"get_idx_range",
       {id, {"idx_name", "s"}},
       {{"idx_str_range", "as"}, {"idx_int_range", "a(ii)"}}},
      {"die", {}, {}},
  };
  return methods;
}

const BusMethod* findBusMethod(std::string_view name) {
  const auto found = std::find_if(busMethods().begin(), busMethods().end(),
                                  [&](const BusMethod& method) { return method.name == name; });
  return found == busMethods().end() ? nullptr : &*found;
}
