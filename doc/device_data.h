// Device data: built definitions as JSON, for the evaluator of a page (evaluator.js).
//
// What the builder has decided is not decided again: the data holds programs in postfix order,
// bounds, levels and the figures of standards as numbers. Lists are in the order in which the
// engine asks them; a member that would be empty is left out. Texts have a character for each byte
// (script_json.h).
//
//   {"limits": {"value": 1048576, ...},     what values, commits and a bring-up may take
//    "constants": [["MODEL", "basic"], ...],
//    "figures": ["spal"], "standards": [["1080i/50", 1920], ...],
//                                            in the order of selection; null: has no such figure
//    "names": [{"parm": 3, "at": ["1"], "figure": 0}, {"name": "channel"},
//              {"name": "MODEL", "constant": 0}],
//                                            what expressions name, each once
//    "indices": [DEFINITION, ...], "parms": [DEFINITION, ...]}  the parameters in name order
//
// A definition, with what only parameters have from "level" to "documented", and only indices from
// "varied":
//
//   {"name": "gain", "names": [0, 2],        by slot, numbers in the list of names
//    "available": [PROGRAM, ...],
//    "spans": [0, 9, 20, 29], "texts": ["off", "auto"],
//                                            the base bounds; the first text corrects
//    "ranges": [RANGE, ...], "changes": [["max", "9"], ...], "work": 412,
//    "level": 2, "mode": 3, "indices": [0], "readOnly": [PROGRAM, ...],
//    "defaults": [{"when": PROGRAM, "value": PROGRAM}, ...], "fallback": "5",
//    "documented": [RANGE, ...],
//    "varied": true}                         it is not the same for all instances
//
// A range is {"when": PROGRAM, "spans": [...], "texts": [...]}, or, where it is computed,
// {"when": PROGRAM, "items": [...]} with {"value": P}, {"quoted": P} or {"low": P, "high": P} each.
// Without "when" it always applies. A program is a list of steps: a number, a text as ["text"], the
// variable of a slot as [1], an operator as "+"; one that is a single number is that number.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "database/database.h"

/// The data of `database`, which is finished. The catalogue of video standards has to be complete
/// (initVidStdTables()). Current values are not part of it. May raise std::bad_alloc.
nlohmann::ordered_json deviceData(Database& database);
