#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "events/catalogue/Feeds.h"

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

/// A key that an operation writes into its record.
struct Key {
  std::string_view key;
  KeyKind kind = KeyKind::Constant;
  std::string_view constant = {};            ///< The text of a constant.
  std::optional<std::size_t> argument = {};  ///< The place of the argument that feeds it; none for a constant.
};

/// One operation of the catalogue: what it takes, what it posts, and a way to call it by name.
struct Operation {
  std::string_view className;
  std::string_view selector;
  std::string_view destination;         ///< The letter of the table of records; "" for an operation that posts none.
  std::string_view event;               ///< The name under "~e"; "" likewise.
  std::vector<ArgumentKind> arguments;  ///< One per part of the selector.
  std::vector<Key> keys;                ///< In the order of the record.

  /// Calls the operation on this thread and throws what it throws. Missing arguments count as nil, surplus ones are
  /// ignored. A bool, a number (0 is false) or the text "1", "true" or "yes" is a flag; a text "latitude,longitude" or
  /// an array of two numbers is a point; everything else is false and no point.
  std::function<void(const std::vector<Object>& arguments, const Attributes& attributes)> invoke;

  /// The number of arguments besides the attributes.
  std::size_t argumentCount() const;

  /// Whether it appends to the scene flow instead of posting a record.
  bool updatesSceneFlow() const { return event.empty(); }

  /// The parts of the selector without their colons: "postLevelStarted", "withAttributes".
  std::vector<std::string_view> labels() const;

  /// The C++ function's name, the first part of the selector.
  std::string_view functionName() const { return selector.substr(0, selector.find(':')); }
};

/// All operations, class by class: the lines of Operations.inc. Any thread.
const std::vector<Operation>& allOperations();

/// Returns the operation of that class whose selector or function name is `name`. Of several forms of one function: the
/// shortest that takes `argumentCount` arguments. nullptr when there is none.
const Operation* findOperation(std::string_view className, std::string_view name, std::size_t argumentCount);

}  // namespace kesu::catalogue
