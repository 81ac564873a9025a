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

  /// Full path of the bundle's directory, without a trailing slash.
  virtual std::string path() = 0;

  /// The information dictionary, with the environment laid over it. Read once; the reference stays valid.
  virtual const Dictionary& info() = 0;

  /// Whether the bundle has an Info.plist that could be read.
  virtual bool hasInfo() = 0;

  /// The bytes of the resource `name`.`type`, at most `limit`; nothing when it is missing or larger.
  virtual std::optional<Data> resource(std::string_view name, std::string_view type, std::size_t limit) = 0;

  /// The localisations of the bundle that fit the user's languages, best first; never empty.
  virtual std::vector<std::string> preferredLocalizations() = 0;

  /// The text under `key` of the information dictionary: numbers as shortest decimal text, flags as "1" and "0";
  /// nothing when the key is missing or holds any other kind.
  std::optional<std::string> infoText(std::string_view key);
};

}  // namespace kesu
