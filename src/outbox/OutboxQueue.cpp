#include "outbox/OutboxQueue.h"

#include <algorithm>
#include <utility>

namespace kesu {

std::optional<OutboxQueue::Item> OutboxQueue::takeNext() {
  if (isStopped_) {
    std::erase_if(waiting_, [](const Item& item) { return item.ticket.isLogged; });
  }
  if (!hasNext()) {
    return std::nullopt;
  }
  isFull_ = ++inFlight_ >= kMostInFlight;
  Item item = std::move(waiting_.front());
  waiting_.pop_front();
  return item;
}

void OutboxQueue::park(const Ticket& ticket) {
  finish();
  if (ticket.isLogged) {
    parked_.push_back(ticket);
  }
}

bool OutboxQueue::retry() {
  const bool isAny = !parked_.empty();
  for (const Ticket& ticket : parked_) {
    waiting_.push_back({ticket, nullptr});
  }
  parked_.clear();
  return isAny;
}

bool OutboxQueue::hasUnlogged() const {
  return std::ranges::any_of(waiting_, [](const Item& item) { return !item.ticket.isLogged; });
}

bool OutboxQueue::hasNext() const {
  // What is not logged would be lost with the process, so it never waits for its turn at the end.
  return !waiting_.empty() && (isStopped_ || !isFull_);
}

}  // namespace kesu
