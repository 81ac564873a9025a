#include "tools/kesu-dev/commands/Preview.h"

#include <kesu.h>
#include <kesu/ui/Overlay.h>
#include <poll.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "graphics/Canvas.h"
#include "graphics/PngEncoder.h"
#include "graphics/SystemFonts.h"
#include "tools/kesu-dev/messages/PreviewService.h"
#include "tools/kesu-dev/messages/PreviewWindow.h"

namespace kesu::dev {
namespace {

constexpr double kPatienceSeconds = 10.0;

int fail(const std::string& sentence) {
  std::fprintf(stderr, "kesu-dev: %s\n", sentence.c_str());
  return 1;
}

/// The library's home for as long as this process lives.
class TemporaryHome {
 public:
  TemporaryHome() {
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "kesu-preview-XXXXXX").string();
    path_ = ::mkdtemp(name.data()) != nullptr ? name : std::string();
  }
  ~TemporaryHome() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

bool openUrl(const std::string& url) {
  std::printf("would open %s\n", url.c_str());
  std::fflush(stdout);
  return true;
}

void startLibrary(const std::string& home, HttpClient& service) {
  PlatformOptions options;
  options.homeDirectory = home;
  options.messagingHost = "preview.invalid";
  options.reachabilityHost = "127.0.0.1";
  options.http = &service;
  options.urlOpener = &openUrl;
  options.logSink = [](int level, std::string_view text) {
    if (level <= 2) {
      std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
    }
  };
  installLinuxPlatform(options);
  Kesu::initialize("preview", 0);
  Application::shared().didFinishLaunching();
}

void showMessage() {
  Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::Unread, std::nullopt,
                                                  [](const KesuInAppStatus& status) {
                                                    std::printf("pressed \"%s\"\n", status.title.value_or("").c_str());
                                                    std::fflush(stdout);
                                                  });
}

/// Pumps until the popup is up and its picture has come. False when it does not appear.
bool waitForPopup(Overlay& overlay) {
  using Clock = std::chrono::steady_clock;
  const auto latest = Clock::now() + std::chrono::duration<double>(kPatienceSeconds);
  MainLoop& loop = MainLoop::shared();
  while (!overlay.isModal() && Clock::now() < latest) {
    pollfd work{loop.fd(), POLLIN, 0};
    ::poll(&work, 1, 10);
    loop.pump();
  }
  do {
    loop.pump(kPatienceSeconds);
    Platform::current().imageWorker.drain(kPatienceSeconds);  // The picture's decoding ends with a task for the loop.
  } while (loop.nextDue() == 0.0);
  return overlay.isModal();
}

/// The popup at rest over a dark screen.
ImagePtr finishedPicture(Overlay& overlay, int width, int height) {
  for (const double seconds : {0.0, 1.0, 2.0, 3.0}) {
    overlay.layers(seconds);
  }
  const ImagePtr popup = overlay.snapshot();
  const Rect screen{0.0, 0.0, static_cast<double>(width), static_cast<double>(height)};
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFF000000U);
  Canvas canvas(pixels.data(), width, height, width, 1.0);
  canvas.fillGradient(screen, {0.16, 0.20, 0.30, 1.0}, {0.04, 0.05, 0.09, 1.0});
  canvas.drawImage(popup, screen, screen);
  return std::make_shared<const Image>(width, height, std::move(pixels));
}

std::string writePicture(const PreviewOptions& preview) {
  Overlay overlay;
  overlay.setPixelSize(preview.width, preview.height);
  showMessage();
  if (!waitForPopup(overlay)) {
    return "the popup did not appear";
  }
  const auto png = encodePng(*finishedPicture(overlay, preview.width, preview.height));
  std::ofstream file(preview.output, std::ios::binary);
  file << png.value_or("");
  return png && file.flush().good() ? "" : "cannot write " + preview.output;
}

}  // namespace

int runPreview(const CommandLine& line) {
  const std::filesystem::path file(line.preview.file);
  const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
  static const MessageDirectory directory(folder, PreviewService::kOrigin);
  std::string problem;
  auto message = directory.message(file.filename().string(), problem);
  if (!message) {
    return fail(line.preview.file + ": " + problem);
  }
  static const TemporaryHome home;
  static PreviewService service(directory, std::move(*message));
  startLibrary(home.path(), service);
  const PreviewOptions& preview = line.preview;
  problem =
      preview.output.empty() ? runPreviewWindow(preview.width, preview.height, &showMessage) : writePicture(preview);
  Application::shared().willTerminate();
  forgetSystemFonts();
  return problem.empty() ? 0 : fail(problem);
}

}  // namespace kesu::dev
