#include "srcs/vid_std_figures.h"

#include <algorithm>
#include <iterator>

#include "vid_std.h"

namespace {

using S = const vidStd_t&;
using F = const vidFormat_t&;

// The names tell a timing reference by the bits on its line: V becomes 1 or 0 while F is 0 or 1.
// Blanking before field 1 starts while F is still 1, and before field 2 while F is still 0, so
// "f1v1" is the start of field 1 blanking and "f0v1" that of field 2 blanking.
// The formatter would break the columns.
// clang-format off
constexpr vidFigure_t FIGURES[] = {
    // name    of a standard                               of a picture format
    {"spal",   [](S s) { return s.prodAp->dim.sample; },   [](F f) { return f.dim.sample; }},
    {"alpf",   [](S s) { return s.prodAp->dim.line; },     [](F f) { return f.dim.line; }},
    {"sptl",   [](S s) { return s.total.sample; },         nullptr},
    {"tlpf",   [](S s) { return s.total.line; },           nullptr},
    {"fr",     [](S s) { return s.rate; },                 [](F f) { return f.rate; }},
    {"clkDiv", [](S s) { return uint32_t{s.rate1001}; },   [](F f) { return uint32_t{f.rate1001}; }},
    {"f0",     [](S s) { return s.timing.f0; },            nullptr},
    {"f1",     [](S s) { return s.timing.f1; },            nullptr},
    {"f0v0",   [](S s) { return s.timing.field1V0; },      nullptr},
    {"f0v1",   [](S s) { return s.timing.field2V1; },      nullptr},
    {"f1v0",   [](S s) { return s.timing.field2V0; },      nullptr},
    {"f1v1",   [](S s) { return s.timing.field1V1; },      nullptr},
    {"f0sw",   [](S s) { return s.switchPoints[0]; },      nullptr},
    {"f1sw",   [](S s) { return s.switchPoints[1]; },      nullptr},
};
// clang-format on

}  // namespace

std::span<const vidFigure_t> vidFigures() { return FIGURES; }

const vidFigure_t* findVidFigure(std::string_view name) {
  const auto* const figure = std::find_if(std::begin(FIGURES), std::end(FIGURES),
                                          [name](const vidFigure_t& f) { return f.name == name; });
  return figure == std::end(FIGURES) ? nullptr : figure;
}

std::optional<uint32_t> vidStdFigure(std::string_view value, const vidFigure_t& figure) {
  const vidSelection_t selected = selectVid(value);
  if (selected.standard != nullptr) return figure.ofStandard(*selected.standard);
  if (selected.format == nullptr || figure.ofFormat == nullptr) return std::nullopt;
  return figure.ofFormat(*selected.format);
}
