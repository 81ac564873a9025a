#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// The main bundle: the directory that holds the application's Info.plist and resources. Callable from any thread.
class KESU_API Bundle {
 public:
  virtual ~Bundle() = default;

  /// Returns the full path of the bundle's directory, without a trailing slash.
  virtual std::string path() = 0;

  /// Returns the information dictionary, overridden by the environment. It is read once; the reference stays valid.
  virtual const Dictionary& info() = 0;

  /// Whether the bundle has an Info.plist that could be read.
  virtual bool hasInfo() = 0;

  /// Reads the resource `name`.`type`. Nothing when it is missing or larger than `limit` bytes.
  virtual std::optional<Data> resource(std::string_view name, std::string_view type, std::size_t limit) = 0;

  /// Returns the localisations of the bundle that fit the user's languages, best first; never empty.
  virtual std::vector<std::string> preferredLocalizations() = 0;

  /// Returns the text under `key` of the information dictionary: numbers as shortest decimal text, flags as "1" and
  /// "0". Nothing when the key is missing or has a value of another kind.
  std::optional<std::string> infoText(std::string_view key);
};

}  // namespace kesu
