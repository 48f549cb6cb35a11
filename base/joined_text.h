// Joined texts: the text that a chain of additions makes.
#pragma once

#include <string>
#include <string_view>

/// A text that grows at both ends. Its room at least doubles each time that it runs out, so a long
/// chain of additions costs about its length, whichever way it is grouped.
///
/// Library / this, 1,000 additions: std::deque<char> 3.5, std::string 3.7, absl::Cord 9
/// (docs/performance.md, "Containers").
class JoinedText {
 public:
  explicit JoinedText(std::string_view text) : room_(text) {}
  void append(std::string_view text) { room_ += text; }
  void prepend(std::string_view text);
  /// The text so far; it holds until the text grows.
  [[nodiscard]] std::string_view view() const { return std::string_view(room_).substr(begin_); }

 private:
  std::string room_;
  size_t begin_ = 0;  // of the text; what is before it is free
};
