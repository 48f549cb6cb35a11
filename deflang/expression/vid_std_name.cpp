#include "deflang/expression/vid_std_name.h"

#include "srcs/vid_std_figures.h"

namespace {

constexpr std::string_view PREFIX = "vidStd::";
constexpr std::string_view SEPARATOR = "::";

}  // namespace

std::optional<VidStdName> splitVidStdName(std::string_view name) {
  if (!name.starts_with(PREFIX)) return std::nullopt;
  name.remove_prefix(PREFIX.size());
  const size_t end = name.find(SEPARATOR);
  if (end == std::string_view::npos) return std::nullopt;
  const vidFigure_t* const figure = findVidFigure(name.substr(end + SEPARATOR.size()));
  if (figure == nullptr) return std::nullopt;
  return VidStdName{name.substr(0, end), figure};
}

std::string_view referencedName(std::string_view name) {
  const std::optional<VidStdName> figure = splitVidStdName(name);
  return figure ? figure->parameter : name;
}
