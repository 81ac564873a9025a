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

constexpr double kLongestSeconds = 3600.0;
constexpr double kPatienceSeconds = 1.0;  // How long after its end an animation waits for somebody to draw it.
constexpr double kWholeWay = 1.0 - 1e-9;  // Sums of frame times are a little off.
constexpr int kCompletionRounds = 8;      // Completions that end other animations are followed this far in one frame.

/// One value of a view on its way.
struct Motion {
  View* view;
  ViewProperty property;
  std::uint64_t group;
  ViewGeometry from;  // Only the property counts.
  ViewGeometry to;
};

/// What one call of animate() set in motion.
struct Group {
  std::uint64_t id;
  double seconds;
  AnimationCompletion completion;
  bool isOpen = true;                // Its changes are running.
  bool isFinished = true;            // Until one of its values is taken over.
  std::size_t values = 0;            // How many are still on their way.
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
  std::vector<std::uint64_t> open;  // Calls of animate() whose changes run now, one in the other; 0 sets at once.
  std::uint64_t lastId = 0;
  double lastTick = 0.0;
  double elapsed = 0.0;    // Time of the animations.
  bool wasTicked = false;  // Since the timer was set.
  bool isPosted = false;
  MainLoop* loop = nullptr;  // The one that has the timer.
  std::optional<MainLoop::TimerId> timer;

  Group* groupOf(std::uint64_t id);
  void takeOver(const View& view, std::optional<ViewProperty> property);
  void send(View& view, ViewProperty property, const ViewGeometry& to);
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

/// Takes one property of a view, or all, away from the animations that move it now: they end unfinished.
void Animator::State::takeOver(const View& view, std::optional<ViewProperty> property) {
  const auto isTaken = [&](const Motion& motion) {
    return motion.view == &view && (!property || motion.property == *property);
  };
  for (const Motion& motion : motions) {
    Group* group = isTaken(motion) ? groupOf(motion.group) : nullptr;
    if (group != nullptr) {
      group->isFinished = false;
      --group->values;
    }
  }
  std::erase_if(motions, isTaken);
  endEmptied();
}

/// Starts one property on its way in the innermost call of animate().
void Animator::State::send(View& view, ViewProperty property, const ViewGeometry& to) {
  const std::uint64_t id = open.back();
  const auto own = std::ranges::find_if(motions, [&](const Motion& motion) {
    return motion.view == &view && motion.property == property && motion.group == id;
  });
  if (own != motions.end()) {  // Set twice in the same changes.
    own->to = to;
    return;
  }
  takeOver(view, property);
  if (Group* group = groupOf(id)) {
    ++group->values;
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

/// Brings everything up to this group to its aim.
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

/// Ends what has lost all its values.
void Animator::State::endEmptied() {
  endGroups([](const Group& group) { return !group.isFinished && group.values == 0; });
  postCompletions();
}

/// Whoever took values away is in the midst of something: completions wait for the next frame or the main loop.
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

/// What a host's completion throws goes on; the others are told in the next frame or by the main loop.
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

/// Those that end other animations have these completed in the same frame, so that nothing between is seen.
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

/// The time of the animations never goes back. After one jump of a host's clock to a huge number it would have no room
/// for the steps of frames: it goes no further at once than the longest animation.
double Animator::State::timeOf(double tick) {
  const double now = std::isfinite(tick) ? tick : lastTick;
  elapsed += std::clamp(now - lastTick, 0.0, kLongestSeconds);
  lastTick = now;
  return elapsed;
}

/// Sees to it that animations end which nobody draws.
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

/// The changes of a call of animate() are over.
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

// Completions may own views, which say so here when they go.
Animator::~Animator() {
  state_->motions.clear();
  const std::vector<Group> groups = std::exchange(state_->groups, {});
  const std::vector<Group> ended = std::exchange(state_->ended, {});
}

void Animator::animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion) {
  const std::shared_ptr<State> state = state_;
  const double seconds = sensibleSeconds(durationSeconds);
  const std::uint64_t id = seconds > 0.0 ? ++state->lastId : 0;
  if (id != 0) {
    state->groups.push_back({id, seconds, std::move(completion)});
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
    ViewDrawing::noteChange(
        *window);  // Frames are wanted even where nothing moves: only they bring the completion in time.
  } else if (id == 0 && completion) {
    completion(true);
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
      state_->send(view, property, to);
      continue;
    }
    if (ViewDrawing::isAnimated(view)) {
      state_->takeOver(view, property);
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
  state_->takeOver(view, std::nullopt);
}

void animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion) {
  Animator::shared().animate(durationSeconds, changes, std::move(completion));
}

}  // namespace kesu
