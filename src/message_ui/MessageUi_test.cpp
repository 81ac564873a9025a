#include <gtest/gtest.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "foundation/Mutex.h"
#include "testing/MessageScreen.h"
#include "testing/RecordingPoster.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

/// A worker with a thread of its own, as pictures have in a real process.
class ThreadedQueue final : public BackgroundQueue {
 public:
  ~ThreadedQueue() override { shutdown(0.0); }

  void post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    changed_.notify_all();
  }

  void postAfter(double /*seconds*/, Task /*task*/) override {}  // Pictures plan nothing.

  bool drain(double) override {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return tasks_.empty() && !isBusy_; });
    return true;
  }

  void shutdown(double) override {
    {
      const std::lock_guard lock(mutex_);
      isDown_ = true;
      changed_.notify_all();
    }
    if (thread_.joinable()) {
      thread_.join();
    }
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return isDown_ || !tasks_.empty(); });
      if (tasks_.empty()) {
        return;
      }
      {
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        isBusy_ = true;
        lock.unlock();
        task();
      }
      lock.lock();
      isBusy_ = false;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool isBusy_ = false;
  bool isDown_ = false;
  std::thread thread_{[this] { run(); }};
};

/// Presses, closes, shows and waits at random, while the service answers in any order.
class Chance {
 public:
  explicit Chance(unsigned seed) : random_(seed) {
    Platform::install(&platform_);
    screen_.emplace(platform_);
    picture_ = testing::pictureUrl(40, 30);
    body_ = *encodePng(Image(40, 30, std::vector<std::uint32_t>(1200, 0xFF808080U)));
    screen_->presenter->setCallbacks([this](const KesuInAppStatus&) { mayCloseInside(); }, nullptr);
    KesuInAppOptions options;
    options.didPresent = options.didDismiss = [this] { mayCloseInside(); };
    options.shouldShowMessage = [this](const Dictionary&) { return upTo(20) != 0; };
    screen_->presenter->setOptions(options);
  }

  ~Chance() {
    worker_.drain(0.0);
    screen_->presenter.reset();  // Late replies find no presenter.
    fakes_.mainLoop.runAll();
    screen_.reset();
    worker_.drain(0.0);
    fakes_.mainLoop.runAll();
    Platform::install(&fakes_.platform);
  }

  void step() {
    KesuInAppPresenter& presenter = *screen_->presenter;
    switch (upTo(10)) {
      case 0:
        if (!presenter.isInAppShown() || upTo(20) == 0) {
          presenter.presentWithController(nullptr,
                                          upTo(4) == 0 ? KesuInAppMessageType::Read : KesuInAppMessageType::Unread);
        }
        break;
      case 1:
        if (upTo(6) == 0) {
          presenter.dismissViewController(upTo(2) == 0);
        }
        break;
      case 2:
      case 3:
      case 4:
        answerSomething();
        break;
      case 5:
        WindowInput::of(screen_->window).swipe(upTo(2) == 0 ? SwipeDirection::Left : SwipeDirection::Right);
        break;
      case 6:
        WindowInput::of(screen_->window)
            .press(static_cast<RemoteButton>(upTo(upTo(6) == 0 ? 7 : 5)), static_cast<PressPhase>(upTo(3)));
        break;
      case 7:
        Animator::shared().tick(now_ += upTo(100) / 500.0);
        break;
      default:
        fakes_.mainLoop.pump();
        break;
    }
    check();
  }

  int shown = 0;

 private:
  unsigned upTo(unsigned count) { return static_cast<unsigned>(random_()) % count; }

  void mayCloseInside() {
    ++shown;
    if (screen_->presenter && upTo(8) == 0) {
      screen_->presenter->dismissViewController(upTo(2) == 0);
    }
  }

  void answerSomething() {
    for (; seen_ < fakes_.http.requestCount(); ++seen_) {
      open_.push_back(seen_);
    }
    if (open_.empty()) {
      return;
    }
    const std::size_t at = upTo(static_cast<unsigned>(open_.size()));
    const std::size_t index = open_[at];
    open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(at));
    fakes_.http.answer(index, upTo(8) == 0 ? 500 : 200, replyTo(fakes_.http.request(index).url));
  }

  std::string replyTo(const std::string& url) {
    if (url.find("newUnFetched/") != std::string::npos) {
      std::vector<std::string> identifiers(upTo(4));
      for (std::string& one : identifiers) {
        one = "m" + std::to_string(upTo(40));
      }
      return testing::headersReply(identifiers);
    }
    if (url.find("getmessage/") == std::string::npos) {
      return body_;
    }
    Array buttons;
    for (unsigned i = upTo(4); i > 0; --i) {
      buttons.push_back(Value(Array{Value("Button"), Value(upTo(2) == 0 ? "tv://x" : "https://h.example/?wh=true")}));
    }
    Dictionary data{{"buttons", buttons}, {"imageWidth", static_cast<int>(upTo(3)) * 40}, {"imageHeight", 30}};
    data.set("imageSourceURL", upTo(3) == 0 ? picture_ : upTo(2) == 0 ? "https://images.example/a.png" : "");
    return testing::bodyReply("Title", std::string(upTo(3) * 400, 'm'), data, upTo(2) == 0 ? "p_temp_1" : "other");
  }

  /// What must hold at every moment.
  void check() {
    const KesuInAppPresenter& presenter = *screen_->presenter;
    const bool isUp = presenter.popupController() != nullptr;
    ASSERT_TRUE(presenter.isInAppShown() || !isUp);
    if (isUp) {
      ASSERT_EQ(presenter.popupController()->contentView().superview(), &screen_->window) << "what is up can be seen";
      ASSERT_LE(presenter.tableView()->bounds().height, 1080.0);
      ASSERT_GE(presenter.showIndex(), 0);
      ASSERT_LT(presenter.showIndex(), static_cast<std::int64_t>(presenter.responseValue().size()) + 1);
    }
    if (!Animator::shared().isRunning() && fakes_.mainLoop.nextDue() != 0.0) {
      ASSERT_EQ(screen_->window.subviews().size(), isUp ? 1U : 0U) << "no stale popup stays";
    }
  }

  std::mt19937 random_;
  testing::ScopedPlatform fakes_;
  ThreadedQueue worker_;
  Platform platform_{fakes_.clock,  fakes_.random, fakes_.files,     fakes_.defaults,
                     fakes_.outbox, fakes_.http,   fakes_.mainLoop,  fakes_.background,
                     worker_,       fakes_.locale, fakes_.bundle,    fakes_.reachability,
                     fakes_.device, fakes_.log,    fakes_.urlOpener, fakes_.notifications};
  testing::RecordingPoster poster_;
  std::optional<testing::MessageScreen> screen_;
  std::vector<std::size_t> open_;
  std::size_t seen_ = 0;
  std::string picture_;
  std::string body_;
  double now_ = 0.0;
};

TEST(Interleaving, OfLoadingPagingClosingAndPresentingIsHarmless) {
  constexpr int kSteps = 1000;
  int shown = 0;
  for (unsigned seed = 1; seed <= 10; ++seed) {
    Chance chance(seed);
    for (int i = 0; i < kSteps && !::testing::Test::HasFatalFailure(); ++i) {
      chance.step();
    }
    shown += chance.shown;
  }
  EXPECT_GT(shown, 200) << "it was really used";
}

}  // namespace
}  // namespace kesu
