// Colours for a terminal.
#pragma once

#include <string>

/// Colours texts, or leaves them as they are.
class Style {
 public:
  explicit Style(bool isColoured) : isColoured_(isColoured) {}

  [[nodiscard]] std::string name(const std::string& text) const { return in("1", text); }
  [[nodiscard]] std::string note(const std::string& text) const { return in("33", text); }
  [[nodiscard]] std::string refusal(const std::string& text) const { return in("31", text); }
  [[nodiscard]] std::string heading(const std::string& text) const { return in("4", text); }

 private:
  [[nodiscard]] std::string in(const char* colour, const std::string& text) const {
    return isColoured_ ? std::string("\033[") + colour + "m" + text + "\033[0m" : text;
  }

  bool isColoured_;
};
