#include "check/proof/staged_domain.h"

Domain settableDomain(const ParmDef& parm) {
  if (parm.hasConstraints()) return Domain::all();
  Domain domain;
  domain.add(parm.baseBounds());
  for (const auto& [source, target] : parm.translations()) domain.addText(source);
  return domain;
}
