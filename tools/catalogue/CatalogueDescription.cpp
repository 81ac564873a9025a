#include "CatalogueDescription.h"

#include <utility>

#include "foundation/Json.h"

namespace kesu::catalogue {
namespace {

Array namesOfKeys(const Operation& operation, std::size_t argument) {
  Array names;
  for (const Key& key : operation.keys) {
    if (key.argument == argument) {
      names.emplace_back(key.key);
    }
  }
  return names;
}

Dictionary keyAsDictionary(const Key& key) {
  Dictionary out = {{"key", key.key}, {"kind", kindName(key.kind)}};
  if (key.argument) {
    out.set("argument", *key.argument);
  } else {
    out.set("value", key.constant);
  }
  return out;
}

Dictionary operationAsDictionary(const Operation& operation) {
  const std::vector<std::string_view> labels = operation.labels();
  Array arguments;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    arguments.emplace_back(Dictionary{
        {"label", labels[i]}, {"kind", kindName(operation.arguments[i])}, {"keys", namesOfKeys(operation, i)}});
  }
  Array keys;
  for (const Key& key : operation.keys) {
    keys.emplace_back(keyAsDictionary(key));
  }
  return {{"class", operation.className},
          {"operation", operation.selector},
          {"function", std::string(operation.className) + "::" + std::string(operation.functionName())},
          {"event", operation.event},
          {"destination", operation.destination},
          {"updatesSceneFlow", operation.updatesSceneFlow()},
          {"arguments", std::move(arguments)},
          {"keys", std::move(keys)}};
}

std::string quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string keyAsText(const Key& key) {
  const bool isConstant = key.kind == KeyKind::Constant;
  return std::string(key.key) +
         (isConstant ? " = " + quoted(key.constant) : " (" + std::string(kindName(key.kind)) + ")");
}

std::string effectAsText(const Operation& operation) {
  if (operation.updatesSceneFlow()) {
    return "no event; appends to the scene flow";
  }
  std::string text = std::string(operation.destination) + " " + quoted(operation.event);
  for (const Key& key : operation.keys) {
    text += (&key == &operation.keys.front() ? ": " : ", ") + keyAsText(key);
  }
  return text;
}

}  // namespace

std::map<std::string, std::set<std::string>> keysOfEvents() {
  std::map<std::string, std::set<std::string>> events;
  for (const Operation& operation : allOperations()) {
    if (!operation.updatesSceneFlow()) {
      std::set<std::string>& keys = events[std::string(operation.event)];
      for (const Key& key : operation.keys) {
        keys.emplace(key.key);
      }
    }
  }
  return events;
}

std::string catalogueAsJson() {
  Array operations;
  for (const Operation& operation : allOperations()) {
    operations.emplace_back(operationAsDictionary(operation));
  }
  std::string json;
  writeJson(Dictionary{{"operations", std::move(operations)}}, json);
  return json;
}

std::string catalogueAsText() {
  std::string text;
  std::string_view className;
  for (const Operation& operation : allOperations()) {
    if (operation.className != className) {
      text += className.empty() ? "" : "\n";
      className = operation.className;
      text += std::string(className) + "\n";
    }
    text += "  " + std::string(operation.selector) + "\n    " + effectAsText(operation) + "\n";
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
