#include "events/catalogue/EventBuilder.h"

#include <cstdint>
#include <string>
#include <utility>

#include "foundation/NumberText.h"
#include "records/Destinations.h"

namespace kesu::catalogue {
namespace {

constexpr int kDecimalsOfDegrees = 6;  // About 0.1 m, finer than a float of degrees.

std::string numberText(const Value& number) {
  switch (number.kind()) {
    case ValueKind::Bool:
    case ValueKind::Integer:
      return kesu::decimal(number.integerValue());
    case ValueKind::Real:
      return shortestReal(*number.real());
    case ValueKind::Text:
      return *number.text();
    case ValueKind::Null:
    case ValueKind::Data:
    case ValueKind::Date:
    case ValueKind::Array:
    case ValueKind::Dictionary:
      break;
  }
  return {};
}

// Kept: a format for plain ints prints the low 32 bits of a longer number, so that dates past 2038 wrap. A collector
// can undo that, but not a clamped number.
std::string lowBitsText(std::int64_t number) {
  return kesu::decimal(static_cast<std::int32_t>(number));
}

}  // namespace

EventBuilder::EventBuilder(std::string_view name, const Attributes& attributes) {
  event_.name = Value(name);
  event_.attributes = attributes;
}

EventBuilder&& EventBuilder::set(std::string_view key, Value value) {
  event_.attributes.set(key, std::move(value));
  return std::move(*this);
}

EventBuilder&& EventBuilder::write(Feed<const Object&, KeyKind::Object> feed, const Object& argument) && {
  return set(feed.keys[0], argument ? *argument : Value(""));
}

EventBuilder&& EventBuilder::write(Feed<const Object&, KeyKind::AsIs> feed, const Object& argument) && {
  if (argument) {
    return set(feed.keys[0], *argument);
  }
  event_.attributes.remove(feed.keys[0]);
  return std::move(*this);
}

EventBuilder&& EventBuilder::write(Feed<const Object&, KeyKind::Number> feed, const Object& argument) && {
  return set(feed.keys[0], argument ? numberText(*argument) : std::string());
}

EventBuilder&& EventBuilder::write(Feed<std::int64_t, KeyKind::Decimal> feed, std::int64_t argument) && {
  return set(feed.keys[0], kesu::decimal(argument));
}

EventBuilder&& EventBuilder::write(Feed<std::int64_t, KeyKind::Integer> feed, std::int64_t argument) && {
  return set(feed.keys[0], lowBitsText(argument));
}

EventBuilder&& EventBuilder::write(Feed<double, KeyKind::Seconds> feed, double argument) && {
  return set(feed.keys[0], lowBitsText(Value(argument).integerValue()));
}

EventBuilder&& EventBuilder::write(const Feed<const KesuGeoPoint*, KeyKind::Latitude, KeyKind::Longitude>& feed,
                                   const KesuGeoPoint* argument) && {
  const auto degrees = [](double angle) { return Object(Value(fixed(angle, kDecimalsOfDegrees))); };
  return std::move(*this)
      .write(asIs(feed.keys[0]), argument != nullptr ? degrees(argument->latitude) : Object(nil))
      .write(asIs(feed.keys[1]), argument != nullptr ? degrees(argument->longitude) : Object(nil));
}

EventBuilder&& EventBuilder::write(Feed<bool, KeyKind::Flag> feed, bool argument) && {
  return set(feed.keys[0], argument ? "1" : "0");
}

EventBuilder&& EventBuilder::write(Feed<bool, KeyKind::WhenTrue> feed, bool argument) && {
  return argument ? set(feed.keys[0], "1") : std::move(*this);
}

EventBuilder&& EventBuilder::write(const Constant& constant, int /*place*/) && {
  return set(constant.keys[0], constant.text);
}

void EventBuilder::postTo(std::string_view destination) && {
  if (destination == k_TableSMS) {
    event_.postEventForTableM();
  } else {
    event_.post();
  }
}

}  // namespace kesu::catalogue
