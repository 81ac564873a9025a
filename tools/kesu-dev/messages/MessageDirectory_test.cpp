#include "tools/kesu-dev/messages/MessageDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "foundation/Json.h"
#include "testing/TemporaryDirectory.h"

namespace kesu::dev {
namespace {

const std::string kPicture("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\4\x88\0\0\2\x8c", 24);

std::string fileWithData(const std::string& templateData) {
  return R"({"mid":"m","cid":"c","payload":{"title":null,"templateData":)" + templateData + "}}";
}

class MessageDirectoryTest : public ::testing::Test {
 protected:
  MessageReading read() const { return MessageDirectory(directory_.path(), "https://h:1").read(); }

  // "templateData" as it goes out; the problem when the message is skipped.
  std::string wireOf(const std::string& templateData) const {
    directory_.write("a.json", fileWithData(templateData));
    const MessageReading reading = read();
    if (reading.messages.empty()) {
      return reading.problems.empty() ? "" : reading.problems.front();
    }
    const std::string* text = reading.messages.front().full.find("payload")->dictionary()->findText("templateData");
    return text == nullptr ? "(no text)" : *text;
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(MessageDirectoryTest, WritesTemplateDataAsATextOfJson) {
  directory_.write("p.png", kPicture);
  const struct {
    const char* natural;
    const char* wire;
  } rows[] = {
      {R"({"titleColor":"#FFF","buttons":[["A",null,1.5]]})", R"({"titleColor":"#FFF","buttons":[["A",null,1.5]]})"},
      {R"({"buttons":[["A","{service}/hook?wh=true"]]})", R"({"buttons":[["A","https://h:1/hook?wh=true"]]})"},
      {R"({"imageFile":"p.png"})",
       R"({"imageSourceURL":"https://h:1/images/p.png","imageWidth":1160,"imageHeight":652})"},
      {R"({"imageFile":"p.png","imageWidth":7})",
       R"({"imageSourceURL":"https://h:1/images/p.png","imageHeight":652,"imageWidth":7})"},
      {R"("{\"broken {service}")", "{\"broken {service}"},
      {"null", "(no text)"},
      {"7", "(no text)"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(wireOf(row.natural), row.wire);
  }
}

TEST_F(MessageDirectoryTest, SaysWhyAFileIsSkipped) {
  const struct {
    const char* file;
    std::string content;
    const char* problem;
  } rows[] = {
      {"b.json", "{", "b.json: is not valid JSON"},
      {"c.json", "[]", "c.json: is JSON but not an object"},
      {"d.json", R"({"cid":"c","payload":{}})", "d.json: \"mid\" must be a text that is not empty"},
      {"e.json", R"({"mid":"m","payload":{}})", "e.json: \"cid\" must be a text"},
      {"f.json", R"({"mid":"m","cid":""})", "f.json: \"payload\" must be an object"},
      {"g.json", fileWithData(R"({"imageFile":"../p.png"})"),
       "g.json: \"imageFile\" ../p.png is no picture beside this file"},
      {"h.json", fileWithData(R"({"imageFile":"h.png"})"),
       "h.json: \"imageFile\" h.png is no PNG, JPEG, GIF or WebP picture"},
      {"z.json", fileWithData("{}"), "z.json: has the \"mid\" and \"cid\" of a.json"},
  };
  std::vector<std::string> expected{"tags.json: \"tags\" must be a list of texts"};
  directory_.write("a.json", fileWithData("{}"));
  directory_.write("h.png", "no picture");
  directory_.write("tags.json", R"({"tags":7})");
  for (const auto& row : rows) {
    directory_.write(row.file, row.content);
    expected.emplace_back(row.problem);
  }
  const MessageReading reading = read();
  EXPECT_EQ(reading.problems, expected);
  ASSERT_EQ(reading.messages.size(), 1U);
  EXPECT_EQ(reading.messages.front().header, (Dictionary{{"mid", "m"}, {"cid", "c"}, {"title", Null()}}));
}

std::string wholeFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// docs/messages.md is all that an author of messages has.
TEST_F(MessageDirectoryTest, ReadsTheExamplesAsTheDocumentPrintsThem) {
  const std::string examples = KESU_EXAMPLE_MESSAGES;
  const std::string document = wholeFile(examples + "/../../docs/messages.md");
  const std::string fence = "```json\n";
  std::size_t printed = 0;
  for (std::size_t at = document.find(fence); at != std::string::npos; at = document.find(fence, at)) {
    at += fence.size();
    directory_.write("printed" + std::to_string(++printed) + ".json",
                     document.substr(at, document.find("```", at) - at));
  }
  for (const char* picture : {"night-train.jpg", "sunrise.jpg", "arcade.jpg"}) {
    directory_.write(picture, wholeFile(examples + "/" + picture));
  }
  const MessageReading fromDocument = read();
  const MessageReading fromFiles = MessageDirectory(examples, "https://h:1").read();
  EXPECT_EQ(fromDocument.problems, std::vector<std::string>());
  EXPECT_EQ(fromFiles.messages.size(), printed);
  for (const Message& message : fromFiles.messages) {
    const auto same = [&](const Message& other) { return other.full == message.full; };
    EXPECT_EQ(std::ranges::count_if(fromDocument.messages, same), 1) << message.file;
    const std::string* data = message.full.find("payload")->dictionary()->findText("templateData");
    const std::optional<Value> parsed = parseJson(*data);
    for (const Dictionary::Entry& entry : *parsed->dictionary()) {
      EXPECT_NE(document.find("`" + entry.key + "`"), std::string::npos) << entry.key;
    }
  }
}

TEST_F(MessageDirectoryTest, ReadsTagsAsAListOrAsText) {
  EXPECT_EQ(read().tags, R"({"tags":[]})");
  directory_.write("tags.json", R"({"tags":["gold",1]})");
  EXPECT_EQ(read().tags, R"({"tags":["gold",1]})");
  directory_.write("tags.json", R"({"tags":"not json"})");
  EXPECT_EQ(read().tags, "not json");
}

TEST_F(MessageDirectoryTest, IsEmptyWithoutADirectory) {
  EXPECT_TRUE(MessageDirectory("", "").read().problems.empty());
  EXPECT_EQ(MessageDirectory(directory_ / "gone", "").read().problems.size(), 1U);
}

}  // namespace
}  // namespace kesu::dev
