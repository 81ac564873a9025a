#pragma once

#include <kesu/events/KesuGeoPoint.h>

#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include "CatalogueTable.h"

namespace kesu::catalogue {

/// What a caller by name hands over.
struct Call {
  const std::vector<Object>& arguments;
  const Attributes& attributes;

  /// The i-th argument, nil when there are fewer.
  const Object& at(std::size_t i) const;
  bool flagAt(std::size_t i) const;
  std::optional<KesuGeoPoint> pointAt(std::size_t i) const;
};

/// How a parameter type is called and how it is filled from a call.
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
  /// Lives as long as the call it is an argument of.
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

/// One form of a function that has several: choose<const Object&, const Attributes&>(&KesuCommerceRevenue::postRevenue)
template <typename... Parameters>
constexpr auto choose(std::type_identity_t<void (*)(Parameters...)> function) {
  return function;
}

/// Collects the operations of one class after the other.
class TableBuilder {
 public:
  /// What follows belongs to that class.
  void startClass(std::string_view className) { className_ = className; }

  template <typename... Parameters>
  void add(std::string_view selector, void (*function)(Parameters...)) {
    append(selector, {Reader<Parameters>::kKind...},
           [function](const std::vector<Object>& arguments, const Attributes& attributes) {
             callFunction(function, Call{arguments, attributes}, std::index_sequence_for<Parameters...>());
           });
  }

  std::vector<Operation> take() { return std::move(operations_); }

 private:
  void append(std::string_view selector, std::vector<ArgumentKind> kinds, decltype(Operation::invoke) invoke);

  std::string_view className_;
  std::vector<Operation> operations_;
};

}  // namespace kesu::catalogue
