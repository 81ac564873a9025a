#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// One message of the directory, as it is sent.
struct Message {
  std::string file;  // Name of its file.
  std::string mid;
  std::string cid;
  std::string title;
  std::string image;  // Name of its picture's file beside it; empty = none.
  Dictionary header;  // "mid", "cid", "title", "date" as far as they are there: an entry of a list of headers.
  Dictionary full;    // The whole message; "templateData" is a text of JSON.
};

/// The directory at one moment.
struct MessageReading {
  std::vector<Message> messages;      // In the order of their file names.
  std::string tags;                   // JSON text of an object with "tags", or the text that the file has instead.
  std::vector<std::string> problems;  // One sentence for each file that was skipped.
};

/// A directory of messages that a developer edits while it is served.
///
/// Each "*.json" file is one message written as natural JSON: {"mid", "cid", "payload": {"msg", "title", "templateId",
/// "templateData": {...}}}, and "date" or any other key beside "payload". In "templateData", "imageFile" names a
/// picture beside the file (letters, digits, ".", "-" and "_"): its URL, width and height are filled in. "{service}" in
/// its texts becomes the origin. A "templateData" that is a text is sent unchanged, to try what a service should never
/// send. "tags.json" contains {"tags": [...]}.
///
/// Caches nothing: every call reads the disk. Any thread.
class MessageDirectory {
 public:
  /// Where pictures are served, below the origin.
  static constexpr const char* kImagePath = "/images/";

  /// An empty directory name serves nothing. `origin` is where pictures are served: "https://127.0.0.1:PORT".
  MessageDirectory(std::string directory, std::string origin);

  MessageReading read() const;

  /// Reads a picture by its plain file name; nothing when there is none, or the name leads out of the directory.
  std::optional<std::string> image(std::string_view name) const;

  /// Reads one message file. Returns nothing and one sentence in `problem` when it is no message.
  std::optional<Message> message(const std::string& fileName, std::string& problem) const;

 private:
  std::string readTags(std::vector<std::string>& problems) const;
  std::optional<Dictionary> readObject(const std::string& fileName, std::string& problem) const;
  std::optional<std::string> wireTemplate(const Dictionary& natural, Message& message, std::string& problem) const;
  void fillImage(const Dictionary& natural, Dictionary& data, Message& message, std::string& problem) const;

  std::string directory_;
  std::string origin_;
};

}  // namespace kesu::dev
