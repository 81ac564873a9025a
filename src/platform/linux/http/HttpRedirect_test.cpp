#include "platform/linux/http/HttpRedirect.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

using SentHeaders = std::vector<std::pair<std::string, std::string>>;

HttpJob job(std::string method, std::string body = {}, std::string url = "https://a.example/x") {
  HttpJob made;
  made.request.method = std::move(method);
  made.request.url = std::move(url);
  made.request.body = std::move(body);
  made.request.headers = {{"Accept", "*/*"}, {"Authorization", "secret"}, {"Content-Type", "t"}};
  prepareJob(made, parseHttpUrl(made.request.url).value());
  return made;
}

TEST(HttpRedirect, FollowsAsBrowsersDo) {
  struct Case {
    int status;
    const char* method;
    const char* becomes;
  };
  const Case cases[] = {{301, "POST", "GET"},  {302, "POST", "GET"}, {303, "POST", "GET"}, {307, "POST", "POST"},
                        {308, "POST", "POST"}, {301, "PUT", "PUT"},  {303, "PUT", "GET"},  {303, "HEAD", "HEAD"}};
  for (const Case& c : cases) {
    HttpJob subject = job(c.method, "body");
    EXPECT_EQ(applyRedirect(subject, c.status, "https://a.example/y"), HttpRedirectVerdict::Follow);
    EXPECT_EQ(subject.request.method, c.becomes) << c.status;
    EXPECT_EQ(subject.request.url, "https://a.example/y");
    const bool keepsBody = subject.request.method[0] == 'P';
    EXPECT_EQ(subject.request.body, keepsBody ? "body" : "") << c.status;
    EXPECT_EQ(subject.request.headers.size(), keepsBody || c.method[0] == 'H' ? 3U : 2U) << c.status;
  }
}

TEST(HttpRedirect, OtherRepliesAreFinal) {
  for (const int status : {200, 204, 300, 304, 305, 404, 500}) {
    HttpJob subject = job("GET");
    EXPECT_EQ(applyRedirect(subject, status, "https://b.example/"), HttpRedirectVerdict::Final) << status;
  }
  HttpJob subject = job("GET");
  EXPECT_EQ(applyRedirect(subject, 302, ""), HttpRedirectVerdict::Final);
}

TEST(HttpRedirect, IsFinalWhereTheBodyWouldBeDropped) {
  for (const auto& [status, verdict] : {std::pair{301, HttpRedirectVerdict::Final},
                                        {302, HttpRedirectVerdict::Final},
                                        {303, HttpRedirectVerdict::Final},
                                        {307, HttpRedirectVerdict::Follow},
                                        {308, HttpRedirectVerdict::Follow}}) {
    HttpJob subject = job("POST", "body");
    subject.request.isFutileWithoutBody = true;
    EXPECT_EQ(applyRedirect(subject, status, "https://a.example/y"), verdict) << status;
    EXPECT_EQ(subject.request.body, "body");
  }
}

TEST(HttpRedirect, NothingOfTheCallerLeavesTheNamedOrigin) {
  for (const char* const elsewhere : {"https://b.example/", "http://a.example/", "https://a.example:444/"}) {
    for (const int status : {301, 302, 303, 307, 308}) {
      for (HttpJob subject : {job("POST", "body"), job("POST"), job("GET", "body"), job("DELETE")}) {
        EXPECT_EQ(applyRedirect(subject, status, elsewhere), HttpRedirectVerdict::Refuse) << status << elsewhere;
      }
      HttpJob subject = job("GET");
      EXPECT_EQ(applyRedirect(subject, status, elsewhere), HttpRedirectVerdict::Follow);
      EXPECT_EQ(subject.request.headers, (SentHeaders{{"Accept", "*/*"}}));
    }
  }
}

TEST(HttpRedirect, PostTurnedIntoGetStillMayNotLeave) {
  HttpJob subject = job("POST", "body");
  ASSERT_EQ(applyRedirect(subject, 303, "https://a.example/y"), HttpRedirectVerdict::Follow);
  EXPECT_EQ(applyRedirect(subject, 302, "https://b.example/"), HttpRedirectVerdict::Refuse);
}

}  // namespace
}  // namespace kesu
