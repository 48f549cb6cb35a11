#include "sw/dbus/parameters/transaction_methods.h"

#include <chrono>
#include <string>

#include "sw/dbus/memory_reserve.h"
#include "sw/dbus/parameters/bus_error.h"

void answerBegin(ParametersState& state, MessageReader& /*in*/, MessageWriter& out) {
  requireHeadroom();
  uint32_t id = 0;
  if (state.service().openOwnTransaction(id) != 0) {
    throw BusError{TOO_LARGE_ERROR, "A client has " + std::to_string(OwnedTransactions::MOST) +
                                        " transactions of its own at most; end one"};
  }
  out.number(id);
}

void answerListTransactions(ParametersState& state, MessageReader& /*in*/, MessageWriter& out) {
  ServiceState& service = state.service();
  const auto now = std::chrono::steady_clock::now();
  out.array("(usuu)", [&] {
    for (const auto& [id, transaction] : service.transactions().all()) {
      const std::string* const owner = service.owned().ownerOf(id);
      const auto age =
          std::chrono::duration_cast<std::chrono::seconds>(now - transaction.openedAt());
      out.structure([&, id = id, count = transaction.staged().count()] {
        out.number(id);
        out.text(owner != nullptr ? *owner : std::string());
        out.number(static_cast<uint32_t>(count));
        out.number(static_cast<uint32_t>(age.count()));
      });
    }
  });
}

void answerWatch(ParametersState& state, MessageReader& in, MessageWriter& /*out*/) {
  const bool changes = in.flag();
  const bool limits = in.flag();
  const std::string_view caller = state.service().caller();
  if (!caller.empty()) state.watchers().set(caller, {changes, limits});
}

void answerHistory(ParametersState& state, MessageReader& in, MessageWriter& out) {
  const std::deque<PastCommit>& commits = state.history().commits();
  const uint32_t last = in.number();
  const size_t skipped = last == 0 || last >= commits.size() ? 0 : commits.size() - last;
  out.array("(utsa(sss))", [&] {
    for (size_t i = skipped; i < commits.size(); ++i) {
      const PastCommit& commit = commits[i];
      out.structure([&] {
        out.number(commit.serial);
        out.longNumber(commit.time);
        out.text(commit.caller);
        out.array("(sss)", [&] {
          forEachChange(commit, [&](const std::string& name, const std::string& before,
                                    const std::string& after) {
            out.structure([&] {
              out.text(name);
              out.text(before);
              out.text(after);
            });
          });
        });
      });
    }
  });
}
