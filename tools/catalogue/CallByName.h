#pragma once

#include <kesu/events/KesuGeoPoint.h>

#include <cstdint>
#include <optional>
#include <utility>

#include "CatalogueTable.h"

namespace kesu::catalogue {

/// The arguments of a call by name. Refers to them; a temporary of the call.
struct Call {
  const std::vector<Object>& arguments;
  const Attributes& attributes;

  /// The i-th argument, nil when there are fewer.
  const Object& at(std::size_t i) const;
  bool flagAt(std::size_t i) const;
  std::optional<KesuGeoPoint> pointAt(std::size_t i) const;
};

/// The kind of a parameter type, and how it is read from a call.
template <typename Parameter>
struct Reader;

template <>
struct Reader<const Object&> {
  static constexpr ArgumentKind kKind = ArgumentKind::Object;
  static const Object& read(const Call& call, std::size_t i) { return call.at(i); }
};

template <>
struct Reader<bool> {
  static constexpr ArgumentKind kKind = ArgumentKind::Flag;
  static bool read(const Call& call, std::size_t i) { return call.flagAt(i); }
};

template <>
struct Reader<std::int64_t> {
  static constexpr ArgumentKind kKind = ArgumentKind::Integer;
  static std::int64_t read(const Call& call, std::size_t i) { return call.at(i).value_or(Value()).integerValue(); }
};

template <>
struct Reader<double> {
  static constexpr ArgumentKind kKind = ArgumentKind::Seconds;
  static double read(const Call& call, std::size_t i) { return call.at(i).value_or(Value()).realValue(); }
};

template <>
struct Reader<const KesuGeoPoint*> {
  /// Keeps the point until the call that it is an argument of has returned.
  struct Pointer {
    std::optional<KesuGeoPoint> point;
    operator const KesuGeoPoint*() const { return point ? &*point : nullptr; }
  };
  static constexpr ArgumentKind kKind = ArgumentKind::Point;
  static Pointer read(const Call& call, std::size_t i) { return {call.pointAt(i)}; }
};

template <>
struct Reader<const Attributes&> {
  static constexpr ArgumentKind kKind = ArgumentKind::Attributes;
  static const Attributes& read(const Call& call, std::size_t) { return call.attributes; }
};

template <typename... Parameters, std::size_t... Places>
void callFunction(void (*function)(Parameters...), const Call& call, std::index_sequence<Places...>) {
  function(Reader<Parameters>::read(call, Places)...);
}

/// Makes Operation::invoke of a function.
template <typename... Parameters>
decltype(Operation::invoke) callableByName(void (*function)(Parameters...)) {
  return [function](const std::vector<Object>& arguments, const Attributes& attributes) {
    callFunction(function, Call{arguments, attributes}, std::index_sequence_for<Parameters...>());
  };
}

}  // namespace kesu::catalogue
