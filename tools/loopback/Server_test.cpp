#include "tools/loopback/Server.h"

#include <gtest/gtest.h>

#include "testing/RawConnection.h"

namespace kesu::loopback {
namespace {

/// A server that answers with what it understood of the request.
class ServerTest : public ::testing::Test {
 protected:
  ServerTest() { EXPECT_TRUE(server_.bind(0) && server_.start()); }

  static Reply describe(Request& request) {
    Reply reply;
    reply.body = request.method + " " + request.path;
    for (const auto& [name, value] : request.query) {
      reply.body += " " + name + "=" + value;
    }
    std::string body;
    reply.body += request.readBody(body) ? " [" + body + "]" : " (unread)";
    return reply;
  }

  std::string exchange(const std::string& bytes) const { return testing::exchangeRaw(server_.port(), bytes); }

  Server server_{describe};
};

TEST_F(ServerTest, UnderstandsEveryFormOfARequest) {
  const std::pair<const char*, const char*> rows[] = {
      {"GET /a%20b+c?x=1%262&y=a+b&z HTTP/1.1\r\nConnection: close\r\n\r\n", "GET /a b+c x=1&2 y=a b z= []"},
      {"GET /%zz%4 HTTP/1.1\r\nConnection: Close\r\n\r\n", "GET /%zz%4 []"},
      {"GET /old HTTP/1.0\r\n\r\n", "GET /old []"},
      {"POST / HTTP/1.1\r\nConnection: close\r\ncontent-length:  3 \r\n\r\nabc", "POST / [abc]"},
      {"PUT / HTTP/1.1\r\nConnection: close\r\nTransfer-Encoding: "
       "chunked\r\n\r\n3\r\nabc\r\nA;x\r\n0123456789\r\n0\r\n\r\n",
       "PUT / [abc0123456789]"},
      {"PUT / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nno length\r\n", "PUT / (unread)"},
      {"PUT / HTTP/1.1\r\nContent-Length: 99999999999\r\n\r\n", "PUT / (unread)"},
  };
  for (const auto& [request, understood] : rows) {
    const std::string reply = exchange(request);
    EXPECT_TRUE(reply.starts_with("HTTP/1.1 200 OK\r\n") && reply.ends_with(std::string("\r\n\r\n") + understood))
        << request << reply;
  }
}

TEST_F(ServerTest, RefusesWhatIsNoRequest) {
  for (const char* bytes :
       {"GET\r\n\r\n", "GET / \r\n\r\n", "GET / HTTP/2\r\n\r\n", "GET / HTTP/1.1\r\nno colon\r\n\r\n"}) {
    EXPECT_TRUE(exchange(bytes).starts_with("HTTP/1.1 400 ")) << bytes;
  }
  EXPECT_TRUE(exchange("\x16\x03\x01\x02\r\n\r\n\r\n").starts_with("HTTP/1.1 400 "));
  EXPECT_TRUE(exchange("GET /" + std::string(4000, 'a') + " HTTP/1.1\r\n\r\n").starts_with("HTTP/1.1 414 "));
}

TEST_F(ServerTest, AnswersPipelinedRequestsInOrder) {
  const std::string reply = exchange("GET /a HTTP/1.1\r\n\r\nGET /b HTTP/1.0\r\n\r\n");
  EXPECT_LT(reply.find("GET /a []"), reply.find("HTTP/1.1 200", 1));
  EXPECT_TRUE(reply.ends_with("GET /b []")) << reply;
}

TEST_F(ServerTest, AsksForABodyThatWaits) {
  const std::string reply =
      exchange("POST / HTTP/1.1\r\nConnection: close\r\nExpect: 100-continue\r\nContent-Length: 1\r\n\r\nx");
  EXPECT_TRUE(reply.starts_with("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n")) << reply;
}

TEST_F(ServerTest, HeadHasTheHeadersOnly) {
  const std::string reply = exchange("HEAD / HTTP/1.1\r\nConnection: close\r\n\r\n");
  EXPECT_NE(reply.find("\r\nContent-Length: 9\r\n"), std::string::npos) << reply;
  EXPECT_TRUE(reply.ends_with("\r\n\r\n")) << reply;
}

TEST_F(ServerTest, KeepsItsPortWhileItIsStopped) {
  Server other(describe);
  EXPECT_FALSE(other.bind(server_.port()));
  server_.stop();
  EXPECT_TRUE(server_.start());
  EXPECT_TRUE(exchange("GET / HTTP/1.0\r\n\r\n").ends_with("GET / []"));
  EXPECT_EQ(server_.connectionCount(), 1U);
}

}  // namespace
}  // namespace kesu::loopback
