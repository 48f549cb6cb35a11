// Video standard names: "vidStd::" P "::" F in an expression is the figure F of the standard that
// the value of parameter P selects. "vidStd::mode::spal" is 1920 while `mode` holds "1080i/50".
#pragma once

#include <optional>
#include <string_view>

struct vidFigure_t;

/// A video standard name taken apart.
struct VidStdName {
  std::string_view parameter;  ///< P, a view of the name: "mode", "in[1]"; may be empty
  const vidFigure_t* figure;   ///< F, a row of the figures' table; never null
};

/// Takes `name` apart. Returns nullopt when it is an ordinary name: it begins otherwise, has no
/// second "::", or what follows that is not exactly the name of a figure ("vidStd::mode::SPAL").
/// Whether there is a parameter P is not looked at.
std::optional<VidStdName> splitVidStdName(std::string_view name);

/// The name that a variable of an expression refers to: "mode" for "vidStd::mode::spal", and for an
/// ordinary name that name itself. Returns a view of `name`.
std::string_view referencedName(std::string_view name);
