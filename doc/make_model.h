// Makes the model of a device's documentation from its definition text and from what the engine has
// built of it.
#pragma once

#include <string>

#include "check/text/read_text.h"
#include "check/text/variant.h"
#include "doc/model.h"

/// The model of a text that the engine has read and built without an error. The standards are left
/// out: see standard_table.h. Takes time linear in the text and in what depends on what.
DocModel makeModel(const SourceText& source, const ReadText& text, const Variant& variant,
                   const std::string& title);
