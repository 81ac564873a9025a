#include "platform/linux/LinuxBundle.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/ServiceLog.h"
#include "platform/linux/base/Environment.h"
#include "platform/linux/base/RegularFile.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

// A file of settings has a few kilobytes; a wrong one must not cost memory.
constexpr std::size_t kInfoLimitBytes = std::size_t{1024} * 1024;

constexpr std::pair<const char*, const char*> kOverlay[] = {{"KESU_OVERRIDE_SERVER", "KesuOverrideServer"},
                                                            {"KESU_MESSAGING_HOST", "KesuMessagingHost"},
                                                            {"KESU_REACHABILITY_HOST", "KesuReachabilityHost"},
                                                            {"KESU_DEVMODE", "devmode"},
                                                            {"KESU_LOG_LEVEL", "KesuLogLevel"}};

std::string directoryPath(const std::string& wanted) {
  std::error_code error;
  const fs::path path = wanted.empty() ? fs::path(executablePath()).parent_path() : fs::absolute(wanted, error);
  std::string text = path.lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') {
    text.pop_back();
  }
  return text;
}

// A name that stays below the bundle's directory.
bool isInside(const fs::path& name) {
  return !name.empty() && name.is_relative() && std::ranges::find(name, "..") == name.end();
}

// "zh_Hant-TW" as "zh-Hant-TW": both spellings name one language.
std::string withHyphens(std::string language) {
  std::ranges::replace(language, '_', '-');
  return language;
}

std::vector<std::string> localizationsIn(const std::string& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (entry->path().extension() == ".lproj" && entry->is_directory(ignored)) {
      names.push_back(entry->path().stem().string());
    }
  }
  std::ranges::sort(names);
  return names;
}

// Appends the bundle's localisation for `language`: the language itself, else with fewer and fewer subtags.
void appendBest(std::vector<std::string>& chosen, const std::vector<std::string>& available, std::string language) {
  for (language = withHyphens(std::move(language)); !language.empty();) {
    const auto found = std::ranges::find(available, language, withHyphens);
    if (found != available.end()) {
      if (std::ranges::find(chosen, *found) == chosen.end()) {
        chosen.push_back(*found);
      }
      return;
    }
    const std::size_t hyphen = language.rfind('-');
    language.resize(hyphen == std::string::npos ? 0 : hyphen);
  }
}

}  // namespace

std::string executablePath() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).string();
}

LinuxBundle::LinuxBundle(LocaleService& locale, const std::string& directory, Dictionary overrides)
    : locale_(locale), path_(directoryPath(directory)), overrides_(std::move(overrides)) {}

const Dictionary& LinuxBundle::info() {
  hasInfo();
  return info_;
}

bool LinuxBundle::hasInfo() {
  bool isBroken = false;
  bool has = false;
  {
    const MutexLock lock(mutex_);
    isBroken = !std::exchange(wasRead_, true) && !read();
    has = hasInfo_;
  }
  if (isBroken) {  // Logged without the lock: the logger may ask this bundle.
    serviceLog(2, "Info.plist is no property list with a dictionary.");
  }
  return has;
}

// False when there is an Info.plist that cannot be used.
bool LinuxBundle::read() {
  const auto bytes = readRegularFile(path_ + "/Info.plist", kInfoLimitBytes);
  std::optional<Value> list = bytes ? parsePropertyList(*bytes) : std::nullopt;
  if (Dictionary* dictionary = list ? list->dictionary() : nullptr) {
    info_ = std::move(*dictionary);
    hasInfo_ = true;
  }
  for (const auto& [variable, key] : kOverlay) {
    if (std::string text = environmentText(variable); !text.empty()) {
      info_.set(key, std::move(text));
    }
  }
  for (const auto& entry : overrides_) {
    const std::string* text = entry.value.text();
    if (text == nullptr || !text->empty()) {
      info_.set(entry.key, entry.value);
    }
  }
  return hasInfo_ || !bytes;
}

std::optional<Data> LinuxBundle::resource(std::string_view name, std::string_view type, std::size_t limit) {
  std::string file(name);
  if (!type.empty()) {
    file.append(".").append(type);
  }
  if (!isInside(file)) {
    return std::nullopt;
  }
  const auto bytes = readRegularFile(path_ + "/" + file, limit);
  return bytes ? std::optional<Data>(Data(bytes->begin(), bytes->end())) : std::nullopt;
}

std::vector<std::string> LinuxBundle::preferredLocalizations() {
  const std::vector<std::string> available = localizationsIn(path_);
  std::vector<std::string> chosen;
  for (const std::string& language : locale_.preferredLanguages()) {
    appendBest(chosen, available, language);
  }
  if (chosen.empty()) {
    chosen.push_back(infoText("CFBundleDevelopmentRegion").value_or("en"));
  }
  return chosen;
}

}  // namespace kesu
