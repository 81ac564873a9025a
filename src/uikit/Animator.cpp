#include "uikit/Animator.h"

#include <kesu/platform/Platform.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/Afterwards.h"
#include "foundation/SharedInstance.h"
#include "uikit/KeyWindow.h"
#include "uikit/ViewDrawing.h"
#include "uikit/ViewProperty.h"

namespace kesu {
namespace {

constexpr double kLongestSeconds = 3600.0;  // Also of one tick: see timeOf().
constexpr double kPatienceSeconds = 1.0;    // How long after its end an animation waits for a frame.
constexpr double kWholeWay = 1.0 - 1e-9;    // Sums of frame times have rounding errors.
constexpr int kCompletionRounds = 8;        // Completions that end other animations: limits an endless chain per frame.

/// One property of a view that is animated.
struct Motion {
  View* view;
  ViewProperty property;
  std::uint64_t group;
  ViewGeometry from;  // Only `property` of both is used.
  ViewGeometry to;
};

/// The motions of one call of animate().
struct Group {
  std::uint64_t id;
  double seconds;
  AnimationCompletion completion;
  bool isOpen = true;                // Its changes are running.
  bool isFinished = true;            // Until another animation replaces one of its motions.
  std::size_t motions = 0;           // How many are left.
  std::optional<double> began = {};  // Nothing before the first tick.

  double partAt(double time) const {
    const double part = (time - began.value_or(time)) / seconds;
    return part < kWholeWay ? part : 1.0;
  }
};

/// Slow at both ends.
double eased(double part) {
  return part * part * (3.0 - 2.0 * part);
}

double sensibleSeconds(double seconds) {
  return seconds > 0.0 ? std::min(seconds, kLongestSeconds) : 0.0;
}

}  // namespace

struct Animator::State : std::enable_shared_from_this<Animator::State> {
  std::vector<Motion> motions;
  std::vector<Group> groups;        // In the order in which they began.
  std::vector<Group> ended;         // Their completions are due.
  std::vector<std::uint64_t> open;  // Nested calls of animate() whose changes run now; 0 sets at once.
  std::uint64_t lastId = 0;
  double lastTick = 0.0;
  double elapsed = 0.0;    // The time of the animations: the sum of all steps forward.
  bool wasTicked = false;  // Since the timer was set.
  bool isPosted = false;
  MainLoop* loop = nullptr;  // The one that has the timer.
  std::optional<MainLoop::TimerId> timer;

  Group* groupOf(std::uint64_t id);
  void interrupt(const View& view, std::optional<ViewProperty> property);
  void start(View& view, ViewProperty property, const ViewGeometry& to);
  void advance(double time);
  void finish(std::uint64_t lastOfThem);
  void endGroups(const std::function<bool(const Group&)>& isOver);
  void endEmptied();
  void postCompletions();
  void runEach(std::vector<Group>& batch);
  void runCompletions();
  void close(std::uint64_t id);
  double timeOf(double tick);
  void setTimer();
  void timerFired(std::uint64_t lastOfTimer);
};

Group* Animator::State::groupOf(std::uint64_t id) {
  const auto group = std::ranges::find(groups, id, &Group::id);
  return group != groups.end() ? &*group : nullptr;
}

/// Removes the motions of one property of a view, or all of its motions: their animations end unfinished.
void Animator::State::interrupt(const View& view, std::optional<ViewProperty> property) {
  const auto isInterrupted = [&](const Motion& motion) {
    return motion.view == &view && (!property || motion.property == *property);
  };
  for (const Motion& motion : motions) {
    Group* group = isInterrupted(motion) ? groupOf(motion.group) : nullptr;
    if (group != nullptr) {
      group->isFinished = false;
      --group->motions;
    }
  }
  std::erase_if(motions, isInterrupted);
  endEmptied();
}

/// Starts the motion of one property in the innermost call of animate().
void Animator::State::start(View& view, ViewProperty property, const ViewGeometry& to) {
  const std::uint64_t id = open.back();
  const auto own = std::ranges::find_if(motions, [&](const Motion& motion) {
    return motion.view == &view && motion.property == property && motion.group == id;
  });
  if (own != motions.end()) {  // Set twice in the same changes.
    own->to = to;
    return;
  }
  interrupt(view, property);
  if (Group* group = groupOf(id)) {
    ++group->motions;
    motions.push_back({&view, property, id, ViewDrawing::presented(view), to});
  }
}

void Animator::State::advance(double time) {
  for (Group& group : groups) {
    group.began = group.began.value_or(time);
  }
  for (const Motion& motion : motions) {
    ViewGeometry next = ViewDrawing::presented(*motion.view);
    moveTo(motion.property, motion.from, motion.to, eased(groupOf(motion.group)->partAt(time)), next);
    ViewDrawing::present(*motion.view, next);
  }
  endGroups([&](const Group& group) { return group.partAt(time) >= 1.0; });
}

/// Moves everything up to this group to its final value.
void Animator::State::finish(std::uint64_t lastOfThem) {
  for (const Motion& motion : motions) {
    if (motion.group <= lastOfThem) {
      ViewGeometry next = ViewDrawing::presented(*motion.view);
      moveTo(motion.property, motion.from, motion.to, 1.0, next);
      ViewDrawing::present(*motion.view, next);
    }
  }
  endGroups([&](const Group& group) { return group.id <= lastOfThem; });
  runCompletions();
}

void Animator::State::endGroups(const std::function<bool(const Group&)>& isOver) {
  const auto isEnding = [&](const Group& group) { return !group.isOpen && isOver(group); };
  std::erase_if(motions, [&](const Motion& motion) { return isEnding(*groupOf(motion.group)); });
  const auto first = std::stable_partition(groups.begin(), groups.end(), std::not_fn(isEnding));
  ended.insert(ended.end(), std::make_move_iterator(first), std::make_move_iterator(groups.end()));
  groups.erase(first, groups.end());
}

/// Ends animations that have lost all their motions.
void Animator::State::endEmptied() {
  endGroups([](const Group& group) { return !group.isFinished && group.motions == 0; });
  postCompletions();
}

/// Completions must not run inside the call that interrupted them: they wait for the next frame or the main loop.
void Animator::State::postCompletions() {
  if (ended.empty() || isPosted || !Platform::isInstalled()) {
    return;
  }
  isPosted = true;
  Platform::current().mainLoop.post([self = weak_from_this()] {
    if (const auto state = self.lock()) {
      state->isPosted = false;
      state->runCompletions();
    }
  });
}

/// Lets an exception of a host's completion through; the remaining ones run in the next frame or the main loop.
void Animator::State::runEach(std::vector<Group>& batch) {
  for (auto group = batch.begin(); group != batch.end(); ++group) {
    try {
      if (group->completion) {
        group->completion(group->isFinished);
      }
    } catch (...) {
      ended.insert(ended.begin(), std::make_move_iterator(std::next(group)), std::make_move_iterator(batch.end()));
      postCompletions();
      throw;
    }
  }
}

/// Animations that are ended by a completion are completed in the same frame, so that no state between is seen.
void Animator::State::runCompletions() {
  for (int round = 0; round < kCompletionRounds && !ended.empty(); ++round) {
    std::vector<Group> batch = std::exchange(ended, {});
    std::ranges::sort(batch, {}, &Group::id);
    runEach(batch);
  }
  if (groups.empty() && timer && Platform::isInstalled() && loop == &Platform::current().mainLoop) {
    loop->cancel(*std::exchange(timer, std::nullopt));
  }
}

/// The time of the animations never goes back. One jump of a host's clock to a huge number would leave no precision for
/// the steps of frames: each is clamped to the longest animation.
double Animator::State::timeOf(double tick) {
  const double now = std::isfinite(tick) ? tick : lastTick;
  elapsed += std::clamp(now - lastTick, 0.0, kLongestSeconds);
  lastTick = now;
  return elapsed;
}

/// Ends animations that are not drawn, which get no ticks.
void Animator::State::setTimer() {
  if (!Platform::isInstalled() || groups.empty() || (timer && loop == &Platform::current().mainLoop)) {
    return;
  }
  const double longest = std::ranges::max_element(groups, {}, &Group::seconds)->seconds;
  loop = &Platform::current().mainLoop;
  wasTicked = false;
  timer = loop->schedule(longest + kPatienceSeconds, false, [self = weak_from_this(), last = lastId] {
    if (const auto state = self.lock()) {
      state->timerFired(last);
    }
  });
}

/// Closes a call of animate() after its changes.
void Animator::State::close(std::uint64_t id) {
  open.pop_back();
  if (Group* group = groupOf(id)) {
    group->isOpen = false;
    endEmptied();
    setTimer();
  }
}

void Animator::State::timerFired(std::uint64_t lastOfTimer) {
  timer.reset();
  if (!wasTicked) {
    finish(lastOfTimer);
  }
  setTimer();
}

Animator& Animator::shared() {
  return SharedInstance<Animator>::get();
}

Animator::Animator() : state_(std::make_shared<State>()) {}

// Completions may own views, which call viewDestroyed() when they are released here: motions first.
Animator::~Animator() {
  state_->motions.clear();
  const std::vector<Group> groups = std::exchange(state_->groups, {});
  const std::vector<Group> ended = std::exchange(state_->ended, {});
}

void Animator::animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion) {
  const std::shared_ptr<State> state = state_;
  const double seconds = sensibleSeconds(durationSeconds);
  const std::uint64_t id = seconds > 0.0 ? ++state->lastId : 0;
  AnimationCompletion completeAtOnce;
  if (id != 0) {
    state->groups.push_back({id, seconds, std::move(completion)});
  } else {
    completeAtOnce = std::move(completion);
  }
  state->open.push_back(id);
  afterwards(
      [&] {
        if (changes) {
          changes();
        }
      },
      [&] { state->close(id); });
  Window* window = keyWindow();
  if (id != 0 && window != nullptr) {
    ViewDrawing::noteChange(*window);  // Even where nothing moves: only frames run the completion in time.
  } else if (completeAtOnce) {
    completeAtOnce(true);
  }
}

void Animator::tick(double nowSeconds) {
  state_->wasTicked = true;
  state_->advance(state_->timeOf(nowSeconds));
  state_->runCompletions();
}

bool Animator::isRunning() const {
  return !state_->groups.empty() || !state_->ended.empty();
}

void Animator::finishAll() {
  state_->finish(state_->lastId);
}

void Animator::viewMoved(View& view, const ViewGeometry& from, const ViewGeometry& to) {
  const bool isGradual = !state_->open.empty() && state_->open.back() != 0;
  ViewGeometry next = ViewDrawing::presented(view);
  for (const ViewProperty property : kViewProperties) {
    if (isSame(property, from, to)) {
      continue;
    }
    if (isGradual) {
      state_->start(view, property, to);
      continue;
    }
    if (ViewDrawing::isAnimated(view)) {
      state_->interrupt(view, property);
    }
    moveTo(property, to, to, 1.0, next);
  }
  if (isGradual) {
    ViewDrawing::setAnimated(view);
    ViewDrawing::noteChangeIn(view);
  }
  ViewDrawing::present(view, next);
}

void Animator::viewDestroyed(View& view) {
  state_->interrupt(view, std::nullopt);
}

void animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion) {
  Animator::shared().animate(durationSeconds, changes, std::move(completion));
}

}  // namespace kesu
