#include "CatalogueTable.h"

#include <kesu/events/Catalogue.h>

#include <array>
#include <type_traits>
#include <utility>

#include "CallByName.h"

namespace kesu::catalogue {
namespace {

/// The host's attributes, the last argument of an operation that posts a record.
constexpr Feed<const Attributes&> attributes() {
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

std::string_view textOf(const Constant& constant) {
  return constant.text;
}
template <typename Feed>
std::string_view textOf(const Feed& /*feed*/) {
  return {};
}

/// Adds what a feed takes and the keys that it feeds.
template <typename Parameter, KeyKind... kKinds>
void add(Operation& operation, const Feed<Parameter, kKinds...>& feed, std::string_view constant) {
  std::optional<std::size_t> place;
  if constexpr (!std::is_same_v<Parameter, NoParameter>) {
    place = operation.arguments.size();
    operation.arguments.push_back(Reader<Parameter>::kKind);
  }
  const std::array<KeyKind, sizeof...(kKinds)> kinds = {kKinds...};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    operation.keys.push_back({feed.keys[i], kinds[i], constant, place});
  }
}

/// Makes an operation of a line of the list. The feeds say which form of an overloaded function is meant, so a line
/// compiles only as long as the public function is there and takes what the line says.
template <typename... Feeds>
Operation operationOf(std::string_view className, std::string_view selector, std::string_view destination,
                      std::string_view event, typename FunctionOf<void(), Feeds...>::Type* function,
                      const Feeds&... feeds) {
  Operation operation{className, selector, destination, event, {}, {}, callableByName(function)};
  (add(operation, feeds, textOf(feeds)), ...);
  return operation;
}

std::vector<Operation> makeOperations() {
  std::vector<Operation> all;
#define KESU_OPERATION(Class, function, rest, destination, event, ...)                                               \
  all.push_back(operationOf(#Class, #function rest, destination, event, &Class::function __VA_OPT__(, ) __VA_ARGS__, \
                            attributes()));
#define KESU_SCENE_OPERATION(Class, function, rest, ...) \
  all.push_back(operationOf(#Class, #function rest, "", "", &Class::function, __VA_ARGS__));
#include "events/catalogue/Operations.inc"
  return all;
}

}  // namespace

std::size_t Operation::argumentCount() const {
  return arguments.size() - (updatesSceneFlow() ? 0 : 1);
}

std::vector<std::string_view> Operation::labels() const {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0, end = 0; (end = selector.find(':', start)) != std::string_view::npos; start = end + 1) {
    parts.push_back(selector.substr(start, end - start));
  }
  return parts;
}

const std::vector<Operation>& allOperations() {
  static const std::vector<Operation> kOperations = makeOperations();
  return kOperations;
}

const Operation* findOperation(std::string_view className, std::string_view name, std::size_t argumentCount) {
  const Operation* best = nullptr;
  for (const Operation& operation : allOperations()) {
    const bool named = operation.selector == name || operation.functionName() == name;
    if (operation.className == className && named && operation.argumentCount() >= argumentCount &&
        (best == nullptr || operation.argumentCount() < best->argumentCount())) {
      best = &operation;
    }
  }
  return best;
}

}  // namespace kesu::catalogue
