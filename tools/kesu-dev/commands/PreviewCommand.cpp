#include <kesu.h>
#include <kesu/ui/Overlay.h>
#include <poll.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "drawing/Canvas.h"
#include "drawing/Pictures.h"
#include "drawing_cairo/SystemFonts.h"
#include "tools/kesu-dev/base/CommandLine.h"
#include "tools/kesu-dev/base/Console.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/commands/Commands.h"
#include "tools/kesu-dev/messages/PreviewService.h"
#include "tools/kesu-dev/messages/PreviewWindow.h"
#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::dev {
namespace {

constexpr double kPictureSeconds = 10.0;  // Nothing leaves this machine: only a fault takes longer.

struct PreviewOptions {
  std::string file;    // A message file.
  std::string output;  // The PNG file to be written; empty = a window.
  int width = 1920;    // In pixels.
  int height = 1080;
};

bool openUrl(const std::string& url) {
  print("would open " + url + "\n");
  return true;
}

void startLibrary(const std::string& home, HttpClient& service) {
  PlatformOptions platform;
  platform.homeDirectory = home;
  platform.messagingHost = "preview.invalid";
  platform.reachabilityHost = "127.0.0.1";
  platform.http = &service;
  platform.urlOpener = &openUrl;
  platform.logSink = [](int level, std::string_view text) {
    if (level <= 2) {  // All but the verbose lines.
      std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
    }
  };
  installLinuxPlatform(platform);
  Kesu::initialize("preview", 0);
  Application::shared().didFinishLaunching();
}

void showMessage() {
  Kesu::showInAppNotificationUIForDisplayMessages(
      KesuInAppMessageType::Unread, std::nullopt,
      [](const KesuInAppStatus& status) { print("pressed \"" + status.title.value_or("") + "\"\n"); });
}

// Pumps until the popup and its picture are there. Returns false when the popup does not appear.
bool waitForPopup(Overlay& overlay) {
  using Clock = std::chrono::steady_clock;
  const auto latest = Clock::now() + std::chrono::duration<double>(kPictureSeconds);
  MainLoop& loop = MainLoop::shared();
  while (!overlay.isModal() && Clock::now() < latest) {
    pollfd work{loop.fd(), POLLIN, 0};
    ::poll(&work, 1, 10);
    loop.pump();
  }
  do {
    loop.pump(kPictureSeconds);
    Platform::current().imageWorker.drain(kPictureSeconds);  // The picture's decoding ends with a task for the loop.
  } while (loop.nextDue() == 0.0);
  return overlay.isModal();
}

// Draws the popup at rest over a dark screen.
ImagePtr finishedPicture(Overlay& overlay, int width, int height) {
  // Animations advance from frame to frame; within three seconds all have ended.
  for (const double seconds : {0.0, 1.0, 2.0, 3.0}) {
    overlay.layers(seconds);
  }
  const ImagePtr popup = overlay.snapshot();
  const Rect screen{0.0, 0.0, static_cast<double>(width), static_cast<double>(height)};
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFF000000U);
  const auto canvas = makeCanvas({pixels.data(), width, height, width});
  canvas->fillGradient(screen, {0.16, 0.20, 0.30, 1.0}, {0.04, 0.05, 0.09, 1.0});
  canvas->drawImage(popup, screen, screen);
  return std::make_shared<const Image>(width, height, std::move(pixels));
}

std::string writePicture(const PreviewOptions& options) {
  Overlay overlay;
  overlay.setPixelSize(options.width, options.height);
  showMessage();
  if (!waitForPopup(overlay)) {
    return "the popup did not appear";
  }
  const auto png = encodePng(*finishedPicture(overlay, options.width, options.height));
  std::ofstream file(options.output, std::ios::binary);
  file << png.value_or("");
  return png && file.flush().good() ? "" : "cannot write " + options.output;
}

std::string readSize(const std::string& value, PreviewOptions& options) {
  // Below, the popup has no room; above, a picture takes 64 MB and more.
  constexpr std::int64_t kSmallest = 64;
  constexpr std::int64_t kLargest = 4096;
  const std::size_t cross = value.find('x');
  const auto width = parseDecimal(value.substr(0, cross));
  const auto height = cross == std::string::npos ? std::nullopt : parseDecimal(value.substr(cross + 1));
  for (const auto& side : {width, height}) {
    if (!side || *side < kSmallest || *side > kLargest) {
      return "the size is WIDTHxHEIGHT, 64 to 4096 pixels each, not " + value;
    }
  }
  options.width = static_cast<int>(*width);
  options.height = static_cast<int>(*height);
  return {};
}

int preview(const PreviewOptions& options) {
  const std::filesystem::path file(options.file);
  const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
  // Static: the library uses them until the process ends.
  static const MessageDirectory directory(folder, PreviewService::kOrigin);
  std::string problem;
  auto message = directory.message(file.filename().string(), problem);
  if (!message) {
    return fail(options.file + ": " + problem);
  }
  static const loopback::TemporaryDirectory home;
  static PreviewService service(directory, std::move(*message));
  startLibrary(home.path(), service);
  problem =
      options.output.empty() ? runPreviewWindow(options.width, options.height, &showMessage) : writePicture(options);
  Application::shared().willTerminate();
  forgetSystemFonts();
  return problem.empty() ? 0 : fail(problem);
}

}  // namespace

void addPreviewCommand(Program& program) {
  const auto options = std::make_shared<PreviewOptions>();
  Command command =
      program.command("preview",
                      "show a message file in the library's popup, in a window with remote keys (arrows,\n"
                      "Return, Escape), or as a picture",
                      [options] { return preview(*options); });
  command.argument("FILE", "the message file", options->file);
  command.option("-o,--output", "FILE", "write a PNG picture instead of opening a window",
                 [options](const std::string& name) {
                   options->output = name;
                   return name.empty() ? std::string("-o needs the name of a file") : std::string();
                 });
  command.option("--size", "WIDTHxHEIGHT", "of the screen in pixels (default: 1920x1080)",
                 [options](const std::string& value) { return readSize(value, *options); });
}

}  // namespace kesu::dev
