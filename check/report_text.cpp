#include "check/report_text.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "check/named_values.h"
#include "check/printable.h"
#include "check/text/finding_codes.h"
#include "check/text/wording.h"

namespace {

constexpr const char* BOLD = "\33[1m";
constexpr const char* RED = "\33[1;31m";
constexpr const char* MAGENTA = "\33[1;35m";
constexpr const char* CYAN = "\33[1;36m";
constexpr const char* GREEN = "\33[1;32m";
constexpr const char* PLAIN = "\33[m";

// No more bytes of a line are shown; the reading of the text cuts lines there, too.
constexpr size_t MAX_SHOWN = 1023;

const char* colourOf(std::string_view word) {
  if (word == "error") return RED;
  return word == "warning" ? MAGENTA : CYAN;
}

// Whether further quotes would look like a part of `text`, or hide that it has none.
bool isShownBare(std::string_view text) {
  const std::string_view signs = text.size() > 1 ? "\"{}()" : "";
  return std::ranges::any_of(text, [signs](unsigned char c) {
    return std::isdigit(c) != 0 || signs.find(static_cast<char>(c)) != std::string_view::npos;
  });
}

// What a proposal says. What has quotes or numbers is as it is to be written, and so is what takes
// the place of quotes.
std::string proposalText(const Proposal& proposal, const SourceText& source) {
  const std::string_view line = source.line(proposal.at.line);
  const size_t column = std::min<size_t>(proposal.at.column, line.size());
  const std::string_view replaced = line.substr(column, proposal.at.length);
  const auto shown = [](std::string_view text, bool isBare) {
    return isBare ? std::string(text) : inQuotes(text);
  };
  if (proposal.text.empty()) return "leave out " + shown(replaced, isShownBare(replaced));
  const bool isBare = isShownBare(proposal.text) || replaced.find('"') != std::string_view::npos;
  if (proposal.at.length == 0) return "add " + shown(proposal.text, isBare);
  return "did you mean " + shown(proposal.text, isBare) + "?";
}

// Writes one report.
class TextWriter {
 public:
  TextWriter(const SourceText& source, const TextStyle& style, std::FILE* out)
      : source_(source), name_(printable(source.name())), style_(style), out_(out) {}

  // `word` is the level, or what else the finding is.
  void writeFinding(const Finding& finding, std::string_view word) const {
    writeHead(finding.at, word, finding.text, finding.code);
    writeLine(finding.at);
    for (const RelatedPlace& related : finding.related) {
      writeHead(related.at, "note", related.text);
      writeLine(related.at);
    }
    if (finding.proposal) writeProposal(finding);
    if (!finding.witness.empty()) writeNote("for example with " + joinedValues(finding.witness));
    if (!finding.variant.empty()) writeNote("with " + finding.variant);
  }

  void writeUndecidedCount(size_t count) const {
    const std::string questions = count == 1 ? " question" : " questions";
    writeHead({}, "note", std::to_string(count) + questions + " undecided");
  }

 private:
  void put(std::string_view text) const { std::fwrite(text.data(), 1, text.size(), out_); }
  void putColour(const char* colour) const {
    if (style_.hasColours) put(colour);
  }
  void putColoured(const char* colour, std::string_view text) const {
    putColour(colour);
    put(text);
    putColour(PLAIN);
  }

  // "FILE:LINE:COL: word: text [code]"
  void writeHead(TextPlace at, std::string_view word, std::string_view text,
                 std::string_view code = {}) const {
    std::string place = name_ + ":";
    if (at.line != 0) place += std::to_string(at.line) + ":" + std::to_string(at.column + 1) + ":";
    putColoured(BOLD, place);
    put(" ");
    writeSentence(word, text);
    if (!code.empty()) {
      put(" [");
      putColoured(BOLD, code);
      put("]");
    }
    put("\n");
  }

  void writeNote(const std::string& text) const {
    writeSentence("note", text);
    put("\n");
  }

  void writeSentence(std::string_view word, std::string_view text) const {
    putColoured(colourOf(word), std::string(word) + ":");
    put(" ");
    put(printable(text));
  }

  void writeProposal(const Finding& finding) const {
    writeHead(finding.proposal->at, "note", proposalText(*finding.proposal, source_));
    const bool isElsewhere = finding.proposal->at.line != finding.at.line ||
                             finding.proposal->at.column != finding.at.column;
    if (isElsewhere) writeLine(finding.proposal->at);
  }

  // The line of the text, and what is meant in it underlined. A carriage return at its end is not
  // shown, and nothing is where the place is beyond what is shown of the line.
  void writeLine(TextPlace at) const {
    if (at.line == 0 || at.line > source_.lineCount()) return;
    std::string_view line = source_.line(at.line);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (at.column > std::min(line.size(), MAX_SHOWN)) return;
    std::string shown;
    std::string mark;
    const size_t end = at.column + std::max<size_t>(at.length, 1);
    size_t offset = 0;
    while (offset < line.size() && offset < MAX_SHOWN) {
      const Character character = firstCharacter(line.substr(offset));
      const bool isTab = character.point == U'\t';
      const char32_t point = isTab ? character.point : shownAs(character.point);
      appendCharacter(point, shown);
      appendMark(offset, isTab ? 1 : columnsOf(point), isTab, at.column, end, mark);
      offset += character.length;
    }
    if (mark.find('^') == std::string::npos) mark += '^';
    if (offset < line.size()) shown += "...";
    put(shown + "\n");
    const size_t caret = mark.find('^');
    put(mark.substr(0, caret));
    putColoured(GREEN, mark.substr(caret));
    put("\n");
  }

  // Adds what is below a character. Tabs are kept before the mark, so that it is below its
  // character whatever a tab is.
  static void appendMark(size_t offset, size_t columns, bool isTab, size_t from, size_t end,
                         std::string& mark) {
    if (offset >= end) return;
    const bool isMarked = mark.find('^') != std::string::npos;
    if (offset < from) {
      mark.append(columns, isTab ? '\t' : ' ');
    } else if (isMarked) {
      mark.append(columns, '~');
    } else {
      mark += '^';
      if (columns > 1) mark.append(columns - 1, '~');
    }
  }

  const SourceText& source_;
  const std::string name_;
  const TextStyle& style_;
  std::FILE* out_;
};

}  // namespace

void writeText(const FileReport& file, const TextStyle& style, std::FILE* out) {
  struct Line {
    const Finding* finding;
    const char* word;
  };
  std::vector<Line> lines;
  for (const Finding& finding : file.report.findings) {
    lines.push_back({&finding, levelWord(levelOf(finding))});
  }
  if (style.showsAllowed) {
    for (const Finding& finding : file.report.allowed) lines.push_back({&finding, "allowed"});
  }
  if (style.showsUndecided) {
    for (const Finding& finding : file.report.undecided) lines.push_back({&finding, "undecided"});
  }
  std::ranges::stable_sort(lines, {}, [](const Line& line) { return line.finding->at; });

  const TextWriter writer(*file.source, style, out);
  for (const Line& line : lines) writer.writeFinding(*line.finding, line.word);
  const size_t undecided = file.report.undecided.size();
  if (undecided > 0) writer.writeUndecidedCount(undecided);
}
