#include "platform/linux/http/HttpHeaderLines.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

using Headers = std::vector<std::pair<std::string, std::string>>;
using Lines = std::vector<std::string>;

HttpRequest requestWith(Headers headers, std::string body = {}) {
  HttpRequest request;
  request.method = body.empty() ? "GET" : "POST";
  request.headers = std::move(headers);
  request.body = std::move(body);
  return request;
}

TEST(HttpHeaderLines, CannotBeUsedToInjectHeaders) {
  using namespace std::string_literals;
  struct Case {
    std::string name, value, line;
  };
  const Case cases[] = {
      {"a", "1\r\nEvil: 2", "a: 1Evil: 2"},
      {"a\r\nEvil", "1", "aEvil: 1"},
      {"a", "x\0y"s, "a: xy"},
      {"a", "\r\n", "a;"},
      {"a", "", "a;"},
      {"a", "  \t", "a;"},
      {"Host;x", "1", "Expect:"},  // Left out: libcurl would take it for that header.
  };
  for (const Case& c : cases) {
    EXPECT_EQ(httpHeaderLines(requestWith({{c.name, c.value}})).front(), c.line);
  }
}

TEST(HttpHeaderLines, LeavesOutWhatBelongsToTheTransport) {
  const Headers headers = {{"Host", "evil"},
                           {"transfer-encoding", "chunked"},
                           {"Expect", "100-continue"},
                           {"", "x"},
                           {":path", "/x"},
                           {"\r\n", "x"},
                           {"Host: evil", "x"},
                           {"Host ", "evil"},
                           {"Content-Length:9\t", ""}};
  EXPECT_EQ(httpHeaderLines(requestWith(headers)), (Lines{"Expect:", "Accept:", "Content-Type:"}));
}

TEST(HttpHeaderLines, TellsTheTrueLengthOnceInItsPlace) {
  const Headers headers = {{"Content-Length", "999"}, {"a", "1"}, {"content-length", "5"}};
  EXPECT_EQ(httpHeaderLines(requestWith(headers, "abc")),
            (Lines{"Content-Length: 3", "a: 1", "Expect:", "Accept:", "Content-Type:"}));
  EXPECT_EQ(httpHeaderLines(requestWith(headers)).front(), "a: 1");
}

TEST(HttpHeaderLines, OffersEncodingsOnce) {
  const HttpRequest request = requestWith({{"accept-encoding", "gzip"}, {"Accept-Encoding", "br"}});
  EXPECT_EQ(httpHeaderLines(request).front(), "accept-encoding: gzip");
  EXPECT_EQ(httpHeaderLines(request).size(), 4U);
  EXPECT_TRUE(acceptsGzip(request));
  EXPECT_FALSE(acceptsGzip(requestWith({{"Accept-Encoding", "identity"}, {"Accept", "gzip"}})));
}

TEST(HttpHeaderLines, CleansMethods) {
  EXPECT_EQ(cleanMethod("PUT"), "PUT");
  EXPECT_EQ(cleanMethod("GET /evil HTTP/1.1\r\nx"), "GET/evilHTTP/1.1x");
  EXPECT_EQ(cleanMethod(" \r\n"), "GET");
}

}  // namespace
}  // namespace kesu
