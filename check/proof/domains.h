// The domains of a text: what each of its names may have as a value, in any situation.
#pragma once

#include <array>
#include <map>
#include <set>

#include "check/proof/abstract_value.h"
#include "check/proof/compiled_text.h"
#include "check/proof/domain.h"

/// What a name may be in any situation, old values included: a superset.
struct NameDomain {
  Domain values;  ///< with the empty text where it may be unset
  bool mayBeUndefined = false;
};

/// Domains by base name.
using DomainsByName = std::map<std::string, NameDomain, std::less<>>;

/// How values of parameters that refer to each other are changed.
enum Staging {
  STAGED_ALONE,     ///< by commits of one value each
  STAGED_TOGETHER,  ///< by commits of several: each is read as it was staged until it is judged
};

/// Works each domain out once. The text has to outlive it.
class Domains {
 public:
  explicit Domains(const CompiledText& text);

  /// The domain of the parameter, constant or index that `source` names, without its figure. The
  /// reference is valid as long as this object.
  const NameDomain& of(const VariableSource& source) { return domainOf(source, READ_AS_STAGED); }
  /// Likewise what is worth trying: of parameters that refer to each other, nothing that only wrong
  /// values leave which are set together.
  const NameDomain& worthTrying(const VariableSource& source) {
    return domainOf(source, READ_AS_HELD);
  }
  /// As of(), but a command-line constant may have every value that is given for it, and every one
  /// that the text compares it with.
  const NameDomain& ofAnyVariant(const VariableSource& source);
  /// What the figure or value of `source` may be as an operand.
  AbstractValue abstractOf(const VariableSource& source);
  /// As the other one, where the name has a value of `domain`.
  static AbstractValue abstractOf(const VariableSource& source, const NameDomain& domain);
  /// What parameters that refer to each other may come to hold, from the values of `start` on: the
  /// least domains in which all lies again that commits leave.
  /// Other names may be anything of their domain. By base name, as `start` is.
  DomainsByName leastOf(const DomainsByName& start, Staging staging);
  /// Whether the item of a range may have no value, or a span its ends the wrong way round.
  bool mayFail(const CompiledItem& item);

 private:
  using ValueOf = std::function<AbstractValue(const VariableSource&)>;

  // How a parameter reads those that are judged after it.
  enum Reading { READ_AS_STAGED, READ_AS_HELD };
  static constexpr size_t READINGS = 2;

  const NameDomain& domainOf(const VariableSource& source, Reading reading);

  [[nodiscard]] ValueOf ownValueOf() {
    return [this](const VariableSource& source) { return abstractOf(source); };
  }
  // What `own` may read of `source` while it is judged.
  AbstractValue readBy(const ParmEntry& own, const VariableSource& source, Reading reading);
  static Domain parmDomain(const Subject& subject, const ValueOf& valueOf);
  [[nodiscard]] Domain correctedDomain(Staging staging, const Subject& subject, const Domain& held,
                                       const ValueOf& valueOf) const;
  NameDomain indexDomain(const IndexEntry& index) const;
  void noteComparedConstants();

  const CompiledText& text_;
  std::array<DomainsByName, READINGS> domains_;
  DomainsByName variants_;
  std::set<std::string, std::less<>> open_;  // those that are being worked out
};
