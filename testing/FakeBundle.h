#pragma once

#include <kesu/platform/Bundle.h>

#include <map>
#include <string>
#include <vector>

namespace kesu::testing {

/// A bundle that exists in memory only.
class FakeBundle : public Bundle {
 public:
  std::string path() override { return bundlePath; }
  const Dictionary& info() override { return dictionary; }
  bool hasInfo() override { return readable; }
  std::vector<std::string> preferredLocalizations() override { return localizations; }

  std::optional<Data> resource(std::string_view name, std::string_view type, std::size_t limit) override {
    const std::string file = type.empty() ? std::string(name) : std::string(name) + "." + std::string(type);
    const auto found = resources.find(file);
    if (found == resources.end() || found->second.size() > limit) {
      return std::nullopt;
    }
    return Data(found->second.begin(), found->second.end());
  }

  Dictionary dictionary;  ///< The information dictionary.
  bool readable = true;   ///< Whether there is an Info.plist.
  std::string bundlePath = "/app";
  std::map<std::string, std::string> resources;  ///< File name ("config.json") -> content.
  std::vector<std::string> localizations = {"en"};
};

}  // namespace kesu::testing
