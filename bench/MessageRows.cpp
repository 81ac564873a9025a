// What a message costs a host from the service's reply to the popup's end, and what the inbox costs when it is full.
#include <kesu.h>
#include <kesu/ui/Overlay.h>
#include <poll.h>
#include <turbojpeg.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "foundation/Json.h"
#include "records/DefaultsKeys.h"

namespace kesu::bench {
namespace {

constexpr int kPictureWidth = 1160;
constexpr int kPictureHeight = 652;
constexpr int kPictureQuality = 95;
constexpr int kFramesOfShowing = 40;

/// A service beside the library: answers with the main loop's next turn.
class NearService final : public HttpClient {
 public:
  std::string headers;
  std::string body;
  std::string picture;
  double bodyArrivedAt = 0.0;

  void send(HttpRequest request, Completion completion) override {
    const bool isBody = request.url.find("/getmessage/") != std::string::npos;
    MainLoop::shared().post([this, isBody, text = replyTo(request.url), completion = std::move(completion)] {
      bodyArrivedAt = isBody ? secondsNow() : bodyArrivedAt;
      HttpReply reply;
      reply.status = 200;
      reply.body = text;
      completion(std::move(reply));
    });
  }
  void sendInBackground(HttpRequest request, Completion completion) override {
    send(std::move(request), std::move(completion));  // Nothing here is completed off the main loop.
  }
  std::size_t pendingCount() override { return 0; }
  void shutdown(double /*graceSeconds*/) override {}
  void setConnectObserver(ConnectObserver /*observer*/) override {}

 private:
  std::string replyTo(const std::string& url) const {
    if (url.find("/newUnFetched/") != std::string::npos) {
      return headers;
    }
    return url.find("/getmessage/") != std::string::npos ? body : url.ends_with(".jpg") ? picture : "{}";
  }
};

std::string jsonText(const Dictionary& dictionary) {
  std::string text;
  writeJson(dictionary, text);
  return text;
}

/// A JPEG that takes as long to decode as a photograph of its size.
std::string photograph() {
  const auto wave = [](double at) { return static_cast<unsigned char>(127.0 + 120.0 * std::sin(at)); };
  std::vector<unsigned char> colors;
  for (int y = 0; y < kPictureHeight; ++y) {
    for (int x = 0; x < kPictureWidth; ++x) {
      colors.insert(colors.end(), {wave(x * 0.021), wave(y * 0.034 + x * 0.3), wave((x + y) * 0.013)});
    }
  }
  const std::unique_ptr<void, int (*)(tjhandle)> turbo(tjInitCompress(), tjDestroy);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  tjCompress2(turbo.get(), colors.data(), kPictureWidth, 0, kPictureHeight, TJPF_RGB, &bytes, &size, TJSAMP_444,
              kPictureQuality, 0);
  std::string file(reinterpret_cast<char*>(bytes), size);
  tjFree(bytes);
  return file;
}

Value button(const char* title) {
  return Value(Array{Value(title), Value("")});
}

std::string messageBody() {
  Dictionary data{{"imageSourceURL", "https://near/photograph.jpg"},
                  {"imageWidth", kPictureWidth},
                  {"imageHeight", kPictureHeight},
                  {"canvas_bgColor", "#14143A"}};
  data.set("buttons", Array{button("Watch now"), button("Remind me"), button("Not now")});
  std::string text;
  for (int i = 0; i < 8; ++i) {
    text += "Season two leaves the station tonight. ";
  }
  return jsonText({{"payload", Dictionary{{"title", "Night Train is back"},
                                          {"msg", text},
                                          {"templateId", "p_temp_2"},
                                          {"templateData", jsonText(data)}}}});
}

Platform& installedPlatform(const std::string& home, HttpClient& service) {
  PlatformOptions options;
  options.homeDirectory = home;
  options.reachabilityHost = "127.0.0.1";
  options.http = &service;
  options.logSink = [](int, std::string_view) {};
  installLinuxPlatform(options);
  Kesu::initialize("benchmark key");
  return Platform::current();
}

/// A host that shows messages, with a clock of its own for animations.
class Host {
 public:
  Host(Platform& platform, NearService& service) : platform_(platform), service_(service) { overlay_.layers(now_); }

  /// Opens the popup and draws it until it has arrived with its picture; records the longest times.
  void show() {
    present();
    drawLayers();
    firstFrameSeconds = secondsNow() - service_.bodyArrivedAt;
    for (int frame = 0; frame < kFramesOfShowing; ++frame) {
      turn();
      drawLayers();
    }
  }

  void close() {
    Kesu::dismissInAppNotificationUI(true);
    while (overlay_.isModal() || overlay_.needsFrame()) {
      turn();
      drawLayers();
    }
    turn();
  }

  /// The times of the frames of an animation that `begin` starts.
  template <typename Begin, typename Frame>
  std::vector<double> animation(Begin begin, Frame frame) {
    std::vector<double> times;
    begin();
    while (overlay_.needsFrame()) {
      now_ += kFrameSeconds;
      times.push_back(secondsOf([&] { frame(now_); }));
    }
    return times;
  }

  void press(RemoteButton pressed) {
    overlay_.press(pressed, PressPhase::Began);
    overlay_.press(pressed, PressPhase::Ended);
  }

  /// Runs one turn of the loop and records the longest.
  void turn() {
    pollfd work{platform_.mainLoop.fd(), POLLIN, 0};
    ::poll(&work, 1, 10);
    longestTurnSeconds = std::max(longestTurnSeconds, secondsOf([&] { platform_.mainLoop.pump(); }));
  }

  /// Opens and closes the popup while the frames of both slides are timed.
  template <typename Frame>
  void timeSlides(std::vector<double>& times, Frame frame) {
    present();
    frame(now_);  // The first one paints the card.
    const auto in = animation([] {}, frame);
    for (int i = 0; i < kFramesOfShowing; ++i) {
      turn();
      frame(now_ += kFrameSeconds);
    }
    const auto out = animation([] { Kesu::dismissInAppNotificationUI(true); }, frame);
    turn();
    times.insert(times.end(), in.begin(), in.end());
    times.insert(times.end(), out.begin(), out.end());
  }

  Overlay& overlay() { return overlay_; }

  double firstFrameSeconds = 0.0;
  double longestTurnSeconds = 0.0;

 private:
  void present() {
    Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::Unread, std::nullopt, {});
    while (!overlay_.isModal()) {
      turn();
    }
  }

  void drawLayers() { keep(overlay_.layers(now_ += kFrameSeconds).size()); }

  Platform& platform_;
  NearService& service_;
  Overlay overlay_;
  double now_ = 0.0;
};

void addAnimations(Figures& figures, Host& host) {
  constexpr int kRounds = 8;
  const auto layers = [&host](double now) { keep(host.overlay().layers(now).size()); };
  const auto flat = [&host](double now) { keep(host.overlay().flatten(now).damage); };
  std::vector<double> layerSlides;
  std::vector<double> flatSlides;
  for (int round = 0; round < kRounds; ++round) {
    host.timeSlides(layerSlides, layers);
    host.timeSlides(flatSlides, flat);
  }
  figures.addTimes("message slides, frame of layers", layerSlides, 0.5);
  figures.addTimes("message slides, flattened 1080p frame", flatSlides, 4.0);
  host.show();
  std::vector<double> focus;
  for (int round = 0; round < kRounds * 2; ++round) {
    const RemoteButton arrow = round % 4 < 2 ? RemoteButton::Right : RemoteButton::Left;
    const auto times = host.animation([&] { host.press(arrow); }, flat);
    focus.insert(focus.end(), times.begin(), times.end());
  }
  figures.addTimes("a button's focus, flattened 1080p frame", focus, 4.0);
  host.close();
}

Value header(std::size_t number) {
  return Dictionary{{"mid", "message-" + std::to_string(number)},
                    {"cid", "campaign-" + std::to_string(number % 50)},
                    {"title", "A title of some words"},
                    {"date", "2026-10-02"},
                    {"contentRead", number % 3 == 0}};
}

Value message(std::size_t number) {
  return Dictionary{{"mid", "message-" + std::to_string(number)},
                    {"payload", Dictionary{{"title", "A title of some words"},
                                           {"msg", std::string(300, 'm')},
                                           {"templateData", std::string(400, 't')}}}};
}

void fillInbox(UserDefaults& defaults) {
  constexpr std::size_t kHeaders = 5000;
  constexpr std::size_t kMessages = 1000;
  Array headers;
  for (std::size_t number = 0; number < kHeaders; ++number) {
    headers.push_back(header(number));
  }
  Array messages;
  for (std::size_t number = 0; number < kMessages; ++number) {
    messages.push_back(message(number));
  }
  defaults.set(kHeadersDefault, Value(headers));
  defaults.set(kPreviousHeadersDefault, Value(std::move(headers)));
  defaults.set(kReadMessagesDefault, Value(std::move(messages)));
  defaults.synchronize();
}

using Done = std::function<void()>;

/// How long an operation blocks the main thread at most: by its call, or by a turn that its reply causes.
double longestOf(Host& host, void (*operation)(const Done& done)) {
  constexpr int kRepeats = 5;
  std::vector<double> times;
  for (int i = 0; i < kRepeats; ++i) {
    bool isDone = false;
    host.longestTurnSeconds = 0.0;
    const double call = secondsOf([&] { operation([&isDone] { isDone = true; }); });
    while (!isDone) {
      host.turn();
    }
    times.push_back(std::max(call, host.longestTurnSeconds));
  }
  return median(times);
}

void askHeaders(KesuInAppMessageType type, const Done& done) {
  Kesu::getMessageHeadersForType(type, [done](const Object&) { done(); });
}

void addInbox(Figures& figures, Host& host) {
  fillInbox(Platform::current().defaults);
  const std::pair<const char*, void (*)(const Done&)> operations[] = {
      {"headers of new messages", [](const Done& done) { askHeaders(KesuInAppMessageType::Unread, done); }},
      {"all headers", [](const Done& done) { askHeaders(KesuInAppMessageType::All, done); }},
      {"one message",
       [](const Done& done) {
         Kesu::getMessageBodyWithCampaignID(Object("c"), Object("message-4999"), [done](const Object&) { done(); });
       }},
      {"the 1,000 messages that were read", [](const Done& done) {
         Kesu::getMessagesForType(KesuInAppMessageType::Read, [done](const Object&) { done(); });
       }}};
  for (const auto& [what, operation] : operations) {
    const double seconds = longestOf(host, operation);
    figures.add(
        Figure(std::string("inbox with 5,000 headers: ") + what, seconds * kMillisecondsPerSecond, "ms").atMost(10.0));
  }
}

}  // namespace

void measureMessage(Figures& figures) {
  const Scratch home;
  static NearService service;  // The library's exit handler is the last to use it.
  service.headers = jsonText({{"metadatalist", Array{Value(Dictionary{{"mid", "m"}, {"cid", "c"}})}}});
  service.body = messageBody();
  service.picture = photograph();
  Host host(installedPlatform(home.path(), service), service);
  const double before = residentMegabytes();
  const double privateBefore = privateMegabytes();
  host.show();
  figures.add(
      Figure("first message, body arrived to first frame", host.firstFrameSeconds * kMillisecondsPerSecond, "ms")
          .atMost(60.0));
  figures.add(Figure("longest turn of the main loop meanwhile", host.longestTurnSeconds * kMillisecondsPerSecond, "ms")
                  .atMost(4.0));
  figures.add(Figure("memory while it is shown", residentMegabytes() - before, "MB").atMost(25.0));
  host.close();
  figures.add(
      Figure("own memory kept after it closed: fonts, the cached picture", privateMegabytes() - privateBefore, "MB")
          .atMost(12.0));
  addAnimations(figures, host);
  figures.add(Figure("own memory kept after 18 popups, the flat frame too", privateMegabytes() - privateBefore, "MB")
                  .atMost(25.0));
  addInbox(figures, host);
}

}  // namespace kesu::bench
