#pragma once

#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/Label.h>

#include <string>
#include <vector>

#include "message_ui/KesuInAppPresenter.h"
#include "testing/MessageScreen.h"
#include "testing/RecordingPoster.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"

namespace kesu::testing {

/// A test of a presenter on doubles: the test plays the service, the remote and the clock.
class PresenterTest : public ::testing::Test {
 protected:
  PresenterTest() {
    presenter().setCallbacks([this](const KesuInAppStatus& status) { told.push_back(status); }, nullptr);
  }

  KesuInAppPresenter& presenter() { return *screen.presenter; }

  bool answer(const std::string& path, const std::string& reply, int status = 200) {
    return answerOldest(platform, path, reply, status);
  }

  void present(KesuInAppMessageType type = KesuInAppMessageType::Unread) {
    presenter().presentWithController(nullptr, type);
    platform.settle();
  }

  /// Presents messages and answers with the first one's body.
  void show(const std::vector<std::string>& identifiers, const std::string& body) {
    present();
    ASSERT_TRUE(answer("newUnFetched/", headersReply(identifiers)));
    ASSERT_TRUE(answer("getmessage/", body));
    pass(0.4);
  }

  void pass(double seconds) {
    Animator::shared().tick(now);
    now += seconds;
    Animator::shared().tick(now);
    platform.settle();
  }

  bool isUp() { return presenter().popupController() != nullptr && !screen.window.subviews().empty(); }

  std::string focusedTitle() {
    const auto* button = dynamic_cast<const Button*>(screen.window.focusedView());
    return button != nullptr ? button->title() : "<none>";
  }

  /// All texts in the popup.
  std::string texts(const View& view) {
    const auto* label = dynamic_cast<const Label*>(&view);
    std::string found = label != nullptr ? label->text() + "|" : "";
    for (const ViewPtr& inside : view.subviews()) {
      found += inside->isHidden() ? "" : texts(*inside);
    }
    return found;
  }

  const ImageView* picture(const View& view) {
    if (const auto* found = dynamic_cast<const ImageView*>(&view)) {
      return found;
    }
    for (const ViewPtr& inside : view.subviews()) {
      if (const ImageView* found = picture(*inside)) {
        return found;
      }
    }
    return nullptr;
  }

  ScopedPlatform platform;
  RecordingPoster poster;
  MessageScreen screen{platform.platform};
  std::vector<KesuInAppStatus> told;
  double now = 100.0;
};

/// Template data with two buttons, one with a URL and one without an action.
inline const Dictionary kTwoButtons{{"buttons", buttonEntries({{"Watch", "tv://watch"}, {"Later", ""}})}};

}  // namespace kesu::testing
