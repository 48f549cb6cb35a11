#include "doc/html.h"

#include <array>

namespace {

bool isUnreserved(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == '-' || byte == '_' || byte == '.' || byte == '~';
}

}  // namespace

void appendEscaped(std::string& html, std::string_view text) {
  for (const char byte : text) {
    switch (byte) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += byte;
    }
  }
}

std::string escaped(std::string_view text) {
  std::string html;
  appendEscaped(html, text);
  return html;
}

std::string fragment(std::string_view kind, std::string_view name) {
  constexpr std::array DIGITS = {'0', '1', '2', '3', '4', '5', '6', '7',
                                 '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
  std::string address = "#" + std::string(kind) + "-";
  for (const char byte : name) {
    const auto number = static_cast<unsigned char>(byte);
    if (isUnreserved(byte)) {
      address += byte;
    } else {
      address.append({'%', DIGITS[number / 16], DIGITS[number % 16]});
    }
  }
  return address;
}

void appendName(std::string& html, const DocModel& model, const std::string& name) {
  const std::string base = baseNameOf(name);
  const bool isParameter = model.find(base) != nullptr;
  if (isParameter || model.indexPlaces.contains(base)) {
    html.append("<a href=\"").append(fragment(isParameter ? "p" : "i", base)).append("\">");
    appendEscaped(html, name);
    html += "</a>";
  } else {
    html += "<code>";
    appendEscaped(html, name);
    html += "</code>";
  }
}

void appendNames(std::string& html, const DocModel& model, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (&name != &names.front()) html += ", ";
    appendName(html, model, name);
  }
}

void appendSentence(std::string& html, const DocModel& model, const Sentence& sentence) {
  for (const SentencePart& part : sentence) {
    switch (part.kind) {
      case PART_OF_NAME:
        appendName(html, model, part.text);
        break;
      case PART_OF_TEXT:
        html += "<q>";
        appendEscaped(html, part.text);
        html += "</q>";
        break;
      default:
        appendEscaped(html, part.text);
    }
  }
}
