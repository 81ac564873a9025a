#include "events/catalogue/EventBuilder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "foundation/NumberText.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

constexpr int kDecimalsOfDegrees = 6;  // About 0.1 m, finer than a float of degrees.

std::string numberText(const Value& number) {
  switch (number.kind()) {
    case ValueKind::Bool:
    case ValueKind::Integer:
      return decimal(number.integerValue());
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

std::string wholeSeconds(double seconds) {
  // A double outside the range of the integer that it is cast to would be undefined.
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(seconds)) {
    return "0";
  }
  return decimal(static_cast<std::int64_t>(std::clamp<double>(seconds, Limits::min(), Limits::max())));
}

}  // namespace

EventBuilder::EventBuilder(std::string_view name, const Attributes& attributes) {
  event_.name = Value(name);
  event_.attributes = attributes;
}

EventBuilder&& EventBuilder::object(std::string_view key, const Object& argument) && {
  event_.attributes.set(key, argument ? *argument : Value(""));
  return std::move(*this);
}

EventBuilder&& EventBuilder::asIs(std::string_view key, const Object& argument) && {
  if (argument) {
    event_.attributes.set(key, *argument);
  } else {
    event_.attributes.remove(key);
  }
  return std::move(*this);
}

EventBuilder&& EventBuilder::number(std::string_view key, const Object& argument) && {
  event_.attributes.set(key, argument ? numberText(*argument) : std::string());
  return std::move(*this);
}

EventBuilder&& EventBuilder::decimal(std::string_view key, std::int64_t argument) && {
  event_.attributes.set(key, kesu::decimal(argument));
  return std::move(*this);
}

EventBuilder&& EventBuilder::integer(std::string_view key, std::int64_t argument) && {
  return std::move(*this).decimal(key, static_cast<std::int32_t>(argument));
}

EventBuilder&& EventBuilder::seconds(std::string_view key, double argument) && {
  event_.attributes.set(key, wholeSeconds(argument));
  return std::move(*this);
}

EventBuilder&& EventBuilder::point(const KesuGeoPoint* argument) && {
  const auto degrees = [](double angle) { return Object(Value(fixed(angle, kDecimalsOfDegrees))); };
  return std::move(*this)
      .asIs(kLatitudeKey, argument != nullptr ? degrees(argument->latitude) : Object(nil))
      .asIs(kLongitudeKey, argument != nullptr ? degrees(argument->longitude) : Object(nil));
}

EventBuilder&& EventBuilder::flag(std::string_view key, bool argument) && {
  return std::move(*this).constant(key, argument ? "1" : "0");
}

EventBuilder&& EventBuilder::whenTrue(std::string_view key, bool argument) && {
  if (argument) {
    event_.attributes.set(key, "1");
  }
  return std::move(*this);
}

EventBuilder&& EventBuilder::constant(std::string_view key, std::string_view value) && {
  event_.attributes.set(key, value);
  return std::move(*this);
}

void EventBuilder::post() && {
  event_.post();
}

void EventBuilder::postToTableM() && {
  event_.postEventForTableM();
}

}  // namespace kesu
