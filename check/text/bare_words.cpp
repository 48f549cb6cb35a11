#include "check/text/bare_words.h"

#include <algorithm>

#include "base/number.h"
#include "check/text/foreign_quotes.h"
#include "check/text/name_words.h"
#include "check/text/repeated_findings.h"

namespace {

constexpr size_t MOST_SHOWN = 6;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A number, or a span of two.
bool isPlainItem(std::string_view word) {
  const size_t dots = word.find("..");
  if (dots == std::string_view::npos) return wholeNumber(word).has_value();
  return isPlainItem(word.substr(0, dots)) && isPlainItem(word.substr(dots + 2));
}

// Whether a word is rather a text or a name than a part of an expression or a number gone wrong.
bool looksLikeText(std::string_view word) {
  constexpr std::string_view SIGNS = "*%&|^<>=!$+[];#?";
  const bool isNumeric = std::ranges::all_of(word, [](char c) { return isDigit(c) || c == '.'; });
  const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
  return !isNumeric && !isHexadecimal && word != "-" && word != "/" && !word.ends_with(':') &&
         word.find("..") == std::string_view::npos &&
         word.find_first_of(SIGNS) == std::string_view::npos;
}

// Walks over a list of items, or a translation.
class WordList {
 public:
  WordList(const FaultView& view, size_t from, bool areNames)
      : view_(view), scan_(view.scanFrom(from)), areNames_(areNames) {}

  std::vector<BareWord> find() {
    while (takeNext()) {
    }
    // Without any comma, words that follow one another are texts of their own, or one.
    if (hasComma_) joinRuns();
    return std::move(words_);
  }

 private:
  bool takeNext() {
    const TextPart part = scan_.next();
    if (part.kind == PART_QUOTED || part.isSign(',')) {
      hasComma_ = hasComma_ || part.isSign(',');
      isBehindWord_ = false;
      return true;
    }
    if (part.kind != PART_WORD || beginsStatement(part, scan_) || beginsDefinition(part, scan_)) {
      return false;
    }
    if (takeQuotation(part.at)) return true;
    return takeWord(part.at, part.text.substr(0, part.text.find("->"))) && takeArrow(part);
  }

  bool takeQuotation(size_t at) {
    const std::optional<ForeignQuotation> quotation = foreignQuotation(view_.lineFrom(at));
    if (!quotation) return false;
    const TextPlace place = view_.place(at, quotation->whole.size());
    words_.push_back({place, quotation->inner, true, quotation->isClosed, false});
    isBehindWord_ = false;
    scan_ = view_.scanFrom(at + quotation->whole.size());
    return true;
  }

  bool takeWord(size_t at, std::string_view word) {
    if (word.empty() || isPlainItem(word)) {
      isBehindWord_ = false;
      return true;
    }
    if (!looksLikeText(word) || isOperand()) return false;
    if (lacksOpeningQuote(at + word.size())) {
      words_.push_back({view_.place(at, word.size() + 1), word, true, true, false});
      isBehindWord_ = false;
      scan_ = view_.scanFrom(at + word.size() + 1);
      return true;
    }
    words_.push_back({view_.place(at, word.size()), word, !areNames_, true, isBehindWord_});
    isBehindWord_ = true;
    return true;
  }

  // Whether what comes next makes an expression of the word.
  [[nodiscard]] bool isOperand() const {
    const TextPart next = scan_.peek();
    if (next.isSign('(')) return true;
    return next.kind == PART_WORD && !next.isFirstOnLine &&
           std::string_view("+*/%&|^<>=!$").find(next.text.front()) != std::string_view::npos;
  }

  // Whether the quote at `at` closes what is before it: those behind it have partners.
  [[nodiscard]] bool lacksOpeningQuote(size_t at) const {
    const std::string_view rest = view_.lineFrom(at);
    return rest.starts_with('"') && std::ranges::count(rest, '"') % 2 == 1;
  }

  // What is behind an arrow in a word is looked at as a word of its own.
  bool takeArrow(const TextPart& part) {
    const size_t arrow = part.text.find("->");
    if (arrow == std::string_view::npos) return true;
    isBehindWord_ = false;
    hasComma_ = true;
    if (arrow + 2 < part.text.size()) scan_ = view_.scanFrom(part.at + arrow + 2);
    return true;
  }

  void joinRuns() {
    std::vector<BareWord> joined;
    for (const BareWord& word : words_) {
      if (!word.isBehindWord || joined.back().at.line != word.at.line) {
        joined.push_back(word);
        continue;
      }
      BareWord& before = joined.back();
      before.at.length = word.at.column + word.at.length - before.at.column;
      before.word = {before.word.data(), before.at.length};
      before.isText = true;
    }
    words_ = std::move(joined);
  }

  const FaultView& view_;
  TextScan scan_;
  bool areNames_;
  bool hasComma_ = false;
  bool isBehindWord_ = false;
  std::vector<BareWord> words_;
};

enum Meaning { MEANS_TEXT, MEANS_NAME, MEANS_EITHER };

struct MeantWord {
  const BareWord* word;
  Meaning meaning;
  std::string right;
};

// The bytes from the first word to the last one on its line, with what is right in their places.
std::optional<Proposal> proposalOf(const SourceText& source, const std::vector<MeantWord>& words) {
  const TextPlace first = words.front().word->at;
  const std::string_view line = source.line(first.line);
  Proposal proposal = {first, ""};
  size_t end = first.column;
  for (const MeantWord& meant : words) {
    const TextPlace& at = meant.word->at;
    if (meant.meaning == MEANS_EITHER || meant.word->isBehindWord || !meant.word->isClosed) {
      return {};
    }
    if (at.line != first.line) break;
    proposal.text += line.substr(end, at.column - end);
    proposal.text += meant.right;
    end = at.column + at.length;
  }
  proposal.at.length = static_cast<uint32_t>(end - first.column);
  return proposal;
}

std::string shown(const std::vector<MeantWord>& words) {
  std::string list;
  for (size_t i = 0; i < words.size() && i < MOST_SHOWN; ++i) {
    list += (i == 0 ? "" : ", ") + words[i].right;
  }
  return words.size() > MOST_SHOWN ? list + ", ..." : list;
}

std::string textOfOne(const MeantWord& meant) {
  const std::string bare(meant.word->word);
  if (meant.meaning == MEANS_NAME) return "an expression has to be in parentheses: " + meant.right;
  const bool isQuoted = meant.word->at.length != bare.size();
  const std::string text =
      std::string("a text has to be in ") + (isQuoted ? "double " : "") + "quotes: " + meant.right;
  return meant.meaning == MEANS_TEXT ? text : text + ", and a name in parentheses: (" + bare + ")";
}

std::string textOfSeveral(const std::vector<MeantWord>& words) {
  const auto has = [&](Meaning meaning) {
    return std::ranges::find(words, meaning, &MeantWord::meaning) != words.end();
  };
  const bool areRun =
      std::ranges::any_of(words, [](const MeantWord& meant) { return meant.word->isBehindWord; });
  const std::string commas = areRun ? ", with a \",\" between two" : "";
  if (!has(MEANS_TEXT) && !has(MEANS_EITHER)) {
    return "expressions have to be in parentheses" + commas + ": " + shown(words);
  }
  const bool areTexts = !has(MEANS_NAME) && !has(MEANS_EITHER);
  return std::string("texts have to be in quotes") +
         (areTexts ? "" : ", and names in parentheses") + commas + ": " + shown(words);
}

}  // namespace

std::vector<BareWord> bareWordsFrom(const FaultView& view, size_t from, bool areNames) {
  return WordList(view, from, areNames).find();
}

Finding findingOfBareWords(
    const SourceText& source, const std::vector<BareWord>& words,
    const std::function<std::optional<std::string>(std::string_view)>& nameOf) {
  std::vector<MeantWord> meant;
  for (const BareWord& word : words) {
    const std::optional<std::string> name = word.isText ? std::nullopt : nameOf(word.word);
    if (name) {
      meant.push_back({&word, MEANS_NAME, "(" + *name + ")"});
    } else {
      const bool isEither = !word.isText && isConstantName(word.word);
      meant.push_back({&word, isEither ? MEANS_EITHER : MEANS_TEXT, inQuotes(word.word)});
    }
  }
  const bool areNames =
      std::ranges::all_of(meant, [](const MeantWord& word) { return word.meaning == MEANS_NAME; });
  Finding finding = {areNames ? "syntax" : "unquoted-text", words.front().at,
                     meant.size() == 1 ? textOfOne(meant.front()) : textOfSeveral(meant)};
  finding.proposal = proposalOf(source, meant);
  if (finding.proposal) finding.at = finding.proposal->at;
  std::vector<TextPlace> further;
  for (const BareWord& word : words) {
    if (word.at.line != finding.at.line) further.push_back(word.at);
  }
  addFurtherPlaces(finding, further, "and here");
  return finding;
}
