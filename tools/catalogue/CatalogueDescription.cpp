#include "CatalogueDescription.h"

#include <utility>

#include "foundation/Json.h"
#include "foundation/NumberText.h"
#include "records/RecordKeys.h"
#include "testing/RecordingPoster.h"

namespace kesu::catalogue {
namespace {

constexpr double kProbeLatitude = 12.5;
constexpr double kProbeLongitude = -34.25;
constexpr double kProbeReal = 4.5;
constexpr std::int64_t kProbeInteger = (std::int64_t{1} << 32) + 1000;  // Its low 32 bits show another number.
constexpr double kProbeSeconds = 2000.75;

/// Calls one operation in variations and reads off the records what each argument does.
class Probe {
 public:
  explicit Probe(const Operation& operation) : operation_(operation) {
    for (std::size_t i = 0; i < operation.argumentCount(); ++i) {
      plain_.push_back(plainArgument(operation.kinds[i], i));
    }
  }

  OperationDescription describe() const {
    OperationDescription description;
    description.operation = &operation_;
    const Outcome outcome = outcomeOf(plain_);
    description.updatesSceneFlow = outcome.updatesSceneFlow;
    description.destination = outcome.destination;
    for (const Dictionary::Entry& entry : outcome.record) {
      if (entry.key == k_KesuEventName) {
        description.event = entry.value.text() != nullptr ? *entry.value.text() : "";
      } else {
        description.keys.push_back(describeKey(entry));
      }
    }
    return description;
  }

 private:
  /// What one call handed to the manager.
  struct Outcome {
    std::string destination;  // Empty when no record was posted.
    Dictionary record;
    bool updatesSceneFlow = false;
  };

  Outcome outcomeOf(const std::vector<Object>& arguments) const {
    testing::RecordingPoster poster;
    operation_.invoke(arguments, {});
    if (poster.posted.empty()) {
      return {"", {}, !poster.scenes.empty()};
    }
    auto& [destination, record] = poster.posted.front();
    return {std::string(1, destination), std::move(record), false};
  }

  static Value plainArgument(ArgumentKind kind, std::size_t i) {
    const auto place = static_cast<std::int64_t>(i);
    switch (kind) {
      case ArgumentKind::Flag:
        return true;
      case ArgumentKind::Integer:
        return kProbeInteger + place;
      case ArgumentKind::Seconds:
        return kProbeSeconds + static_cast<double>(place);
      case ArgumentKind::Point:
        return Array{kProbeLatitude, kProbeLongitude};
      case ArgumentKind::Object:
      case ArgumentKind::Attributes:
        break;
    }
    return "argument " + decimal(place);
  }

  /// The record of a call with another argument at one place.
  Dictionary recordWith(std::size_t place, const Object& argument) const {
    std::vector<Object> arguments = plain_;
    arguments[place] = argument;
    return outcomeOf(arguments).record;
  }

  KeyDescription describeKey(const Dictionary::Entry& entry) const {
    for (std::size_t i = 0; i < plain_.size(); ++i) {
      const Dictionary without = recordWith(i, nil);
      const Value* left = without.find(entry.key);
      if (left == nullptr || *left != entry.value) {
        return {entry.key, kindOf(entry, i, left != nullptr), i, ""};
      }
    }
    return {entry.key, KeyKind::Constant, std::nullopt, entry.value.text() != nullptr ? *entry.value.text() : ""};
  }

  /// The kind of a key that the argument at `place` feeds. `stays`: whether it is there without the argument too.
  KeyKind kindOf(const Dictionary::Entry& entry, std::size_t place, bool stays) const {
    switch (operation_.kinds[place]) {
      case ArgumentKind::Flag:
        return stays ? KeyKind::Flag : KeyKind::WhenTrue;
      case ArgumentKind::Integer:
        return entry.value == Value(decimal(*plain_[place]->integer())) ? KeyKind::Decimal : KeyKind::Integer;
      case ArgumentKind::Seconds:
        return KeyKind::Seconds;
      case ArgumentKind::Point:
        return entry.value.realValue() == kProbeLatitude ? KeyKind::Latitude : KeyKind::Longitude;
      case ArgumentKind::Object:
      case ArgumentKind::Attributes:
        break;
    }
    if (!stays) {
      return KeyKind::AsIs;
    }
    const Dictionary withReal = recordWith(place, kProbeReal);
    const Value* stored = withReal.find(entry.key);
    return stored != nullptr && stored->real() != nullptr ? KeyKind::Object : KeyKind::Number;
  }

  const Operation& operation_;
  std::vector<Object> plain_;
};

Array namesOfKeys(const OperationDescription& description, std::size_t argument) {
  Array names;
  for (const KeyDescription& key : description.keys) {
    if (key.argument == argument) {
      names.emplace_back(key.key);
    }
  }
  return names;
}

Dictionary keyAsDictionary(const KeyDescription& key) {
  Dictionary out = {{"key", key.key}, {"kind", kindName(key.kind)}};
  if (key.argument) {
    out.set("argument", *key.argument);
  } else {
    out.set("value", key.constant);
  }
  return out;
}

Dictionary operationAsDictionary(const OperationDescription& description) {
  const Operation& operation = *description.operation;
  const std::vector<std::string_view> labels = operation.labels();
  Array arguments;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    arguments.emplace_back(Dictionary{
        {"label", labels[i]}, {"kind", kindName(operation.kinds[i])}, {"keys", namesOfKeys(description, i)}});
  }
  Array keys;
  for (const KeyDescription& key : description.keys) {
    keys.emplace_back(keyAsDictionary(key));
  }
  return {{"class", operation.className},
          {"operation", operation.selector},
          {"function", std::string(operation.className) + "::" + std::string(operation.functionName())},
          {"event", description.event},
          {"destination", description.destination},
          {"updatesSceneFlow", description.updatesSceneFlow},
          {"arguments", std::move(arguments)},
          {"keys", std::move(keys)}};
}

std::string keyAsText(const KeyDescription& key) {
  if (key.kind == KeyKind::Constant) {
    return key.key + " = \"" + key.constant + "\"";
  }
  return key.key + " (" + std::string(kindName(key.kind)) + ")";
}

std::string effectAsText(const OperationDescription& description) {
  if (description.updatesSceneFlow) {
    return "no event; appends to the scene flow";
  }
  std::string text = description.destination + " \"" + description.event + "\"";
  for (const KeyDescription& key : description.keys) {
    text += (&key == &description.keys.front() ? ": " : ", ") + keyAsText(key);
  }
  return text;
}

}  // namespace

std::vector<OperationDescription> describeCatalogue() {
  std::vector<OperationDescription> descriptions;
  for (const Operation& operation : allOperations()) {
    descriptions.push_back(Probe(operation).describe());
  }
  return descriptions;
}

std::map<std::string, std::set<std::string>> keysOfEvents(const std::vector<OperationDescription>& descriptions) {
  std::map<std::string, std::set<std::string>> events;
  for (const OperationDescription& description : descriptions) {
    if (!description.event.empty()) {
      std::set<std::string>& keys = events[description.event];
      for (const KeyDescription& key : description.keys) {
        keys.insert(key.key);
      }
    }
  }
  return events;
}

std::string catalogueAsJson(const std::vector<OperationDescription>& descriptions) {
  Array operations;
  for (const OperationDescription& description : descriptions) {
    operations.emplace_back(operationAsDictionary(description));
  }
  std::string json;
  writeJson(Dictionary{{"operations", std::move(operations)}}, json);
  return json;
}

std::string catalogueAsText(const std::vector<OperationDescription>& descriptions) {
  std::string text;
  std::string_view className;
  for (const OperationDescription& description : descriptions) {
    if (description.operation->className != className) {
      text += className.empty() ? "" : "\n";
      className = description.operation->className;
      text += std::string(className) + "\n";
    }
    text += "  " + std::string(description.operation->selector) + "\n    " + effectAsText(description) + "\n";
  }
  return text;
}

std::string_view kindName(KeyKind kind) {
  switch (kind) {
    case KeyKind::Object:
      return "object";
    case KeyKind::AsIs:
      return "as is";
    case KeyKind::Number:
      return "number";
    case KeyKind::Decimal:
      return "decimal";
    case KeyKind::Integer:
      return "integer";
    case KeyKind::Seconds:
      return "seconds";
    case KeyKind::Latitude:
      return "latitude";
    case KeyKind::Longitude:
      return "longitude";
    case KeyKind::Flag:
      return "flag";
    case KeyKind::WhenTrue:
      return "\"1\" when true";
    case KeyKind::Constant:
      return "constant";
  }
  return "";
}

std::string_view kindName(ArgumentKind kind) {
  switch (kind) {
    case ArgumentKind::Object:
      return "object";
    case ArgumentKind::Flag:
      return "flag";
    case ArgumentKind::Integer:
      return "integer";
    case ArgumentKind::Seconds:
      return "seconds";
    case ArgumentKind::Point:
      return "point";
    case ArgumentKind::Attributes:
      return "attributes";
  }
  return "";
}

}  // namespace kesu::catalogue
