#include "platform/linux/http/HttpHeaderList.h"

#include <gtest/gtest.h>

#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {
namespace {

TEST(HttpHeaderList, IsAlwaysThatOfTheLatestRequest) {
  struct Case {
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    bool isOther;  // libcurl must be given another list.
  };
  const Case cases[] = {
      {{{"a", "1"}, {"Content-Length", "3"}, {"b", "2"}}, "abc", true},
      {{{"a", "1"}, {"Content-Length", "0"}, {"b", "2"}}, std::string(1'000'000, 'x'), false},
      {{{"a", "1"}, {"Content-Length", "7"}, {"b", "2"}}, "x", false},
      {{{"a", "1"}, {"Content-Length", "7"}, {"b", "2"}}, "", true},
      {{{"a", "1"}, {"Content-Length", "8"}, {"b", "2"}}, "x", true},
      {{{"a", "3"}, {"Content-Length", "8"}, {"b", "2"}}, "x", true},
      {{{"c", "3"}, {"Content-Length", "8"}, {"b", "2"}}, "x", true},
      {{{"c", "3"}, {"Content-\nLength", "8"}, {"b", "2"}}, "x", true},
      {{{"c", "3"}, {"Content-\nLength", "8"}, {"b", "2"}}, "xyz", false},
      {{{"c", "3"}}, "x", true},
      {{{"c", "3"}}, "longer", false},
      {{}, "", true},
      {{}, "", false},
  };
  HttpHeaderList list;
  for (const Case& c : cases) {
    HttpRequest request;
    request.headers = c.headers;
    request.body = c.body;
    EXPECT_EQ(list.update(request), c.isOther) << &c - cases;
    std::vector<std::string> lines;
    for (const curl_slist* node = list.get(); node != nullptr; node = node->next) {
      lines.emplace_back(node->data);
    }
    EXPECT_EQ(lines, httpHeaderLines(request)) << &c - cases;
  }
}

}  // namespace
}  // namespace kesu
