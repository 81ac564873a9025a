#include <gtest/gtest.h>

#include "tools/kesu-dev/http/EventStream.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/http/RequestGuard.h"

namespace kesu::dev {
namespace {

TEST(RequestGuard, ServesThisMachineOnly) {
  const struct {
    RequestOrigin request;
    bool served;
  } rows[] = {
      {{"127.0.0.1:8470", "", ""}, true},
      {{"LocalHost:8470", "", ""}, true},
      {{"[::1]:8470", "", "none"}, true},
      {{"127.0.0.1:8470", "http://localhost:8470", "same-origin"}, true},
      {{"", "", ""}, false},
      {{"127.0.0.1", "", ""}, false},
      {{"127.0.0.1:8471", "", ""}, false},
      {{"rebound.example:8470", "", ""}, false},
      {{"127.0.0.1:8470", "http://page.example", ""}, false},
      {{"127.0.0.1:8470", "https://127.0.0.1:8470", ""}, false},
      {{"127.0.0.1:8470", "null", ""}, false},
      {{"127.0.0.1:8470", "", "cross-site"}, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(refusal(row.request, 8470).empty(), row.served) << row.request.host << " " << row.request.origin;
  }
}

TEST(EventParser, ReadsPiecesOfAnySize) {
  const std::string stream =
      ": hello\n\n" + eventText({7, "record", "{\"a\":1}"}) + ": ping\n\n" + eventText({8, "reset", "{}"});
  for (const std::size_t size : {std::size_t{1}, std::size_t{5}, stream.size()}) {
    std::vector<ServerEvent> events;
    EventParser parser;
    for (std::size_t begin = 0; begin < stream.size(); begin += size) {
      parser.feed(std::string_view(stream).substr(begin, size),
                  [&](const ServerEvent& event) { events.push_back(event); });
    }
    EXPECT_EQ(events, (std::vector<ServerEvent>{{7, "record", "{\"a\":1}"}, {8, "reset", "{}"}})) << size;
  }
}

TEST(EventStream, PrefersTheLastEventIdToTheQuery) {
  EXPECT_EQ(resumePoint("", std::nullopt), std::nullopt);
  EXPECT_EQ(resumePoint("", "3"), 3);
  EXPECT_EQ(resumePoint("5", "3"), 5);
  EXPECT_EQ(resumePoint("x", "y"), std::nullopt);
}

TEST(HttpFetch, ReadsServerUrls) {
  EXPECT_EQ(parseServerUrl("http://127.0.0.1:8470"), (ServerAddress{"127.0.0.1", 8470}));
  EXPECT_EQ(parseServerUrl("http://localhost/"), (ServerAddress{"localhost", 80}));
  for (const char* url : {"", "127.0.0.1:8470", "https://a:1", "http://", "http://a:", "http://a:0", "http://a:1/b",
                          "http://a/b", "http://u@a"}) {
    EXPECT_EQ(parseServerUrl(url), std::nullopt) << url;
  }
}

}  // namespace
}  // namespace kesu::dev
