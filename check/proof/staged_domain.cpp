#include "check/proof/staged_domain.h"

Domain settableDomain(const ParmDef& parm) {
  if (parm.hasConstraints()) return Domain::all();
  Domain domain;
  domain.add(parm.baseBounds());
  for (const auto& [source, target] : parm.translations()) domain.addText(source);
  return domain;
}

Domain stagedDomain(const ParmDef& parm) {
  Domain domain = settableDomain(parm);
  domain.addText(parm.fallbackDefault());
  for (const ConditionalDefault& one : parm.defaults()) {
    if (one.value.usesVariables()) {
      domain.addAll();
    } else {
      domain.addText(one.value.evaluate(SituationView()).asText());
    }
  }
  return domain;
}
