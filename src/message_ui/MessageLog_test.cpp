#include "message_ui/MessageLog.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/Json.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

constexpr const char* kBody =
    R"({"payload":{"title":"Title","msg":"Text","templateId":"p_temp_2","templateData":
        "{\"imageSourceURL\":\"u\",\"imageWidth\":4,\"msgColor\":\"#1\",\"buttons\":[[\"Watch\",\"tv://watch\"]]}"}})";

class MessageLogTest : public ::testing::Test {
 protected:
  ~MessageLogTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// What is logged of a message body at this threshold, one line each.
  std::string logged(const std::string& body, std::uint64_t threshold) {
    KesuPriorityLogger::sharedLogger().setLogLevel(threshold);
    logMessageContent(*parseJson(body)->dictionary());
    std::string lines;
    for (const auto& line : platform.log.takeLines()) {
      lines += line.text + "\n";
    }
    return lines;
  }

  testing::ScopedPlatform platform;
};

TEST_F(MessageLogTest, WritesTextsPictureColoursAndButtons) {
  const std::string lines = logged(kBody, 3);
  for (const char* wanted :
       {"title = Title , message = Text, template-id = p_temp_2",
        "image source URL = u,imageWidth = 4,imageHeight = 0,msgColor = #1,titleColor = (null)",
        "Button title = Watch, deep-link URL = tv://watch, buttonBgColor = (null), buttonTextColor = tv://watch"}) {
    EXPECT_NE(lines.find(wanted), std::string::npos) << wanted << "\n" << lines;
  }
}

TEST_F(MessageLogTest, WritesNothingBelowItsLevel) {
  EXPECT_EQ(logged(kBody, 2), "");
}

TEST_F(MessageLogTest, WritesNullForAMessageWithoutPayload) {
  EXPECT_NE(logged("{}", 3).find("title = (null) , message = (null), template-id = (null)"), std::string::npos);
}

}  // namespace
}  // namespace kesu
