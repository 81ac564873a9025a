#include "platform/linux/http/HttpHeaderLines.h"

#include <algorithm>
#include <utility>

#include "foundation/Text.h"

namespace kesu {
namespace {

std::string withoutLineBreaks(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
  return text;
}

bool hasOnlyBlanks(const std::string& text) {
  return text.find_first_not_of(" \t") == std::string::npos;
}

bool belongsToTransport(const std::string& name) {
  return equalsIgnoringCase(name, "Expect") || equalsIgnoringCase(name, "Host") ||
         equalsIgnoringCase(name, "Transfer-Encoding");
}

// libcurl sends a header without a value for "name;"; "name:" would remove it.
std::string line(const std::string& name, const std::string& value) {
  return hasOnlyBlanks(value) ? name + ";" : name + ": " + value;
}

// Collects the lines and remembers which of the special headers the caller gave.
class Lines {
 public:
  explicit Lines(const HttpRequest& request) : request_(request) { lines_.reserve(request.headers.size() + 3); }

  void add(const std::string& rawName, const std::string& rawValue) {
    const std::string name = withoutLineBreaks(rawName);
    // "Host: x" or "Host;x" as a name would replace that header.
    if (name.empty() || name.find_first_of(" \t:;") != std::string::npos || belongsToTransport(name)) {
      return;
    }
    if (equalsIgnoringCase(name, "Content-Length")) {
      addLength(name);
      return;
    }
    if (equalsIgnoringCase(name, "Accept-Encoding") && std::exchange(hasEncoding_, true)) {
      return;
    }
    hasAccept_ = hasAccept_ || equalsIgnoringCase(name, "Accept");
    hasType_ = hasType_ || equalsIgnoringCase(name, "Content-Type");
    lines_.push_back(line(name, withoutLineBreaks(rawValue)));
  }

  std::vector<std::string> finish() {
    lines_.emplace_back("Expect:");
    if (!hasAccept_) {
      lines_.emplace_back("Accept:");
    }
    if (!hasType_) {
      lines_.emplace_back("Content-Type:");
    }
    return std::move(lines_);
  }

 private:
  void addLength(const std::string& name) {
    if (carriesBody(request_) && !std::exchange(hasLength_, true)) {
      lines_.push_back(line(name, std::to_string(request_.body.size())));
    }
  }

  const HttpRequest& request_;
  std::vector<std::string> lines_;
  bool hasLength_ = false;
  bool hasEncoding_ = false;
  bool hasAccept_ = false;
  bool hasType_ = false;
};

}  // namespace

std::vector<std::string> httpHeaderLines(const HttpRequest& request) {
  Lines lines(request);
  for (const auto& [name, value] : request.headers) {
    lines.add(name, value);
  }
  return lines.finish();
}

bool carriesBody(const HttpRequest& request) {
  return !request.body.empty() || request.method == "POST" || request.method == "PUT" || request.method == "PATCH";
}

bool acceptsGzip(const HttpRequest& request) {
  return std::any_of(request.headers.begin(), request.headers.end(), [](const auto& header) {
    return equalsIgnoringCase(withoutLineBreaks(header.first), "Accept-Encoding") &&
           header.second.find("gzip") != std::string::npos;
  });
}

std::string cleanMethod(const std::string& method) {
  std::string clean = method;
  std::erase_if(clean, [](char c) { return c <= ' ' || c == '\x7f'; });
  return clean.empty() ? "GET" : clean;
}

}  // namespace kesu
