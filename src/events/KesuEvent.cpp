#include <kesu/events/KesuEvent.h>
#include <kesu/foundation/Exception.h>

#include <string>
#include <utility>

#include "events/EventPoster.h"
#include "foundation/Text.h"
#include "records/ExceptionTexts.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

/// Returns whether there is something to store: a text other than white space, or an object that is no text.
bool hasContent(const Object& object) {
  if (!object || object->isNull()) {
    return false;
  }
  const std::string* text = object->text();
  return text == nullptr || !isBlank(*text);
}

}  // namespace

void KesuEvent::post(const Object& name) {
  postWithEventName(name);
}

void KesuEvent::postWithEventName(const Object& name, const Attributes& attributes) {
  KesuEvent event;
  event.name = name;
  event.attributes = attributes;
  event.post();
}

void KesuEvent::addAttribute(const Object& key, const Object& value) {
  const std::string* keyText = key ? key->text() : nullptr;
  if (keyText != nullptr && hasContent(key) && hasContent(value)) {
    attributes.set(*keyText, *value);
  }
}

void KesuEvent::addLevelAttribute(const Object& level) {
  addAttribute(std::string(kLevelAttributeKey), level);
}

void KesuEvent::post() {
  const std::string* text = name ? name->text() : nullptr;
  if (text == nullptr || isBlank(*text)) {
    return;
  }
  recordName();  // Throws before anything is posted.
  EventPoster::shared().postAppEvent(std::move(attributes));
}

void KesuEvent::postEventForTableM() {
  recordName();
  EventPoster::shared().postAppEventToTableM(std::move(attributes));
}

void KesuEvent::recordName() {
  if (name) {
    attributes.set(k_KesuEventName, *name);
  } else {
    attributes.remove(k_KesuEventName);
  }
  EventPoster& poster = EventPoster::shared();
  if (!poster.isSDKInitialized()) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  const std::string* text = name ? name->text() : nullptr;
  if (text != nullptr && !text->empty()) {
    poster.updateEvent(*text);
  }
}

}  // namespace kesu
