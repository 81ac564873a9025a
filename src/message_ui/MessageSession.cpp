#include "message_ui/MessageSession.h"

#include <utility>

#include "drawing/DrawingModule.h"
#include "foundation/Objects.h"
#include "message_ui/MessageLog.h"
#include "message_ui/MessagePaging.h"
#include "services/MessageKeys.h"

namespace kesu {

void MessageSession::open(KesuInAppMessageType type, Step ready) {
  isOpen_ = true;
  type_ = type;
  headers_.clear();
  index_ = -1;
  model_ = nullptr;
  unreadMessageCount_ = 0;
  inbox_.kesu_getMessageHeadersForType(
      type, [this, asked = generations_.advance(), ready = std::move(ready)](const Object& headers) {
        if (asked.isCurrent()) {
          receiveHeaders(headers, ready);
        }
      });
}

void MessageSession::receiveHeaders(const Object& headers, const Step& ready) {
  generations_.advance();  // The inbox may call twice; the second reply does not count.
  const Array* received = headers ? headers->array() : nullptr;
  const Filter mayShow = mayShow_;  // A copy: the host may set another one inside.
  bool isRefused = false;
  for (const Value& header : received != nullptr ? *received : Array()) {
    if (header.dictionary() == nullptr) {  // It names no message.
      continue;
    }
    bool isAllowed = true;
    if (mayShow && !survives([&] { isAllowed = mayShow(*header.dictionary()); })) {
      return;
    }
    isRefused = isRefused || !isAllowed;
    if (isAllowed) {
      headers_.push_back(header);
    }
  }
  if (isRefused && headers_.empty()) {
    close();
    return;
  }
  index_ = firstMessageIndex(headers_);
  updateModelAtCurrentIndex(ready);
}

bool MessageSession::page(std::int64_t tag, Step ready) {
  const std::int64_t index = pagedIndex(tag, index_, headers_.size());
  if (index == index_) {
    return false;
  }
  index_ = index;
  updateModelAtCurrentIndex(std::move(ready));
  return true;
}

void MessageSession::updateModelAtCurrentIndex(Step ready) {
  if (headers_.empty()) {
    deliver(std::move(ready));
    return;
  }
  inbox_.kesu_getMessageWithContentID(
      headerValue(kCampaignIdKey), headerValue(kMessageIdKey),
      [this, asked = generations_.advance(), ready = std::move(ready)](const Object& body) {
        if (asked.isCurrent()) {
          receiveBody(body);
          deliver(ready);
        }
      });
}

// Kept: a message whose body cannot be fetched leaves the one before in its place.
void MessageSession::receiveBody(const Object& body) {
  const Dictionary* dictionary = body ? body->dictionary() : nullptr;
  if (dictionary == nullptr) {
    return;
  }
  logMessageContent(*dictionary);
  const Value* payload = dictionary->find(kPayloadKey);
  const Dictionary* content = payload != nullptr ? payload->dictionary() : nullptr;
  model_ = std::make_shared<const InAppModel>(content != nullptr ? *content : Dictionary(), false);
}

// Always on a later turn of the main loop: the caller may be a button of the very bars that `ready` replaces.
void MessageSession::deliver(Step ready) {
  auto step = [this, made = generations_.advance(), ready = std::move(ready)] {
    if (!made.isCurrent()) {
      return;
    }
    if (drawingModule() == nullptr) {  // A popup without a picture would only take the remote's presses.
      close();
      return;
    }
    ready();
  };
  MainLoop& loop = platform_.mainLoop;  // The worker's task must not use a session that may be destroyed.
  if (areFontsReady()) {
    loop.post(std::move(step));
    return;
  }
  platform_.imageWorker.post([&loop, step = std::move(step)]() mutable {
    prepareFonts();
    loop.post(std::move(step));
  });
}

void MessageSession::close() {
  generations_.advance();
  isOpen_ = false;
  model_ = nullptr;
  unreadMessageCount_ = 0;
  index_ = 0;
}

bool MessageSession::survives(const Step& hook) {
  const Generation before = generation();
  try {
    if (const Step copy = hook) {  // The host may replace its options inside.
      copy();
    }
  } catch (...) {
    if (before.isCurrent()) {
      close();
    }
    throw;
  }
  return before.isCurrent();
}

void MessageSession::fetchUnreadMessageCount() {
  inbox_.kesu_countNewUnFetched([this, asked = generation()](std::int64_t count) {
    if (asked.isAlive()) {
      unreadMessageCount_ = count;
    }
  });
}

Object MessageSession::headerValue(std::string_view key) const {
  const auto index = static_cast<std::size_t>(index_);
  const Dictionary* header = index < headers_.size() ? headers_[index].dictionary() : nullptr;
  return header != nullptr ? valueIn(*header, key) : Object(nil);
}

}  // namespace kesu
