#include "delivery/KesuPost.h"

#include <utility>

#include "delivery/CollectorRequest.h"
#include "foundation/Describe.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr const char* kPostSource = "KesuPost";

}  // namespace

std::string KesuPost::FullVersionHeader() {
  return fullVersionText();
}

std::string KesuPost::postURL(const std::string& /*destination*/) {
  const MutexLock lock(endpointMutex_);
  if (endpoint_.empty()) {
    endpoint_ = settings_.collectorUrl();
    if (!settings_.collectorOverride().empty()) {
      KESU_LOG_AT(3, kPostSource, 224, "\n\n\n\nKesu endpoint is = %s\n\n\n\n", endpoint_.c_str());
    }
  }
  return endpoint_;
}

std::optional<HttpRequest> KesuPost::requestFromDictionary(Dictionary& record) {
  optimizeDictionary(record);
  return collectorRequest(record, clock_.now(), postURL({}));
}

void KesuPost::send(Dictionary record, const Outbox::Ticket& ticket) {
  auto request = requestFromDictionary(record);
  if (!request) {
    outbox_.finish(ticket);
    return;
  }
  // The record, not the body: what is stored is completed again when it is re-sent ("ase").
  http_.sendInBackground(std::move(*request),
                         [this, record = std::move(record), ticket](const HttpReply& reply) mutable {
                           finish(std::move(record), ticket, reply);
                         });
}

void KesuPost::finish(Dictionary record, const Outbox::Ticket& ticket, const HttpReply& reply) {
  if (actionAfter(PostKind::First, reply) == PostAction::None) {
    outbox_.finish(ticket);
    if (isDelivered(reply)) {
      observe(FirstAttempt::Delivered);
    }
  } else if (ticket.isLogged && reply.error == HttpError::Cancelled && outbox_.isEnding()) {
    outbox_.leave();
  } else {
    record.remove(k_AgentSentEpoch);  // Of this attempt only.
    background_.post([this, record = std::move(record), ticket] { store(record, ticket); });
  }
}

void KesuPost::store(const Dictionary& record, const Outbox::Ticket& ticket) {
  if (ticket.isLogged && outbox_.isEnding()) {  // The end of a process has no time for a file per record.
    outbox_.leave();
    return;
  }
  if (store_.add(record)) {
    isStoreFailing_ = false;
    outbox_.finish(ticket);
    observe(FirstAttempt::Kept);
    return;
  }
  KESU_LOG_AT(3, kPostSource, 177, "Error writing dictionary to disk %s", describe(record).c_str());
  if (!std::exchange(isStoreFailing_, true)) {
    KESU_LOG(0, "%s",
             ticket.isLogged ? "Undelivered records cannot be stored at the moment; they are tried again later"
                             : "Undelivered records can neither be logged nor stored, and are lost");
  }
  outbox_.park(ticket);
  observe(FirstAttempt::Kept);
}

void KesuPost::observe(FirstAttempt end) {
  if (observer_) {
    observer_(end);
  }
}

void KesuPost::repost(Dictionary record, std::function<void(bool isDelivered)> ended) {
  auto request = requestFromDictionary(record);
  if (!request) {
    ended(false);
    return;
  }
  http_.sendInBackground(std::move(*request), [ended = std::move(ended)](const HttpReply& reply) {
    ended(actionAfter(PostKind::Resend, reply) == PostAction::DeleteFile);
  });
}

}  // namespace kesu
