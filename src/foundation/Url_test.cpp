#include "foundation/Url.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace kesu {
namespace {

TEST(Url, SplitsIntoPartsThatAreTheTextAgain) {
  const UrlParts rows[] = {
      {"https://", "", "c.example", "", "/x"},
      {"http://", "", "c.example", "", ""},
      {"http://", "", "Host.Example", "", ""},
      {"http://", "", "localhost", "", "/"},
      {"http://", "", "127.0.0.1", ":8470", ""},
      {"HTTP://", "", "c.example", ":8470", "/collect?q=a@b"},
      {"HTTPS://", "", "h", ":8443", "/p?q#f"},
      {"https://", "", "h", "", "?q=/:@"},
      {"https://", "", "h", "", "#f"},
      {"https://", "user:pw@", "c.example", ":99", "/"},
      {"https://", "user@of:pw@", "c.example", "", ""},
      {"http://", "@", "h", "", ""},
      {"https://", "", "[::1]", ":8443", "/x"},
      {"https://", "", "[::1]", "x", "/"},
      {"https://", "", "h", ":", "/"},
      {"https://", "", "h", ":70000", "/"},
      {"https://", "", "h", ":a", "/"},
      {"https://", "", "a:b", ":80", ""},
      {"ftp://", "", "h", "", "/"},
      {"example-tv+1.0://", "", "show", "", "/night-train"},
      {"file:///", "", "etc", "", "/passwd"},
      {"https:/", "", "h", "", "/"},
      {"http://", "", "", "", ""},
      {"http://", "", "a b", "", "/"},
  };
  for (const UrlParts& row : rows) {
    std::string text;
    for (const std::string_view part : {row.scheme, row.user, row.host, row.port, row.rest}) {
      text += part;
    }
    EXPECT_EQ(splitUrl(text), row) << text;
  }
}

TEST(Url, SplitsNothingElse) {
  for (const char* const url :
       {"", "h", "/p", "c.example", "127.0.0.1:8470", "://h", "1http://h", " http://h", "ht tp://h", "data:,x",
        "javascript:alert(1)", "mailto:a@b", "http:", "https:h", "http:////h", "http://[::1", "http://[::1/]"}) {
    EXPECT_EQ(splitUrl(url), std::nullopt) << url;
  }
}

TEST(Url, FindsTheSchemeOfEveryKindOfUrl) {
  const std::pair<const char*, const char*> rows[] = {{"data:,x", "data"},
                                                      {"JavaScript:x", "JavaScript"},
                                                      {"a:", "a"},
                                                      {"tv+2.x-y://z", "tv+2.x-y"},
                                                      {"", ""},
                                                      {"a", ""},
                                                      {":a", ""},
                                                      {"-a:b", ""},
                                                      {" a:b", ""},
                                                      {"a b:c", ""}};
  for (const auto& [url, scheme] : rows) {
    EXPECT_EQ(urlScheme(url), scheme) << url;
  }
}

TEST(Url, SplitsHostAndPort) {
  const struct {
    const char* text;
    const char* host;
    std::optional<int> port;
  } rows[] = {
      {"h", "h", {}},    {"h:81", "h", 81}, {"h:0443", "h", 443},      {"[::1]", "::1", {}},   {"[::1]:81", "::1", 81},
      {"h:", "h", {}},   {"h:0", "h", 0},   {"h:65535", "h", 65535},   {"h:65536", "h", {}},   {"h:+1", "h", {}},
      {"h:-1", "h", {}}, {"h:1x", "h", {}}, {"h:4294967377", "h", {}}, {"[::1]81", "::1", {}}, {"[]:81", "", 81},
      {":81", "", 81},   {"", "", {}}};
  for (const auto& row : rows) {
    const auto parts = splitHostAndPort(row.text);
    ASSERT_TRUE(parts) << row.text;
    EXPECT_EQ(withoutBrackets(parts->host), row.host) << row.text;
    EXPECT_EQ(portNumber(parts->port), row.port) << row.text;
  }
  EXPECT_FALSE(splitHostAndPort("[::1"));
}

}  // namespace
}  // namespace kesu
