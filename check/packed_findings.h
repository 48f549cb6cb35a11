// Packed findings: what one process hands to another one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/text/findings.h"

/// What is known of a text in one variant.
struct VariantFindings {
  bool isBuilt = false;  ///< whether its definitions could be asked
  Findings findings = {};
  Findings undecided = {};
};

/// All of it as bytes, for unpackFindings() of the same program.
std::string packFindings(const VariantFindings& variant);

/// Takes one packFindings() from the beginning of `bytes`. nullopt where they are something else or
/// end too early.
std::optional<VariantFindings> unpackFindings(std::string_view& bytes);
