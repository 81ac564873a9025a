#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/messaging/KesuInAppMessageType.h>
#include <kesu/platform/Platform.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "message_ui/Generation.h"
#include "messaging/InAppModel.h"
#include "messaging/KesuInbox.h"

namespace kesu {

/// Decides which message is shown: fetches headers, picks the first message, fetches its body, and pages. Knows no
/// view. Main thread.
///
/// A reply that arrives after the session was closed, paged or opened again is dropped.
class MessageSession {
 public:
  using Step = std::function<void()>;
  using Filter = std::function<bool(const Dictionary& header)>;

  /// Both must outlive the session.
  MessageSession(KesuInbox& inbox, Platform& platform) : inbox_(inbox), platform_(platform) {}

  /// Sets which headers may be shown; an empty function allows all. Called when headers arrive, once per header.
  void setFilter(Filter mayShow) { mayShow_ = std::move(mayShow); }

  /// Opens the session: fetches the headers of this type, picks the first message, fetches its body, and calls `ready`
  /// on a later turn of the main loop, with the fonts loaded. Without headers `ready` is called, too, and there is no
  /// model. When the filter refuses every header the session closes without a call.
  void open(KesuInAppMessageType type, Step ready);

  /// Moves to the next message (kNextTag) or the previous one (every other tag), fetches its body and calls `ready` as
  /// open() does. Returns false at the ends, where nothing happens.
  bool page(std::int64_t tag, Step ready);

  /// Closes the session and drops what is being fetched. The headers are kept until the next open().
  void close();

  /// Calls a function of the host, which may close or reopen the session; returns true if it has not. A session whose
  /// hook throws is closed, since nothing else would close it; the exception is passed on.
  bool survives(const Step& hook);

  /// Fetches how many messages are new; unreadMessageCount() returns it once the reply has arrived.
  void fetchUnreadMessageCount();

  bool isOpen() const { return isOpen_; }
  KesuInAppMessageType type() const { return type_; }
  const Array& headers() const { return headers_; }
  std::int64_t index() const { return index_; }  ///< In the headers, from 0; -1 until they have arrived.
  std::int64_t unreadMessageCount() const { return unreadMessageCount_; }
  Generation generation() const { return generations_.current(); }

  /// The current message; null for none. Each body that arrives makes another one.
  const std::shared_ptr<const InAppModel>& model() const { return model_; }

  /// An entry of the current message's header; nil without one.
  Object headerValue(std::string_view key) const;

 private:
  void receiveHeaders(const Object& headers, const Step& ready);
  void updateModelAtCurrentIndex(Step ready);
  void receiveBody(const Object& body);
  void deliver(Step ready);

  KesuInbox& inbox_;
  Platform& platform_;
  Filter mayShow_;
  bool isOpen_ = false;
  KesuInAppMessageType type_ = KesuInAppMessageType::Unread;
  Array headers_;
  std::int64_t index_ = 0;
  std::shared_ptr<const InAppModel> model_;
  std::int64_t unreadMessageCount_ = 0;
  GenerationCounter generations_;  // Advances with each request, each accepted reply, and when the session closes.
};

}  // namespace kesu
