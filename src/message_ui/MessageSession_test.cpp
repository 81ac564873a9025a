#include "message_ui/MessageSession.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "drawing/DrawingModule.h"
#include "message_ui/MessagePaging.h"
#include "testing/MessageScreen.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

using testing::bodyReply;
using testing::headersReply;

/// A session on doubles, without any view: the test plays the service.
class MessageSessionTest : public ::testing::Test {
 protected:
  MessageSessionTest() { prepareFonts(); }

  void open() {
    session.open(KesuInAppMessageType::Unread, [this] { ++ready; });
  }

  bool answer(const std::string& path, const std::string& reply) {
    return testing::answerOldest(platform, path, reply);
  }

  void openWith(const std::vector<std::string>& identifiers) {
    open();
    ASSERT_TRUE(answer("newUnFetched/", headersReply(identifiers)));
    ASSERT_TRUE(answer("getmessage/", bodyReply("First", "Text")));
  }

  testing::ScopedPlatform platform;
  MessagingWiring wiring{platform.platform};
  MessageSession session{wiring.inbox, platform.platform};
  int ready = 0;
};

TEST_F(MessageSessionTest, ClosesWhereNothingDraws) {
  static constexpr DrawingSource kNothing{[]() -> DrawingModule* { return nullptr; }, false};
  const DrawingSource* const linked = replaceDrawingSource(&kNothing);
  openWith({"a"});
  replaceDrawingSource(linked);
  EXPECT_EQ(ready, 0);
  EXPECT_FALSE(session.isOpen());
}

TEST_F(MessageSessionTest, DropsRepliesThatAPageAClosingOrAnOpeningOvertakes) {
  openWith({"a", "b", "c"});
  session.page(kNextTag, [] { FAIL() << "paged on"; });
  session.page(kNextTag, [] { FAIL() << "closed"; });
  session.close();
  ASSERT_TRUE(answer("getmessage/", bodyReply("Second", "")));
  ASSERT_TRUE(answer("getmessage/", bodyReply("Third", "")));
  session.open(KesuInAppMessageType::Unread, [] { FAIL() << "opened again"; });
  open();
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"late"})));
  EXPECT_TRUE(session.headers().empty());
  EXPECT_EQ(session.model(), nullptr);
  ASSERT_TRUE(answer("newUnFetched/", headersReply({})));
  EXPECT_EQ(ready, 2);
}

TEST_F(MessageSessionTest, DropsAMessageThatIsClosedBeforeItIsDelivered) {
  open();
  const std::string reply = headersReply({});
  platform.http.answer(platform.http.requestCount() - 1, 200, reply);
  session.close();
  platform.settle();
  EXPECT_EQ(ready, 0);
}

TEST_F(MessageSessionTest, SaysWhetherItSurvivesAHook) {
  open();
  EXPECT_TRUE(session.survives({}));
  EXPECT_TRUE(session.survives([] {}));
  EXPECT_FALSE(session.survives([this] { open(); })) << "another one is open";
  EXPECT_TRUE(session.isOpen());
  EXPECT_THROW(session.survives([] { throw std::runtime_error("from the host"); }), std::runtime_error);
  EXPECT_FALSE(session.isOpen());
}

}  // namespace
}  // namespace kesu
