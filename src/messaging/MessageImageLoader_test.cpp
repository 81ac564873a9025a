#include "messaging/MessageImageLoader.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "drawing/Pictures.h"
#include "messaging/InAppTemplateData.h"
#include "testing/FakeHttpClient.h"
#include "testing/ManualBackgroundQueue.h"

namespace kesu {
namespace {

class MessageImageTest : public ::testing::Test {
 protected:
  static InAppTemplateData from(const std::string& url) { return InAppTemplateData({{"imageSourceURL", url}}, false); }

  /// Downloads and returns what the handler was told; fails unless it was called once, on the worker.
  ImagePtr download(const InAppTemplateData& data, int status = 200) {
    int calls = 0;
    ImagePtr result;
    data.downloadImageWithCompletionHandler(loader, [&](ImagePtr image) {
      ++calls;
      result = std::move(image);
    });
    http.answerAll(status, png);
    EXPECT_EQ(calls, 0) << "never on the main thread";
    worker.runAll();
    EXPECT_EQ(calls, 1);
    return result;
  }

  const std::string png = *encodePng(Image(2, 1, {0xFF112233, 0xFF445566}));
  testing::FakeHttpClient http;
  testing::ManualBackgroundQueue worker;
  MessageImageLoader loader{http, worker};
};

TEST_F(MessageImageTest, DownloadsOnce) {
  const InAppTemplateData data = from("https://h/i.png");
  const ImagePtr image = download(data);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixels()[1], 0xFF445566U);
  EXPECT_EQ(http.request(0).replyLimit, MessageImageLoader::kLimitBytes);
  EXPECT_EQ(data.downloadedImage(), image);
  ImagePtr again;
  data.downloadImageWithCompletionHandler(loader, [&](ImagePtr kept) { again = std::move(kept); });
  EXPECT_EQ(again, image) << "at once";
  EXPECT_EQ(http.requestCount(), 1U);
}

TEST_F(MessageImageTest, CallsTheHandlerWithNullWithoutAPicture) {
  for (const int status : {404, 500, 301}) {
    EXPECT_EQ(download(from("https://h/i.png"), status), nullptr) << status;
  }
  for (const char* url : {"data:image/png;base64,AAAA", "data:", "data:;base64,%%%"}) {
    EXPECT_EQ(download(from(url)), nullptr) << url;
  }
  ImagePtr broken = std::make_shared<Image>(1, 1, std::vector<std::uint32_t>{0});
  from("https://h/i.png").downloadImageWithCompletionHandler(loader, [&](ImagePtr image) {
    broken = std::move(image);
  });
  HttpReply brokenReply = testing::FakeHttpClient::failure(HttpError::ConnectionLost, 200);
  brokenReply.body = png;
  http.answer(3, std::move(brokenReply));
  worker.runAll();
  EXPECT_EQ(broken, nullptr) << "an error beside a picture";
  EXPECT_EQ(http.requestCount(), 4U) << "data: URLs make no request";
}

TEST_F(MessageImageTest, ReadsPicturesWithinTheMessage) {
  const std::string url = "data:image/gif;base64,R0lGODlhAQABAIAAAP8AAP///yH5BAAAAAAALAAAAAABAAEAAAICRAEAOw==";
  const ImagePtr image = download(from(url));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixels()[0], 0xFFFF0000U);
  EXPECT_NE(InAppTemplateData({{"optionalBase64Image", url}}, false).base64Image(), nullptr);
  for (const char* other : {"", "https://h/i.png", "file:///etc/hostname"}) {
    EXPECT_EQ(InAppTemplateData({{"optionalBase64Image", other}}, false).base64Image(), nullptr);
  }
  EXPECT_EQ(http.requestCount(), 0U);
}

TEST_F(MessageImageTest, OutlivesItsMessage) {
  int calls = 0;
  {
    const InAppTemplateData data = from("https://h/i.png");
    data.downloadImageWithCompletionHandler(loader, [&](const ImagePtr& image) { calls += image != nullptr ? 1 : 0; });
  }
  http.answerAll(200, png);
  worker.runAll();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace kesu
