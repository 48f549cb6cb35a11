#include "doc/scale.h"

#include <algorithm>
#include <cstdint>

namespace {

// The width of a bar in units of its picture. A span that would hardly be seen is wider than it is.
constexpr int64_t WIDTH = 400;
constexpr int64_t LEAST_WIDTH = 3;

class Scale {
 public:
  explicit Scale(const Span& extent)
      : low_(extent.first), numbers_(int64_t{extent.second} - extent.first + 1) {}

  // Where a number begins.
  [[nodiscard]] int64_t at(int64_t number) const { return (number - low_) * WIDTH / numbers_; }

 private:
  int64_t low_;
  int64_t numbers_;
};

}  // namespace

std::optional<Span> extentOf(const std::vector<DocRange>& ranges) {
  std::optional<Span> extent;
  for (const DocRange& range : ranges) {
    for (const DocItem& item : range.items) {
      if (!item.span) continue;
      if (!extent) extent = item.span;
      extent->first = std::min(extent->first, item.span->first);
      extent->second = std::max(extent->second, item.span->second);
    }
  }
  if (extent && extent->first == extent->second) extent.reset();
  return extent;
}

void appendScale(std::string& html, const DocRange& range, const Span& extent,
                 std::optional<int> mark) {
  const Scale scale(extent);
  std::string bars;
  for (const DocItem& item : range.items) {
    if (!item.span) continue;
    const int64_t from = std::min(scale.at(item.span->first), WIDTH - LEAST_WIDTH);
    const int64_t to = std::max(scale.at(int64_t{item.span->second} + 1), from + LEAST_WIDTH);
    const std::string width = std::to_string(to - from);
    bars.append("M").append(std::to_string(from)).append(" 4h").append(width);
    bars.append("v6h-").append(width).append("z");
  }
  if (bars.empty()) return;
  html +=
      "<svg class=s viewBox=\"0 0 400 14\" aria-hidden=true><path class=t d=\"M0 6h400v2H0z\"/>"
      "<path d=\"" +
      bars + "\"/>";
  const bool isMarked = mark && extent.first <= *mark && *mark <= extent.second;
  if (isMarked) {
    const int64_t at = (scale.at(*mark) + scale.at(int64_t{*mark} + 1)) / 2;
    html += "<path class=m d=\"M" + std::to_string(std::clamp<int64_t>(at - 1, 0, WIDTH - 2)) +
            " 0h2v14h-2z\"/>";
  }
  html += "</svg>";
}
