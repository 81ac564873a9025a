#pragma once

#include <kesu/events/KesuGeoPoint.h>

#include <array>
#include <cstdint>
#include <type_traits>

#include "CatalogueTable.h"

/// The vocabulary of Operations.inc: what becomes of each argument of an operation.
namespace kesu::catalogue {

/// The parameter of a constant, which no argument feeds.
struct NoParameter {};

/// One argument (or none) with the keys that it feeds.
template <typename ParameterType, std::size_t kKeyCount>
struct Feed {
  using Parameter = ParameterType;
  std::array<Key, kKeyCount> keys;
};

template <typename Parameter>
constexpr Feed<Parameter, 1> oneKey(std::string_view key, KeyKind kind, std::string_view constant = {}) {
  return {{Key{key, kind, constant}}};
}

/// A feed of its own type: hosts write a number there.
struct NumberFeed : Feed<const Object&, 1> {};

constexpr auto object(std::string_view key) {
  return oneKey<const Object&>(key, KeyKind::Object);
}
constexpr auto asIs(std::string_view key) {
  return oneKey<const Object&>(key, KeyKind::AsIs);
}
constexpr NumberFeed number(std::string_view key) {
  return {oneKey<const Object&>(key, KeyKind::Number)};
}
constexpr auto decimal(std::string_view key) {
  return oneKey<std::int64_t>(key, KeyKind::Decimal);
}
constexpr auto integer(std::string_view key) {
  return oneKey<std::int64_t>(key, KeyKind::Integer);
}
constexpr auto seconds(std::string_view key) {
  return oneKey<double>(key, KeyKind::Seconds);
}
constexpr auto flag(std::string_view key) {
  return oneKey<bool>(key, KeyKind::Flag);
}
constexpr auto whenTrue(std::string_view key) {
  return oneKey<bool>(key, KeyKind::WhenTrue);
}
constexpr auto constant(std::string_view key, std::string_view text) {
  return oneKey<NoParameter>(key, KeyKind::Constant, text);
}
constexpr Feed<const KesuGeoPoint*, 2> point(std::string_view latitude, std::string_view longitude) {
  return {{Key{latitude, KeyKind::Latitude}, Key{longitude, KeyKind::Longitude}}};
}

/// An argument that is not recorded.
constexpr Feed<const Object&, 0> ignored() {
  return {};
}

/// The arguments of a scene operation, which become a part of the scene flow.
constexpr Feed<const Object&, 0> sceneName() {
  return {};
}
constexpr Feed<double, 0> sceneSeconds() {
  return {};
}

/// The host's attributes, the last argument of an operation that posts a record.
constexpr Feed<const Attributes&, 0> attributes() {
  return {};
}

/// The type of the C++ function that takes what the feeds take: FunctionOf<void(), Feeds...>::Type.
template <typename Function, typename... Feeds>
struct FunctionOf {
  using Type = Function;
};

template <typename... Parameters, typename Next, typename... Rest>
struct FunctionOf<void(Parameters...), Next, Rest...>
    : FunctionOf<std::conditional_t<std::is_same_v<typename Next::Parameter, NoParameter>, void(Parameters...),
                                    void(Parameters..., typename Next::Parameter)>,
                 Rest...> {};

}  // namespace kesu::catalogue
