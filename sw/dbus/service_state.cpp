#include "sw/dbus/service_state.h"

#include <cassert>

namespace {

ServiceState* currentState = nullptr;

}  // namespace

ServiceState::ServiceState(Database& database) : database_(database), transactions_(database) {
  currentState = this;
}

ServiceState::~ServiceState() {
  currentState = nullptr;
  freeLock();
  if (mainLoop_ != nullptr) g_main_loop_unref(mainLoop_);
}

ServiceState& ServiceState::current() {
  assert(currentState != nullptr);
  return *currentState;
}

int ServiceState::createMainLoop() {
  mainLoop_ = g_main_loop_new(nullptr, FALSE);
  return mainLoop_ != nullptr ? 0 : 1;
}

int ServiceState::createLock() {
  lock_ = g_try_new0(GMutex, 1);
  if (lock_ == nullptr) return 1;
  g_mutex_init(lock_);
  return 0;
}

int ServiceState::openTransaction(uint32_t& id) {
  if (transactions_.open(id) == nullptr) return 1;
  try {
    owners_.opened(id, caller_);
  } catch (...) {
    static_cast<void>(transactions_.end(id));  // nobody knows it yet
    throw;
  }
  return 0;
}

int ServiceState::openOwnTransaction(uint32_t& id) {
  if (caller_.empty() || owned_.countOf(caller_) >= OwnedTransactions::MOST) return 2;
  if (transactions_.open(id) == nullptr) return 1;
  try {
    owned_.add(id, caller_);
  } catch (...) {
    static_cast<void>(transactions_.end(id));  // nobody knows it yet
    throw;
  }
  return 0;
}

Transaction* ServiceState::findTransaction(uint32_t id) {
  if (owned_.isHiddenFrom(id, caller_)) return nullptr;
  used_ = id;
  return transactions_.find(id);
}

int ServiceState::endTransaction(uint32_t id) {
  if (owned_.isHiddenFrom(id, caller_)) return 1;
  owners_.ended(id);
  owned_.remove(id);
  return transactions_.end(id);
}

void ServiceState::clientLeft(std::string_view name) noexcept {
  owners_.left(name);
  while (const std::set<uint32_t>* const ids = owned_.transactionsOf(name)) {
    const uint32_t id = *ids->begin();
    owned_.remove(id);
    static_cast<void>(transactions_.end(id));  // one that is not open need not be ended
  }
  if (observer_ != nullptr) observer_->clientLeft(name);
}

void ServiceState::finishCall() noexcept {
  if (used_) owners_.used(*used_);
  used_.reset();
  if (observer_ != nullptr) observer_->callFinished();
}

void ServiceState::stop() {
  freeLock();
  if (mainLoop_ != nullptr) g_main_loop_quit(mainLoop_);
}

void ServiceState::freeLock() {
  if (lock_ == nullptr) return;
  g_mutex_clear(lock_);
  g_free(lock_);
  lock_ = nullptr;
}
