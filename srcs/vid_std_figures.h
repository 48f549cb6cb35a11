// The figures of a video standard or picture format by name: "spal" of "1080i/50" is 1920.
//
// Expressions of definition texts name them behind a parameter or a constant; ostrel-definitions(5)
// lists them with their meanings.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

struct vidFormat_t;
struct vidStd_t;

/// One figure: its name and the functions that read its number from a row of the catalogue. Lines
/// count from 1, a rate is in whole hertz, and a flag is 0 or 1. The figures are a static table, so
/// pointers to them are valid as long as the process.
struct vidFigure_t {
  std::string_view name;
  uint32_t (*ofStandard)(const vidStd_t&);
  uint32_t (*ofFormat)(const vidFormat_t&);  ///< null: picture formats have no such figure
};

/// All figures.
std::span<const vidFigure_t> vidFigures();

/// The figure with exactly this name, upper and lower case included, or null.
const vidFigure_t* findVidFigure(std::string_view name);

/// The number of `figure` for the row that `value` selects, see selectVid(). No value when it
/// selects no row, or a picture format that lacks the figure. Correct after initVidStdTables()
/// only, which computes some of the numbers.
std::optional<uint32_t> vidStdFigure(std::string_view value, const vidFigure_t& figure);
