// HTML: texts of a device as text and attributes of a page, where none of them is ever markup.
#pragma once

#include <string>
#include <string_view>

#include "doc/model.h"

/// Adds `text` with the five characters replaced that could end a text or a quoted attribute.
void appendEscaped(std::string& html, std::string_view text);
/// `text` as appendEscaped() adds it.
std::string escaped(std::string_view text);

/// The address within the page of what `kind` and `name` say, "#p-gain" of "p" and "gain": with
/// every byte encoded that an address cannot have.
std::string fragment(std::string_view kind, std::string_view name);

/// Adds a link to the parameter or index `text` names, in code type. A name that is neither is not
/// linked.
void appendName(std::string& html, const DocModel& model, const std::string& name);
/// Adds names with commas between them, as appendName().
void appendNames(std::string& html, const DocModel& model, const std::vector<std::string>& names);
/// Adds a sentence, its names as appendName() adds them.
void appendSentence(std::string& html, const DocModel& model, const Sentence& sentence);
