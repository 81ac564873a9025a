#include <kesu/events/KesuEvent.h>
#include <kesu/foundation/Exception.h>
#include <kesu/records/Constants.h>

#include <string>
#include <utility>

#include "events/EventPoster.h"
#include "foundation/Text.h"
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

/// Returns whether an event may have this name.
bool hasName(const Object& name) {
  const std::string* text = name ? name->text() : nullptr;
  return text != nullptr && !isBlank(*text);
}

/// Returns the poster. Throws before anything is posted when the library has no key.
EventPoster& checkedPoster() {
  EventPoster& poster = EventPoster::shared();
  if (!poster.isSDKInitialized()) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  return poster;
}

}  // namespace

void KesuEvent::post(const Object& name) {
  postWithEventName(name);
}

void KesuEvent::postWithEventName(const Object& name, const Attributes& attributes) {
  if (hasName(name)) {
    checkedPoster().postAppEvent(attributes, name);
  }
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
  if (hasName(name)) {
    checkedPoster().postAppEvent(attributes, name);
    attributes.clear();
  }
}

void KesuEvent::postEventForTableM() {
  checkedPoster().postAppEventToTableM(attributes, name);
  attributes.clear();
}

}  // namespace kesu
