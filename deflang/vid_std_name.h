// Video standard names: "vidStd::" P "::" F reads the figure F of the standard that parameter P
// selects.
#pragma once

#include <optional>
#include <string_view>

/// A video standard name taken apart; views of the name.
struct VidStdName {
  std::string_view parameter;
  std::string_view figure;
};

/// Takes `name` apart; nothing when it is an ordinary name: another prefix, no second "::", or a
/// figure that is none of "spal", "alpf", "sptl", "tlpf", "fr", "clkDiv", "f0", "f1", "f0v0",
/// "f0v1", "f1v0", "f1v1", "f0sw", "f1sw".
std::optional<VidStdName> splitVidStdName(std::string_view name);

/// The name that an expression's variable refers to: P of a video standard name, else the name.
std::string_view referencedName(std::string_view name);
