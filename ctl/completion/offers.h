// Offers: the names and values of the service that can be typed now.
#pragma once

#include "ctl/completion/narrowed.h"
#include "ctl/completion/typed_line.h"
#include "ctl/service/service.h"

/// What begins with the text of the typed line and is of its kind; none for a kind of which the
/// service knows nothing. A value is judged with the other assignments of the line.
Candidates offersOf(Service& service, const TypedLine& typed);

/// Whether the service knows something about the kind.
bool isOfService(const std::string& kind);
