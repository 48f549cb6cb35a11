// The model of a device's documentation: what every form of it shows, made once from the engine.
//
// All texts are valid UTF-8 without control characters, so that each form only has to escape them
// by its own rules.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "doc/sentence.h"
#include "sw/parm/bounds.h"

/// A condition, a value replacement or whatever else one statement says has a place and a text.
struct DocStatement {
  uint32_t line = 0;  ///< of its keyword, from 1
  std::string text;   ///< as sw/parm/statement_text.h writes it
};

/// One item of a range: a span of numbers, a text, or what is computed.
struct DocItem {
  std::optional<Span> span = {};         ///< constant numbers
  std::optional<std::string> text = {};  ///< a constant text
  Sentence lower = {};                   ///< computed: the value or the low end
  Sentence upper = {};                   ///< computed: the high end, empty for a single value
};

/// A range, which counts while its condition is true. An empty condition is always true.
struct DocRange {
  DocStatement statement;
  Sentence condition;
  std::vector<DocItem> items;

  /// Whether all its items are constant.
  [[nodiscard]] bool isConstant() const;
};

/// A condition.
struct DocCondition {
  DocStatement statement;
  Sentence sentence;  ///< empty where it is always true
};

/// A default, which counts while its condition is true and none before it counts.
struct DocDefault {
  DocStatement statement;
  Sentence condition;
  Sentence value;
};

/// A value that is replaced by another one.
struct DocReplacement {
  DocStatement statement;
  std::string source;
  std::string target;
};

/// What an index and a parameter have in common.
struct DocDefinition {
  std::string name;
  std::vector<std::string> description;  ///< paragraphs
  std::string section;                   ///< of the text; empty before the first one
  uint32_t line = 0;                     ///< of the name, from 1
  std::vector<DocCondition> available;   ///< all have to be true
  std::vector<DocRange> ranges;          ///< the conditional ones, then the constant one
  std::vector<DocReplacement> replacements;
  std::vector<std::string> follows;    ///< the parameters that its expressions name, by name
  std::vector<std::string> standards;  ///< those of them whose video standard it follows
};

/// An index.
struct DocIndex : DocDefinition {
  std::vector<std::string> parameters;  ///< that it indexes, in the order of the text
};

/// A parameter.
struct DocParameter : DocDefinition {
  std::string access;                ///< "rw", "ro", "rostrict" or "wo"
  uint32_t level = 0;                ///< of the engine, from 0
  bool isNever = false;              ///< this variant of the device never has it
  std::vector<std::string> indices;  ///< in index order
  std::vector<DocRange> menus;       ///< what is offered in place of the ranges
  std::vector<DocDefault> defaults;
  std::vector<DocCondition> readOnly;   ///< one that is true suffices
  std::vector<std::string> followedBy;  ///< by name
};

/// A value and what it is good for.
struct DocConstant {
  std::string name;
  std::string value;
};

/// What an instance is under one standard, with everything that follows the standard reset.
struct DocStandardCell {
  bool exists = false;             ///< else nothing else counts
  bool hasRange = false;           ///< its range can be worked out there
  Spans spans;                     ///< of the range, ascending
  std::vector<std::string> texts;  ///< of the range, ascending; neither: every value is allowed
  bool isCut = false;              ///< the range has more spans or texts
  std::string value;               ///< the default, as it is after a reset, or its start
  bool operator==(const DocStandardCell& other) const = default;
};

/// A parameter, or some of its instances that are alike, under each standard.
struct DocStandardRow {
  std::string parameter;
  std::string instances;               ///< "[1] [2]"; empty for all
  std::vector<DocStandardCell> cells;  ///< one for each standard
};

/// What follows the standard that one parameter selects.
struct DocStandards {
  std::string selector;
  std::vector<std::string> standards;  ///< that it may hold, in the order of the catalogue
  std::vector<DocStandardRow> rows;    ///< in the order of the text
};

/// The whole device.
struct DocModel {
  std::string title;
  std::string file;
  std::vector<DocConstant> constants;
  std::vector<DocParameter> parameters;  ///< in the order of the text
  std::vector<DocIndex> indices;         ///< in the order of the text
  std::vector<DocStandards> standards;
  std::unordered_map<std::string, size_t> places;       ///< of the parameters, by name
  std::unordered_map<std::string, size_t> indexPlaces;  ///< of the indices, by name

  /// The parameter of a base name, or null.
  [[nodiscard]] const DocParameter* find(const std::string& name) const;
  /// The sections in the order of the text, each once; an empty one comes first.
  [[nodiscard]] std::vector<std::string> sections() const;
  /// One more than the highest level; 0 without parameters.
  [[nodiscard]] uint32_t levels() const;
};
