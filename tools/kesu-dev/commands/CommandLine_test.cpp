#include "tools/kesu-dev/commands/CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tools/kesu-dev/commands/RunCommand.h"
#include "tools/kesu-dev/http/EventStream.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/http/RequestGuard.h"

namespace kesu::dev {
namespace {

CommandLine parse(const std::string& text) {
  std::istringstream words(text);
  return parseCommandLine({std::istream_iterator<std::string>(words), {}});
}

TEST(CommandLine, ReadsWhatServeCanDo) {
  const CommandLine line =
      parse("serve --port 0 --db r.db --ready-file=ready --strict --messages . --messaging-port 7");
  EXPECT_EQ(line.error, "");
  EXPECT_EQ(line.command, Command::Serve);
  EXPECT_EQ(line.services.port, 0);
  EXPECT_EQ(line.services.database, "r.db");
  EXPECT_EQ(line.readyFile, "ready");
  EXPECT_TRUE(line.services.strict);
  EXPECT_EQ(line.services.messages, ".");
  EXPECT_EQ(line.services.messagingPort, 7);
}

TEST(CommandLine, ReadsWhatAPreviewShows) {
  const CommandLine line = parse("preview a/b.json -o c.png --size 640x360");
  EXPECT_EQ(line.error, "");
  EXPECT_EQ(line.command, Command::Preview);
  EXPECT_EQ(line.preview.file, "a/b.json");
  EXPECT_EQ(line.preview.output, "c.png");
  EXPECT_EQ(line.preview.width, 640);
  EXPECT_EQ(line.preview.height, 360);
  for (const char* wrong : {"preview", "preview a b", "preview a --size 640", "preview a --size x", "preview a -o",
                            "preview a --size 640x99999", "preview a --size -1x360", "preview -o c.png"}) {
    EXPECT_NE(parse(wrong).error, "") << wrong;
  }
}

TEST(CommandLine, LeavesTheProgramsOptionsAlone) {
  const CommandLine line = parse("run --home h -- app --port 1 -- x");
  EXPECT_EQ(line.error, "");
  EXPECT_EQ(line.child, (std::vector<std::string>{"app", "--port", "1", "--", "x"}));
  EXPECT_EQ(line.services.port, std::nullopt);
  EXPECT_EQ(line.home, "h");
}

TEST(CommandLine, ReadsTailAndShow) {
  const CommandLine tail = parse("tail -f json --all --url http://localhost:1");
  EXPECT_EQ(tail.command, Command::Tail);
  EXPECT_EQ(tail.format, OutputFormat::Json);
  EXPECT_TRUE(tail.fromStart);
  EXPECT_EQ(tail.url, "http://localhost:1");
  EXPECT_EQ(parse("tail --once").command, Command::Show);
  EXPECT_EQ(parse("catalogue -f json").format, OutputFormat::Json);
  EXPECT_FALSE(parse("keys -f json").error.empty());
  const CommandLine show = parse("show --db f --width 200");
  EXPECT_EQ(show.database, "f");
  EXPECT_EQ(show.services.database, "");
  EXPECT_EQ(show.width, 200U);
  EXPECT_EQ(parse("show").url, "http://127.0.0.1:8470");
}

TEST(CommandLine, SaysWhatIsWrong) {
  const struct {
    const char* text;
    const char* error;
  } rows[] = {
      {"", "which command?"},
      {"server", "unknown command server"},
      {"serve --prot 1", "unknown option --prot"},
      {"serve --port", "--port needs a value"},
      {"serve --port 65536", "a port is a number from 0 to 65535, not 65536"},
      {"serve --messages /no/such", "--messages needs a directory, not /no/such"},
      {"serve --strict=yes", "--strict takes no value"},
      {"serve --home h", "unknown option --home"},
      {"serve -- app", "only run takes a program behind --"},
      {"run", "run needs a program: kesu-dev run -- PROGRAM ARGUMENTS"},
      {"run --", "run needs a program: kesu-dev run -- PROGRAM ARGUMENTS"},
      {"run app", "unknown option app (the program to run follows behind --)"},
      {"tail -f xml", "the format is human or json, not xml"},
      {"show --width 10", "the width is a number from 40 to 1000, not 10"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(parse(row.text).error, row.error) << row.text;
  }
}

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

TEST(EventParser, PutsPiecesTogether) {
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

TEST(EventStream, LastEventIdGoesBeforeTheQuery) {
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

TEST(RunCommand, ReplacesVariablesByTheirWholeName) {
  const std::vector<std::string> own{"PATH=/bin", "KESU_HOME=/old", "KESU_HOME_2=x"};
  EXPECT_EQ(environmentWith(own, {"KESU_HOME=/new", "A=b"}),
            (std::vector<std::string>{"PATH=/bin", "KESU_HOME_2=x", "KESU_HOME=/new", "A=b"}));
}

}  // namespace
}  // namespace kesu::dev
