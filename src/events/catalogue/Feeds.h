#pragma once

#include <kesu/events/KesuGeoPoint.h>
#include <kesu/foundation/Value.h>

#include <array>
#include <cstdint>
#include <string_view>

/// The vocabulary of Operations.inc: what becomes of each argument of an operation.
namespace kesu::catalogue {

/// How an operation makes the value of a key. <kesu/events/Catalogue.h> defines each kind.
enum class KeyKind {
  Object,     ///< The argument as it is; "" when it is missing.
  AsIs,       ///< The argument as it is; a missing one removes the key.
  Number,     ///< Decimal text of a number object.
  Decimal,    ///< Decimal text of a whole integer.
  Integer,    ///< Decimal text of an integer's low 32 bits.
  Seconds,    ///< Whole seconds.
  Latitude,   ///< Degrees, six decimals.
  Longitude,  ///< Degrees, six decimals.
  Flag,       ///< "1" or "0".
  WhenTrue,   ///< "1" or nothing.
  Constant,   ///< Always the same text.
};

/// The parameter of a constant, which no argument feeds.
struct NoParameter {};

/// One argument with the keys that it feeds, and their kinds.
template <typename ParameterType, KeyKind... kKinds>
struct Feed {
  using Parameter = ParameterType;
  std::array<std::string_view, sizeof...(kKinds)> keys;
};

struct Constant : Feed<NoParameter, KeyKind::Constant> {
  std::string_view text;
};

constexpr Feed<const Object&, KeyKind::Object> object(std::string_view key) {
  return {{key}};
}
constexpr Feed<const Object&, KeyKind::AsIs> asIs(std::string_view key) {
  return {{key}};
}
constexpr Feed<const Object&, KeyKind::Number> number(std::string_view key) {
  return {{key}};
}
constexpr Feed<std::int64_t, KeyKind::Decimal> decimal(std::string_view key) {
  return {{key}};
}
constexpr Feed<std::int64_t, KeyKind::Integer> integer(std::string_view key) {
  return {{key}};
}
constexpr Feed<double, KeyKind::Seconds> seconds(std::string_view key) {
  return {{key}};
}
constexpr Feed<bool, KeyKind::Flag> flag(std::string_view key) {
  return {{key}};
}
constexpr Feed<bool, KeyKind::WhenTrue> whenTrue(std::string_view key) {
  return {{key}};
}
constexpr Feed<const KesuGeoPoint*, KeyKind::Latitude, KeyKind::Longitude> point(std::string_view latitude,
                                                                                 std::string_view longitude) {
  return {{latitude, longitude}};
}
constexpr Constant constant(std::string_view key, std::string_view text) {
  return {{{key}}, text};
}

/// An argument that is not recorded.
constexpr Feed<const Object&> ignored() {
  return {};
}

/// The arguments of a scene operation, which become a part of the scene flow.
constexpr Feed<const Object&> sceneName() {
  return {};
}
constexpr Feed<double> sceneSeconds() {
  return {};
}

}  // namespace kesu::catalogue
