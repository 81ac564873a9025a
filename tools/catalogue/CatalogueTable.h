#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace kesu::catalogue {

/// What an operation takes at one place, as its C++ signature says.
enum class ArgumentKind {
  Object,      ///< Any value, or none.
  Flag,        ///< bool
  Integer,     ///< std::int64_t
  Seconds,     ///< double
  Point,       ///< const KesuGeoPoint*
  Attributes,  ///< The host's attributes; always the last.
};

/// One operation of the catalogue, callable by name.
struct Operation {
  std::string_view className;
  std::string_view selector;

  /// One a part of the selector, deduced from the function.
  std::vector<ArgumentKind> kinds;

  /// Calls it on this thread and throws what it throws. Arguments that are missing count as nil, surplus ones are not
  /// looked at. Where a flag is taken, a bool, a number (0 is false) or the text "1", "true" or "yes" says so; where a
  /// point is, a text "latitude,longitude" or an array of two numbers, and everything else is no point.
  std::function<void(const std::vector<Object>& arguments, const Attributes& attributes)> invoke;

  /// How many arguments it takes besides the attributes.
  std::size_t argumentCount() const;

  /// The parts of the selector without their colons: "postLevelStarted", "withAttributes".
  std::vector<std::string_view> labels() const;

  /// The C++ function's name, the first part of the selector.
  std::string_view functionName() const { return selector.substr(0, selector.find(':')); }
};

/// All operations, class by class. Made from pointers to the public functions, so it compiles only as long as each of
/// them is there. Any thread.
const std::vector<Operation>& allOperations();

/// The operation of that class whose selector or function name is `name`. Of several forms of one function: the
/// shortest that takes `argumentCount` arguments. nullptr when there is none.
const Operation* findOperation(std::string_view className, std::string_view name, std::size_t argumentCount);

}  // namespace kesu::catalogue
