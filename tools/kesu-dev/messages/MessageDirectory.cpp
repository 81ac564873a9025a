#include "tools/kesu-dev/messages/MessageDirectory.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "services/MessageKeys.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/messages/ImageSize.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kTagsFile = "tags.json";
constexpr std::string_view kOriginMark = "{service}";
constexpr std::string_view kImageFileKey = "imageFile";  // In our files only, never sent.
constexpr std::string_view kDateKey = "date";
constexpr std::uintmax_t kFileLimitBytes = std::uintmax_t{16} * 1024 * 1024;

// Returns nothing when there is no such regular file (a pipe would never end), or it is too large.
std::optional<std::string> contentOf(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > kFileLimitBytes) {
    return std::nullopt;
  }
  std::ifstream file(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), {}};
  return file.is_open() && !file.bad() ? std::optional(std::move(content)) : std::nullopt;
}

std::vector<std::string> messageFiles(const std::string& directory, std::vector<std::string>& problems) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.ends_with(".json") && !name.starts_with('.') && name != kTagsFile) {
      names.push_back(name);
    }
  }
  if (error) {
    problems.push_back(directory + ": " + error.message());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Only what needs no escape in a URL and cannot lead out of the directory.
bool isPlainName(std::string_view name) {
  const auto isPlain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
           c == '_';
  };
  return !name.empty() && !name.starts_with('.') && std::all_of(name.begin(), name.end(), isPlain);
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// Replaces the mark in every text of a value. Recursion is bounded by the depth that parseJson() lets through.
Value withOrigin(const Value& value, const std::string& origin) {
  if (value.text() != nullptr) {
    return replaced(*value.text(), kOriginMark, origin);
  }
  if (value.array() != nullptr) {
    Array copy;
    for (const Value& element : *value.array()) {
      copy.push_back(withOrigin(element, origin));
    }
    return copy;
  }
  if (value.dictionary() != nullptr) {
    Dictionary copy;
    for (const auto& entry : *value.dictionary()) {
      copy.set(entry.key, withOrigin(entry.value, origin));
    }
    return copy;
  }
  return value;
}

Dictionary headerOf(const Dictionary& full, const Dictionary& payload) {
  Dictionary header{{std::string(kMessageIdKey), textIn(full, kMessageIdKey)},
                    {std::string(kCampaignIdKey), textIn(full, kCampaignIdKey)}};
  for (const auto& [from, key] : {std::pair(&payload, kMessageTitleKey), std::pair(&full, kDateKey)}) {
    if (const Value* value = from->find(key)) {
      header.set(key, *value);
    }
  }
  return header;
}

std::string identityFault(const Dictionary& full) {
  if (textIn(full, kMessageIdKey).empty()) {
    return "\"mid\" must be a text that is not empty";
  }
  if (full.findText(kCampaignIdKey) == nullptr) {
    return "\"cid\" must be a text";
  }
  const Value* payload = full.find(kPayloadKey);
  return payload == nullptr || payload->dictionary() == nullptr ? "\"payload\" must be an object" : "";
}

}  // namespace

MessageDirectory::MessageDirectory(std::string directory, std::string origin)
    : directory_(std::move(directory)), origin_(std::move(origin)) {}

MessageReading MessageDirectory::read() const {
  MessageReading reading;
  reading.tags = readTags(reading.problems);
  if (directory_.empty()) {
    return reading;
  }
  for (const std::string& name : messageFiles(directory_, reading.problems)) {
    std::string problem;
    std::optional<Message> read = message(name, problem);
    const auto twin = std::find_if(reading.messages.begin(), reading.messages.end(), [&](const Message& other) {
      return read && other.mid == read->mid && other.cid == read->cid;
    });
    if (twin != reading.messages.end()) {
      problem = "has the \"mid\" and \"cid\" of " + twin->file;
    }
    if (problem.empty()) {
      reading.messages.push_back(std::move(*read));
    } else {
      reading.problems.push_back(name + ": " + problem);
    }
  }
  return reading;
}

std::optional<std::string> MessageDirectory::image(std::string_view name) const {
  if (directory_.empty() || !isPlainName(name) || imageType(name).empty()) {
    return std::nullopt;
  }
  return contentOf(std::filesystem::path(directory_) / name);
}

std::optional<Message> MessageDirectory::message(const std::string& fileName, std::string& problem) const {
  std::optional<Dictionary> full = readObject(fileName, problem);
  problem = full ? identityFault(*full) : problem;
  if (!problem.empty()) {
    return std::nullopt;
  }
  Message message;
  message.file = fileName;
  message.mid = textIn(*full, kMessageIdKey);
  message.cid = textIn(*full, kCampaignIdKey);
  Dictionary& payload = *full->find(kPayloadKey)->dictionary();
  message.title = textIn(payload, kMessageTitleKey);
  const Value* data = payload.find(kTemplateDataKey);
  if (data != nullptr && data->dictionary() != nullptr) {
    std::optional<std::string> wire = wireTemplate(*data->dictionary(), message, problem);
    if (!wire) {
      return std::nullopt;
    }
    payload.set(kTemplateDataKey, std::move(*wire));
  }
  message.header = headerOf(*full, payload);
  message.full = std::move(*full);
  return message;
}

std::string MessageDirectory::readTags(std::vector<std::string>& problems) const {
  const std::string none = R"({"tags":[]})";
  std::error_code error;
  if (directory_.empty() || !std::filesystem::exists(std::filesystem::path(directory_) / kTagsFile, error)) {
    return none;
  }
  std::string problem;
  const std::optional<Dictionary> file = readObject(std::string(kTagsFile), problem);
  const Value* tags = file ? file->find(kTagsKey) : nullptr;
  if (tags != nullptr && tags->text() != nullptr) {
    return *tags->text();
  }
  if (tags != nullptr && tags->array() != nullptr) {
    return jsonText({{std::string(kTagsKey), *tags}});
  }
  problems.push_back(std::string(kTagsFile) + ": " + (file ? "\"tags\" must be a list of texts" : problem));
  return none;
}

std::optional<Dictionary> MessageDirectory::readObject(const std::string& fileName, std::string& problem) const {
  const std::optional<std::string> content = contentOf(std::filesystem::path(directory_) / fileName);
  if (!content) {
    problem = "cannot be read";
    return std::nullopt;
  }
  return parseObject(*content, problem);
}

std::optional<std::string> MessageDirectory::wireTemplate(const Dictionary& natural, Message& message,
                                                          std::string& problem) const {
  Dictionary data;
  for (const auto& entry : natural) {
    if (entry.key == kImageFileKey) {
      fillImage(natural, data, message, problem);
    } else {
      data.set(entry.key, withOrigin(entry.value, origin_));
    }
  }
  return problem.empty() ? std::optional(jsonText(data)) : std::nullopt;
}

void MessageDirectory::fillImage(const Dictionary& natural, Dictionary& data, Message& message,
                                 std::string& problem) const {
  message.image = textIn(natural, kImageFileKey);
  const std::optional<std::string> bytes = image(message.image);
  const std::optional<ImageSize> size = bytes ? imageSize(*bytes) : std::nullopt;
  if (!size) {
    problem = "\"imageFile\" " + printable(message.image) +
              (bytes ? " is no PNG, JPEG, GIF or WebP picture" : " is no picture beside this file");
    return;
  }
  data.set(kImageUrlKey, origin_ + kImagePath + message.image);
  for (const auto& [key, number] : {std::pair(kImageWidthKey, size->width), std::pair(kImageHeightKey, size->height)}) {
    if (!natural.contains(key)) {
      data.set(key, number);
    }
  }
}

}  // namespace kesu::dev
