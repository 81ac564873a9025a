#pragma once

#include <kesu.h>
#include <kesu/ui/Overlay.h>

#include <memory>
#include <string>
#include <vector>

#include "testing/ScopedPlatform.h"

namespace kesu::testing {

/// The whole library on a platform of doubles, with a screen on which messages appear and a service that sends them.
/// Pictures of kExamplePictures are files of the example messages; the other hosts answer with 404 or never. One at a
/// time, on the test's thread.
class PopupStage {
 public:
  static constexpr const char* kExamplePictures = "https://pictures.example/";
  static constexpr const char* kSlowPictures = "https://slow.example/";
  static constexpr const char* kGonePictures = "https://gone.example/";

  PopupStage();
  ~PopupStage();

  PopupStage(const PopupStage&) = delete;
  PopupStage& operator=(const PopupStage&) = delete;

  /// Opens the popup on messages with these payloads, and waits until it is docked.
  void show(std::vector<Dictionary> payloads);
  void close();

  /// Lets the service answer and animations end.
  void settle();

  void hold(RemoteButton button);  ///< Down, and not up.
  void press(RemoteButton button);
  void swipe(SwipeDirection direction);

  /// Returns a picture of the screen in this size; transparent beside the popup.
  ImagePtr picture(int width, int height);

  /// Returns what a screen reader reads of the popup, each followed by a space, the focused element with an asterisk.
  std::string heard() const;

  ScopedPlatform platform;
  std::unique_ptr<Overlay> overlay;

 private:
  void answerRequests();
  bool answer(std::size_t index, const HttpRequest& request);

  std::vector<Dictionary> payloads_;
  double now_ = 0.0;
};

/// A payload as a service would send it.
Dictionary payloadOf(const std::string& title, const std::string& text, const Dictionary& templateData,
                     const std::string& templateId = "p_temp_2");

/// The payload of a file of the example messages: a name such as "awkward/arabic", without ".json".
Dictionary examplePayload(const std::string& name);

/// A file of the example messages.
std::string exampleFile(const std::string& name);

}  // namespace kesu::testing
