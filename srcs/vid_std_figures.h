// The figures of a video standard or picture format by name: "spal" of "1080i/50" is 1920.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

struct vidFormat_t;
struct vidStd_t;

/// One figure: the field's name and where its number is found.
struct vidFigure_t {
  std::string_view name;
  uint32_t (*ofStandard)(const vidStd_t&);
  uint32_t (*ofFormat)(const vidFormat_t&);  ///< null: picture formats have no such figure
};

/// The figure of that very name, or null.
const vidFigure_t* findVidFigure(std::string_view name);

/// The number of `figure` for what `value` selects, see selectVid(). No value when it selects
/// nothing, or a picture format that lacks the figure. Valid after initVidStdTables().
std::optional<uint32_t> vidStdFigure(std::string_view value, const vidFigure_t& figure);
