#pragma once

#include <kesu/events/KesuEvent.h>
#include <kesu/events/KesuGeoPoint.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <string_view>

namespace kesu {

/// One event of the catalogue on its way to be posted, written as one expression:
///
///   EventBuilder("GamingLevelEnd", attributes).object("level", level).flag("won", won).post();
///
/// It starts from a copy of the host's attributes; every step writes one key over them. <kesu/events/Catalogue.h>
/// defines the kinds of keys. A temporary of one thread; post() throws what KesuEvent::post() throws.
class EventBuilder {
 public:
  EventBuilder(std::string_view name, const Attributes& attributes);

  /// The argument as it is, "" when it is missing.
  EventBuilder&& object(std::string_view key, const Object& argument) &&;

  /// The argument as it is; a missing one removes the key, also one of the host.
  EventBuilder&& asIs(std::string_view key, const Object& argument) &&;

  /// The decimal text of a number, "" when it is missing. A text stands for the number it spells and is kept.
  EventBuilder&& number(std::string_view key, const Object& argument) &&;

  /// The whole integer.
  EventBuilder&& decimal(std::string_view key, std::int64_t argument) &&;

  /// The low 32 bits with their sign. Kept: a longer number loses its upper bits, as in a plain int.
  EventBuilder&& integer(std::string_view key, std::int64_t argument) &&;

  /// Whole seconds, truncated toward zero and clamped to 32 bits; not-a-number is 0.
  EventBuilder&& seconds(std::string_view key, double argument) &&;

  /// "lat" and "long" with six decimals; a missing point removes both, also those of the host.
  EventBuilder&& point(const KesuGeoPoint* argument) &&;

  /// "1" or "0".
  EventBuilder&& flag(std::string_view key, bool argument) &&;

  /// "1" for true; false writes nothing.
  EventBuilder&& whenTrue(std::string_view key, bool argument) &&;

  /// Always this text.
  EventBuilder&& constant(std::string_view key, std::string_view value) &&;

  /// Posts to the table of events.
  void post() &&;

  /// Posts to the table of SMS records.
  void postToTableM() &&;

 private:
  KesuEvent event_;
};

}  // namespace kesu
