#include <gtest/gtest.h>
#include <kesu/events/KesuCustomEvent.h>
#include <kesu/events/KesuEvent.h>
#include <kesu/foundation/Exception.h>

#include <limits>

#include "records/TimeReference.h"
#include "support/KesuPriorityLogger.h"
#include "testing/RecordingPoster.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class EventTest : public ::testing::Test {
 protected:
  testing::ScopedPlatform platform;
  testing::RecordingPoster poster;
};

TEST_F(EventTest, PostsTheNameAsGivenOverAHostsAttribute) {
  const Attributes host = {{"~e", "mine"}, {"k", "v"}};
  KesuCustomEvent::postWithEventName(" a ", host);
  KesuEvent::post("b");
  ASSERT_EQ(poster.posted.size(), 2U);
  EXPECT_EQ(poster.posted[0].second, (Dictionary{{"~e", " a "}, {"k", "v"}}));
  EXPECT_EQ(poster.posted[1].second, (Dictionary{{"~e", "b"}}));
  EXPECT_EQ(poster.flow, (std::vector<std::string>{" a ", "b"}));
  EXPECT_EQ(*host.find("~e"), Value("mine"));
}

TEST_F(EventTest, IgnoresBlankNames) {
  for (const Object& name : {Object(nil), Object(""), Object("  \n"), Object("\u3000"), Object(Value(Null{}))}) {
    KesuCustomEvent::postWithEventName(name, {{"k", "v"}});
  }
  EXPECT_TRUE(poster.posted.empty() && poster.flow.empty());
}

TEST_F(EventTest, ThrowsBeforeTheLibraryHasAKey) {
  poster.initialized = false;
  EXPECT_NO_THROW(KesuCustomEvent::postWithEventName("  "));
  KesuEvent sms;
  sms.name = "register";
  EXPECT_THROW(sms.postEventForTableM(), InternalInconsistencyException);
  try {
    KesuCustomEvent::postWithEventName("a");
    FAIL() << "no exception";
  } catch (const InternalInconsistencyException& exception) {
    EXPECT_STREQ(exception.name(), "NSInternalInconsistencyException");
    EXPECT_TRUE(std::string(exception.what()).starts_with("KesuAppKey needs to be set via initializeWithKey: method."));
  }
  EXPECT_TRUE(poster.posted.empty() && poster.flow.empty());
}

TEST_F(EventTest, AddsOnlyAttributesWithContent) {
  KesuEvent event;
  event.addAttribute("my key", "x");
  event.addAttribute("blank", "   ");
  event.addAttribute(" ", "x");
  event.addAttribute(nil, "x");
  event.addAttribute("null", Value(Null{}));
  event.addAttribute("my key", " y ");
  event.addLevelAttribute(nil);
  event.addLevelAttribute("3");
  EXPECT_EQ(event.attributes, (Dictionary{{"my key", " y "}, {"Level", "3"}}));
}

TEST_F(EventTest, SendsToTableMWhateverTheName) {
  KesuEvent event;
  event.attributes = {{"~e", "mine"}, {"a", "r"}};
  event.postEventForTableM();
  ASSERT_EQ(poster.posted.size(), 1U);
  EXPECT_EQ(poster.posted[0].first, 'm');
  EXPECT_EQ(poster.posted[0].second, (Dictionary{{"a", "r"}}));
  EXPECT_TRUE(poster.flow.empty());
}

TEST_F(EventTest, MeasuresElapsedSeconds) {
  platform.clock.set(1489579320.0);
  const double now = timerReferenceAt(1489579320.0);
  const struct {
    double reference;
    const char* elapsed;
    std::size_t warnings;
  } rows[] = {{now - 1.5, "1.500", 0},
              {now, "0.000", 0},
              {0.0, nullptr, 0},
              {now + 1.0, nullptr, 1},
              {std::numeric_limits<double>::quiet_NaN(), nullptr, 0}};
  KesuPriorityLogger::sharedLogger().setLogLevel(2);
  for (const auto& row : rows) {
    KesuCustomEvent::postTimedWithEventName("t", row.reference, {{"k", "v"}});
    const std::string* elapsed = poster.posted.back().second.findText("elapsedSeconds");
    EXPECT_EQ(elapsed == nullptr, row.elapsed == nullptr);
    EXPECT_EQ(elapsed != nullptr ? *elapsed : "", row.elapsed != nullptr ? row.elapsed : "");
    const auto lines = platform.log.takeLines();
    ASSERT_EQ(lines.size(), row.warnings);
    EXPECT_TRUE(lines.empty() || lines[0].text == "The input timer reference is newer than current time.");
  }
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  EXPECT_EQ(poster.posted.size(), 5U);
}

}  // namespace
}  // namespace kesu
