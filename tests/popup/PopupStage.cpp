#include "tests/popup/PopupStage.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "drawing/Pictures.h"
#include "foundation/Json.h"
#include "foundation/SharedInstance.h"
#include "testing/MessageScreen.h"
#include "uikit/Animator.h"

namespace kesu::testing {
namespace {

// The example's picture as a service would name it.
Dictionary withPictureUrl(const Dictionary& natural, const std::string& folder) {
  Dictionary data;
  for (const auto& [key, value] : natural) {
    data.set(key == "imageFile" ? "imageSourceURL" : key,
             key == "imageFile" ? Value(PopupStage::kExamplePictures + folder + *value.text()) : value);
  }
  const std::string* file = natural.findText("imageFile");
  if (file != nullptr && !natural.contains("imageWidth")) {
    const ImagePtr image = decodeImage(exampleFile(folder + *file)).image;
    data.set("imageWidth", image->width());
    data.set("imageHeight", image->height());
  }
  return data;
}

}  // namespace

PopupStage::PopupStage() {
  platform.clock.set(1489579320.0);  // 2017-03-15 12:02:00 UTC
  platform.bundle.dictionary = {{"CFBundleIdentifier", "tv.example.app"}, {"CFBundleShortVersionString", "1.0"}};
  Kesu::initialize("key", 0);
  Application::shared().didFinishLaunching();
  platform.settle();
  overlay = std::make_unique<Overlay>();
}

PopupStage::~PopupStage() {
  close();
  overlay.reset();
  Animator::shared().finishAll();
  resetSharedInstances();
  Kesu::logThrottling(0);
  platform.log.takeLines();
}

void PopupStage::show(std::vector<Dictionary> payloads) {
  payloads_ = std::move(payloads);
  Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::Unread, std::nullopt, {});
  settle();
}

void PopupStage::close() {
  Kesu::dismissInAppNotificationUI(true);
  settle();
}

void PopupStage::settle() {
  constexpr int kRounds = 3;  // A reply, what it asks for (a picture), and what that moves.
  for (int round = 0; round < kRounds; ++round) {
    platform.settle();
    answerRequests();
    platform.settle();
    overlay->layers(now_);
    now_ += 1.0;
    overlay->layers(now_);
  }
}

void PopupStage::hold(RemoteButton button) {
  overlay->press(button, PressPhase::Began);
  settle();
}

void PopupStage::press(RemoteButton button) {
  overlay->press(button, PressPhase::Began);
  overlay->press(button, PressPhase::Ended);
  settle();
}

void PopupStage::swipe(SwipeDirection direction) {
  overlay->swipe(direction);
  settle();
}

ImagePtr PopupStage::picture(int width, int height) {
  overlay->setPixelSize(width, height);
  return overlay->snapshot();
}

std::string PopupStage::heard() const {
  std::string text;
  for (const AccessibilityNode& node : overlay->accessibilityTree()) {
    text += node.label + (node.isFocused ? "* " : " ");
  }
  return text;
}

void PopupStage::answerRequests() {
  const auto requests = platform.http.requests();
  for (std::size_t index = 0; index < requests.size(); ++index) {
    if (platform.http.isPending(index)) {
      answer(index, requests[index]);
    }
  }
}

bool PopupStage::answer(std::size_t index, const HttpRequest& request) {
  const std::string& url = request.url;
  if (url.starts_with(kSlowPictures)) {
    return false;
  }
  if (url.starts_with(kGonePictures)) {
    return platform.http.answer(index, 404);
  }
  if (url.starts_with(kExamplePictures)) {
    return platform.http.answer(index, 200, exampleFile(url.substr(std::string(kExamplePictures).size())));
  }
  if (url.find("/newUnFetched/") != std::string::npos) {
    Array headers;
    for (std::size_t i = 0; i < payloads_.size(); ++i) {
      headers.push_back(Dictionary{{"mid", std::to_string(i)}, {"cid", "c"}});
    }
    return platform.http.answer(index, 200, jsonText({{"metadatalist", std::move(headers)}}));
  }
  if (url.find("/getmessage/") != std::string::npos) {
    const auto asked = parseJson(request.body);
    const std::string* mid = asked ? asked->dictionary()->findText("mid") : nullptr;
    return platform.http.answer(index, 200, jsonText({{"payload", payloads_.at(std::stoul(*mid))}}));
  }
  return platform.http.answer(index, 200, R"({"count":12})");
}

Dictionary payloadOf(const std::string& title, const std::string& text, const Dictionary& templateData,
                     const std::string& templateId) {
  return {{"title", title}, {"msg", text}, {"templateId", templateId}, {"templateData", jsonText(templateData)}};
}

std::string exampleFile(const std::string& name) {
  std::ifstream file(std::filesystem::path(KESU_EXAMPLE_MESSAGES) / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Dictionary examplePayload(const std::string& name) {
  const auto message = parseJson(exampleFile(name + ".json"));
  Dictionary payload = *message->dictionary()->find("payload")->dictionary();
  const std::size_t slash = name.find('/');
  const std::string folder = slash == std::string::npos ? "" : name.substr(0, slash + 1);
  if (const Value* data = payload.find("templateData"); data != nullptr && data->dictionary() != nullptr) {
    payload.set("templateData", jsonText(withPictureUrl(*data->dictionary(), folder)));
  }
  return payload;
}

}  // namespace kesu::testing
