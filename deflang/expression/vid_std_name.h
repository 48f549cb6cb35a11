// Video standard names: "vidStd::" P "::" F reads the figure F of the standard that parameter P
// selects.
#pragma once

#include <optional>
#include <string_view>

struct vidFigure_t;

/// A video standard name taken apart.
struct VidStdName {
  std::string_view parameter;  ///< a view of the name
  const vidFigure_t* figure;   ///< never null
};

/// Takes `name` apart; nothing when it is an ordinary name: another prefix, no second "::", or what
/// follows that names no figure.
std::optional<VidStdName> splitVidStdName(std::string_view name);

/// The name that an expression's variable refers to: P of a video standard name, else the name.
std::string_view referencedName(std::string_view name);
