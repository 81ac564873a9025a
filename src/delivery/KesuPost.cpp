#include "delivery/KesuPost.h"

#include <utility>

#include "delivery/CollectorRequest.h"
#include "foundation/Describe.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr const char* kPostSource = "KesuPost";

}  // namespace

const std::string& KesuPost::FullVersionHeader() {
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

std::optional<HttpRequest> KesuPost::requestFromDictionary(const Dictionary& record) {
  Dictionary body = collectorBody(record, clock_.now());
  stampInterruptedRun(body, defaults_);
  const std::string* named = record.findText(k_destinationKeyInDictionary);
  const std::string destination = named != nullptr ? *named : std::string(kUnknownDestination);
  return collectorRequest(body, destination, postURL(destination));
}

void KesuPost::postInternal(Dictionary record, PostKind kind) {
  optimizeDictionary(record);
  auto request = requestFromDictionary(record);
  if (!request) {
    return;
  }
  // The record, not the body: what is stored is completed again when it is re-sent ("ase", interrupted run).
  http_.send(std::move(*request),
             [this, record = std::move(record), kind](const HttpReply& reply) { finish(record, kind, reply); });
}

void KesuPost::finish(const Dictionary& record, PostKind kind, const HttpReply& reply) {
  switch (actionAfter(kind, reply)) {
    case PostAction::None:
      return;
    case PostAction::StoreRecord:
      if (!store_.add(record)) {  // Lost: there is neither a collector nor a disk to give it to.
        KESU_LOG_AT(3, kPostSource, 177, "Error writing dictionary to disk %s", describe(record).c_str());
      }
      return;
    case PostAction::DeleteFile:
      if (const std::string* name = record.findText(k_keyFilename)) {
        store_.deleteFile(*name);
      }
      return;
  }
}

}  // namespace kesu
