#include "platform/linux/http/HttpUrl.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(HttpUrl, FindsOriginAndDropsCredentialsAndFragment) {
  struct Case {
    const char* url;
    HttpOrigin origin;
    const char* text;
  };
  const Case cases[] = {
      {"http://Host.Example", {false, "host.example", 80}, "http://Host.Example/"},
      {"HTTPS://h:8443/p?q#f", {true, "h", 8443}, "https://h:8443/p?q"},
      {"https://h:443/", {true, "h", 443}, "https://h:443/"},
      {"http://user:secret@h/p", {false, "h", 80}, "http://h/p"},
      {"http://[::1]:81/", {false, "::1", 81}, "http://[::1]:81/"},
      {"http://h?q#f", {false, "h", 80}, "http://h/?q"},
      {"https://h:/", {true, "h", 443}, "https://h/"},
      {"http://h:0081/", {false, "h", 81}, "http://h:81/"},
      {"https:/h/", {true, "h", 443}, "https://h/"},
      {"https:///h/", {true, "h", 443}, "https://h/"},
  };
  for (const Case& c : cases) {
    const auto url = parseHttpUrl(c.url);
    ASSERT_TRUE(url) << c.url;
    EXPECT_EQ(url->origin, c.origin) << c.url;
    EXPECT_EQ(url->text, c.text);
  }
}

TEST(HttpUrl, RefusesEverythingElse) {
  using namespace std::string_literals;
  for (const std::string& url : {""s,
                                 "h"s,
                                 "/p"s,
                                 "ftp://h/"s,
                                 "file:///etc/passwd"s,
                                 "data:,x"s,
                                 "http://"s,
                                 "http://a b/"s,
                                 "http://h/\r\nX: 1"s,
                                 "http://h/\0"s,
                                 "http://h:99999/"s,
                                 "javascript:alert(1)"s,
                                 "http://h:x/"s,
                                 "http://[::1]x/"s,
                                 "http://[x]/"s,
                                 "http://a\\b/"s,
                                 "http://a@b@c/"s,
                                 "http://a,b/"s,
                                 "http://[]/"s,
                                 "http:////h/"s}) {
    EXPECT_FALSE(parseHttpUrl(url)) << url;
  }
}

}  // namespace
}  // namespace kesu
