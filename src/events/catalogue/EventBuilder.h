#pragma once

#include <kesu/events/KesuEvent.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <string_view>
#include <utility>

#include "events/catalogue/Feeds.h"

namespace kesu::catalogue {

/// One event of the catalogue on its way to be posted, written as one expression:
///
///   EventBuilder("GamingLevelEnd", attributes).write(object("level"), level).write(flag("won"), won).postTo("e");
///
/// It starts from a copy of the host's attributes; every write() replaces the keys of one feed.
/// <kesu/events/Catalogue.h> defines each kind of key. A temporary of one thread.
class EventBuilder {
 public:
  EventBuilder(std::string_view name, const Attributes& attributes);

  EventBuilder&& write(Feed<const Object&, KeyKind::Object> feed, const Object& argument) &&;
  EventBuilder&& write(Feed<const Object&, KeyKind::AsIs> feed, const Object& argument) &&;
  EventBuilder&& write(Feed<const Object&, KeyKind::Number> feed, const Object& argument) &&;
  EventBuilder&& write(Feed<std::int64_t, KeyKind::Decimal> feed, std::int64_t argument) &&;
  EventBuilder&& write(Feed<std::int64_t, KeyKind::Integer> feed, std::int64_t argument) &&;
  EventBuilder&& write(Feed<double, KeyKind::Seconds> feed, double argument) &&;
  EventBuilder&& write(const Feed<const KesuGeoPoint*, KeyKind::Latitude, KeyKind::Longitude>& feed,
                       const KesuGeoPoint* argument) &&;
  EventBuilder&& write(Feed<bool, KeyKind::Flag> feed, bool argument) &&;
  EventBuilder&& write(Feed<bool, KeyKind::WhenTrue> feed, bool argument) &&;
  EventBuilder&& write(const Constant& constant, int /*place*/) &&;
  EventBuilder&& write(Feed<const Object&> /*ignored*/, const Object& /*argument*/) && { return std::move(*this); }

  /// Posts to the table of that letter: "m" for SMS records, else events. Throws what KesuEvent::post() throws.
  void postTo(std::string_view destination) &&;

 private:
  EventBuilder&& set(std::string_view key, Value value);

  KesuEvent event_;
};

}  // namespace kesu::catalogue
