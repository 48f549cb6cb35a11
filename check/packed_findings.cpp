#include "check/packed_findings.h"

#include <cstring>

#include "check/text/finding_codes.h"

namespace {

// A text is its length and its bytes, a list the number of its members and these.
class Packer {
 public:
  void add(uint64_t number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    packed_.append(bytes, sizeof number);
  }
  void add(std::string_view text) {
    add(text.size());
    packed_.append(text);
  }
  void add(const TextPlace& at) {
    add(at.line);
    add(at.column);
    add(at.length);
  }
  void add(const Findings& findings) {
    add(findings.all().size());
    for (const Finding& finding : findings.all()) add(finding);
  }
  std::string take() { return std::move(packed_); }

 private:
  void add(const Finding& finding) {
    add(finding.code);
    add(finding.at);
    add(finding.text);
    add(finding.related.size());
    for (const RelatedPlace& related : finding.related) {
      add(related.at);
      add(related.text);
    }
    add(uint64_t{finding.proposal.has_value()});
    if (finding.proposal) {
      add(finding.proposal->at);
      add(finding.proposal->text);
    }
    add(finding.witness.size());
    for (const auto& [name, value] : finding.witness) {
      add(name);
      add(value);
    }
    add(finding.variant);
    add(finding.level ? uint64_t{*finding.level} + 1 : 0);
  }

  std::string packed_;
};

// Reads what a Packer wrote. After the first fault everything is empty.
class Unpacker {
 public:
  explicit Unpacker(std::string_view bytes) : bytes_(bytes) {}

  uint64_t number() {
    uint64_t number = 0;
    const std::string_view bytes = take(sizeof number);
    if (!isBroken_) std::memcpy(&number, bytes.data(), sizeof number);
    return number;
  }
  std::string text() { return std::string(take(number())); }
  Findings findings() {
    Findings findings;
    for (uint64_t left = number(); left > 0 && !isBroken_; --left) findings.add(finding());
    return findings;
  }
  [[nodiscard]] bool isBroken() const { return isBroken_; }
  [[nodiscard]] std::string_view rest() const { return bytes_; }

 private:
  std::string_view take(uint64_t size) {
    if (size > bytes_.size()) isBroken_ = true;
    if (isBroken_) return {};
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
  }
  TextPlace place() {
    TextPlace at;
    at.line = static_cast<uint32_t>(number());
    at.column = static_cast<uint32_t>(number());
    at.length = static_cast<uint32_t>(number());
    return at;
  }
  // Its code has to outlive the bytes.
  std::string_view code() {
    const FindingCode* const code = findFindingCode(text());
    if (code == nullptr) isBroken_ = true;
    return code == nullptr ? std::string_view() : code->name;
  }
  Finding finding() {
    Finding finding;
    finding.code = code();
    finding.at = place();
    finding.text = text();
    for (uint64_t left = number(); left > 0 && !isBroken_; --left) {
      RelatedPlace& related = finding.related.emplace_back();
      related.at = place();
      related.text = text();
    }
    if (number() != 0) {
      finding.proposal.emplace().at = place();
      finding.proposal->text = text();
    }
    for (uint64_t left = number(); left > 0 && !isBroken_; --left) {
      auto& [name, value] = finding.witness.emplace_back();
      name = text();
      value = text();
    }
    finding.variant = text();
    const uint64_t level = number();
    if (level > 0) finding.level = static_cast<FindingLevel>(level - 1);
    return finding;
  }

  std::string_view bytes_;
  bool isBroken_ = false;
};

}  // namespace

std::string packFindings(const VariantFindings& variant) {
  Packer packer;
  packer.add(uint64_t{variant.isBuilt});
  packer.add(variant.findings);
  packer.add(variant.undecided);
  return packer.take();
}

std::optional<VariantFindings> unpackFindings(std::string_view& bytes) {
  Unpacker unpacker(bytes);
  VariantFindings variant;
  variant.isBuilt = unpacker.number() != 0;
  variant.findings = unpacker.findings();
  variant.undecided = unpacker.findings();
  if (unpacker.isBroken()) return std::nullopt;
  bytes = unpacker.rest();
  return variant;
}
