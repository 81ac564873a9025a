#include "CallByName.h"

#include <string>

namespace kesu::catalogue {
namespace {

bool isYes(const std::string& text) {
  return text == "1" || text == "true" || text == "yes" || text == "YES";
}

KesuGeoPoint pointOf(const Value& latitude, const Value& longitude) {
  return {static_cast<float>(latitude.realValue()), static_cast<float>(longitude.realValue())};
}

std::optional<KesuGeoPoint> parsePoint(const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) {
    return std::nullopt;
  }
  return pointOf(text.substr(0, comma), text.substr(comma + 1));
}

}  // namespace

const Object& Call::at(std::size_t i) const {
  static const Object kMissing;
  return i < arguments.size() ? arguments[i] : kMissing;
}

bool Call::flagAt(std::size_t i) const {
  const Object& argument = at(i);
  if (!argument) {
    return false;
  }
  return argument->text() != nullptr ? isYes(*argument->text()) : argument->realValue() != 0.0;
}

std::optional<KesuGeoPoint> Call::pointAt(std::size_t i) const {
  const Object& argument = at(i);
  if (!argument) {
    return std::nullopt;
  }
  if (argument->text() != nullptr) {
    return parsePoint(*argument->text());
  }
  const Array* pair = argument->array();
  return pair != nullptr && pair->size() == 2 ? std::optional(pointOf(pair->front(), pair->back())) : std::nullopt;
}

}  // namespace kesu::catalogue
