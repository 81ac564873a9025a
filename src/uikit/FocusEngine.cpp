#include "uikit/FocusEngine.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace kesu {
namespace {

// A point aside counts as two ahead: a row further down is still nearer than the next column.
constexpr double kAsideWeight = 2.0;
constexpr double kOffCenterWeight = 0.25;  // Among equals the one whose middle is nearer.

/// A frame in the direction of an arrow: `near` to `far` along it, `low` to `high` across.
struct Span {
  double near;
  double far;
  double low;
  double high;

  double middle() const { return (near + far) / 2.0; }
  double across() const { return (low + high) / 2.0; }
};

Span seenBy(RemoteButton arrow, const Rect& frame) {
  switch (arrow) {
    case RemoteButton::Up:
      return {-frame.bottom(), -frame.y, frame.x, frame.right()};
    case RemoteButton::Down:
      return {frame.y, frame.bottom(), frame.x, frame.right()};
    case RemoteButton::Left:
      return {-frame.right(), -frame.x, frame.y, frame.bottom()};
    case RemoteButton::Right:
    case RemoteButton::Select:
    case RemoteButton::Menu:
    case RemoteButton::PlayPause:
      break;
  }
  return {frame.x, frame.right(), frame.y, frame.bottom()};
}

double ahead(const Span& from, const Span& to) {
  return std::max(0.0, to.near - from.far);
}

double aside(const Span& from, const Span& to) {
  return std::max({0.0, to.low - from.high, from.low - to.high});
}

double cost(const Span& from, const Span& to) {
  return ahead(from, to) + kAsideWeight * aside(from, to) + kOffCenterWeight * std::abs(to.across() - from.across());
}

/// Whether an item as a whole, not just its middle, lies in the arrow's direction.
bool isAhead(const Span& from, const Span& to) {
  const bool isBeyond = to.near >= from.middle() && to.middle() >= from.far && to.middle() > from.middle();
  return isBeyond && aside(from, to) <= ahead(from, to);
}

/// One arrow of one item.
struct Slot {
  std::size_t item;
  std::size_t arrow;
};

class Graph {
 public:
  explicit Graph(const std::vector<Rect>& frames) : frames_(frames), moves_(frames.size()) {
    for (const Slot& slot : slots()) {
      target(slot) = best(slot, [&](std::size_t to) { return isAhead(span(slot, slot.item), span(slot, to)); });
    }
  }

  void connect() {
    if (isConnected()) {
      return;
    }
    addFurtherAside();
    if (isConnected()) {
      return;
    }
    fillAll();
    redirect();
  }

  const std::vector<FocusMoves>& moves() const { return moves_; }

 private:
  std::optional<std::size_t>& target(const Slot& slot) { return moves_[slot.item][slot.arrow]; }
  Span span(const Slot& slot, std::size_t item) const {
    return seenBy(static_cast<RemoteButton>(slot.arrow), frames_[item]);
  }

  std::vector<Slot> slots() const {
    std::vector<Slot> all;
    for (std::size_t item = 0; item < frames_.size(); ++item) {
      for (std::size_t arrow = 0; arrow < FocusMoves().size(); ++arrow) {
        all.push_back({item, arrow});
      }
    }
    return all;
  }

  /// A strict order of all items along an arrow: following it leads from everywhere to the very last.
  bool isInFront(const Slot& slot, std::size_t to) const {
    const double here = span(slot, slot.item).middle();
    const double there = span(slot, to).middle();
    return there > here || (there == here && (slot.arrow % 2 == 0 ? to < slot.item : to > slot.item));
  }

  template <typename Allowed>
  std::optional<std::size_t> best(const Slot& slot, Allowed isAllowed) const {
    const Span from = span(slot, slot.item);
    std::optional<std::size_t> chosen;
    std::pair<bool, double> least;
    for (std::size_t to = 0; to < frames_.size(); ++to) {
      const std::pair rank(aside(from, span(slot, to)) > 0.0, cost(from, span(slot, to)));
      if (to != slot.item && (!chosen || rank < least) && isAllowed(to)) {
        chosen = to;
        least = rank;
      }
    }
    return chosen;
  }

  std::optional<std::size_t> bestInFront(const Slot& slot) const {
    return best(slot, [&](std::size_t to) { return isInFront(slot, to); });
  }

  /// Which items can be reached from one; appends to `viaOf` the arrow by which each was reached first.
  std::vector<bool> reachableFrom(std::size_t start, std::vector<Slot>* viaOf = nullptr) const {
    std::vector<bool> isReached(frames_.size(), false);
    std::vector<std::size_t> queue{start};
    isReached[start] = true;
    for (std::size_t next = 0; next < queue.size(); ++next) {
      for (std::size_t arrow = 0; arrow < FocusMoves().size(); ++arrow) {
        const std::optional<std::size_t> to = moves_[queue[next]][arrow];
        if (to && !isReached[*to]) {
          isReached[*to] = true;
          queue.push_back(*to);
          if (viaOf != nullptr) {
            viaOf->push_back({queue[next], arrow});
          }
        }
      }
    }
    return isReached;
  }

  bool isConnected() const {
    for (std::size_t item = 0; item < frames_.size(); ++item) {
      if (!std::ranges::all_of(reachableFrom(item), std::identity())) {
        return false;
      }
    }
    return true;
  }

  /// Gives arrows without a target one further aside, the nearest first, where that connects items.
  void addFurtherAside() {
    std::vector<std::pair<double, Slot>> empty;
    for (const Slot& slot : slots()) {
      const std::optional<std::size_t> to = target(slot) ? std::nullopt : bestInFront(slot);
      if (to) {
        empty.emplace_back(cost(span(slot, slot.item), span(slot, *to)), slot);
      }
    }
    std::ranges::stable_sort(empty, {}, &std::pair<double, Slot>::first);
    for (const auto& [price, slot] : empty) {
      const std::size_t to = *bestInFront(slot);
      if (!reachableFrom(slot.item)[to] || !reachableFrom(to)[slot.item]) {
        target(slot) = to;
      }
    }
  }

  void fillAll() {
    for (const Slot& slot : slots()) {
      target(slot) = target(slot) ? target(slot) : bestInFront(slot);
    }
  }

  /// Every arrow has a target now if there is anything in front, so the last item to the right is reachable from
  /// everywhere. An item that it does not reach itself gets an arrow that is not needed to reach anything else. There
  /// is one: the reached items have at least as many arrows among themselves as there are of them, and one fewer is
  /// needed.
  void redirect() {
    std::size_t last = 0;
    for (std::size_t item = 1; item < frames_.size(); ++item) {
      last = isInFront({last, static_cast<std::size_t>(RemoteButton::Right)}, item) ? item : last;
    }
    std::vector<Slot> needed;
    std::vector<bool> isReached = reachableFrom(last, &needed);
    while (redirectOne(isReached, needed)) {
      needed.clear();
      isReached = reachableFrom(last, &needed);
    }
  }

  bool redirectOne(const std::vector<bool>& isReached, const std::vector<Slot>& needed) {
    std::optional<std::pair<Slot, std::size_t>> cheapest;
    double least = 0.0;
    for (const Slot& slot : slots()) {
      const bool isNeeded = std::ranges::any_of(
          needed, [&](const Slot& one) { return one.item == slot.item && one.arrow == slot.arrow; });
      if (!isReached[slot.item] || isNeeded) {
        continue;
      }
      const std::optional<std::size_t> to =
          best(slot, [&](std::size_t item) { return !isReached[item] && isInFront(slot, item); });
      if (to && (!cheapest || cost(span(slot, slot.item), span(slot, *to)) < least)) {
        cheapest.emplace(slot, *to);
        least = cost(span(slot, slot.item), span(slot, *to));
      }
    }
    if (cheapest) {
      target(cheapest->first) = cheapest->second;
    }
    return cheapest.has_value();
  }

  const std::vector<Rect>& frames_;
  std::vector<FocusMoves> moves_;
};

double distance(const Rect& one, const Rect& other) {
  return std::hypot(one.center().x - other.center().x, one.center().y - other.center().y);
}

}  // namespace

std::vector<FocusMoves> focusGraph(const std::vector<Rect>& frames) {
  Graph graph(frames);
  graph.connect();
  return graph.moves();
}

std::vector<std::size_t> readingOrder(const std::vector<Rect>& frames) {
  std::vector<std::size_t> order(frames.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t item) { return frames[item].y; });
  for (auto row = order.begin(); row != order.end();) {
    const double middle = frames[*row].center().y;
    const auto end = std::find_if(row + 1, order.end(), [&](std::size_t item) { return frames[item].y >= middle; });
    std::stable_sort(row, end, [&](std::size_t one, std::size_t other) { return frames[one].x < frames[other].x; });
    row = end;
  }
  return order;
}

std::optional<std::size_t> nearestInReadingOrder(const std::vector<Rect>& frames, const Rect& place) {
  if (frames.empty()) {
    return std::nullopt;
  }
  std::vector<Rect> all = frames;
  all.push_back(place);
  const std::vector<std::size_t> order = readingOrder(all);
  const auto here = std::ranges::find(order, frames.size());
  if (here == order.begin()) {
    return order[1];
  }
  if (std::next(here) == order.end() ||
      distance(place, frames[*std::prev(here)]) < distance(place, frames[*std::next(here)])) {
    return *std::prev(here);
  }
  return *std::next(here);
}

}  // namespace kesu
