#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/HttpClient.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "delivery/KesuStore.h"
#include "delivery/PostOutcome.h"
#include "foundation/Mutex.h"
#include "outbox/Outbox.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// Sends records to the collector, one request per record: the only place where they leave the device.
///
/// The background queue builds the requests, and writes and deletes the files that follow from their outcome; the main
/// loop has no part in it.
class KesuPost {
 public:
  /// The end of a first attempt.
  enum class FirstAttempt {
    Delivered,  ///< The collector has the record.
    Kept        ///< It is in the store or in the outbox, for a later pass.
  };

  KesuPost(HttpClient& http, Outbox& outbox, BackgroundQueue& background, Clock& clock, DeploymentSettings& settings,
           KesuStore& store)
      : http_(http), outbox_(outbox), background_(background), clock_(clock), settings_(settings), store_(store) {
    outbox.setEntryFiles(store);
  }

  /// Takes a complete record; it is sent in its turn. Any thread. [KesuPost post:]
  void post(const Dictionary& record) { outbox_.add({}, record); }

  /// Sends a record that the outbox has handed out, and gives it back with the outcome: stored if it cannot be
  /// delivered; dropped if the collector refuses it for good (400, 403) or if it cannot be written as JSON. One that
  /// can be neither delivered nor stored waits in the outbox. Background queue.
  void send(Dictionary record, const Outbox::Ticket& ticket);

  /// Sends a stored record again. `ended` is called once, on any thread, with whether it was delivered (2xx): the
  /// caller then deletes its file; else it stays for the next pass. Background queue. [KesuPost repost:]
  void repost(Dictionary record, std::function<void(bool isDelivered)> ended);

  /// Sets the one observer of first attempts, called on any thread. Before the first record is sent.
  void setObserver(std::function<void(FirstAttempt)> observer) { observer_ = std::move(observer); }

  /// Returns "10-i-3.2.3", the value of header "v". [KesuPost FullVersionHeader]
  static std::string FullVersionHeader();

  // Owed to hosts and to the agreed interface; no caller inside the library but this class.

  /// Returns the collector's URL, chosen at the first call and kept for the life of the process, whatever the
  /// destination. [KesuPost postURL:]
  std::string postURL(const std::string& destination);

 private:
  std::optional<HttpRequest> requestFromDictionary(Dictionary& record);
  void finish(Dictionary record, const Outbox::Ticket& ticket, const HttpReply& reply);
  void store(const Dictionary& record, const Outbox::Ticket& ticket);
  void observe(FirstAttempt end);

  HttpClient& http_;
  Outbox& outbox_;
  BackgroundQueue& background_;
  Clock& clock_;
  DeploymentSettings& settings_;
  KesuStore& store_;
  std::function<void(FirstAttempt)> observer_;
  bool isStoreFailing_ = false;  // Background queue only.

  Mutex endpointMutex_;
  std::string endpoint_ KESU_GUARDED_BY(endpointMutex_);
};

}  // namespace kesu
