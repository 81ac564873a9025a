#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/http/HttpJob.h"

namespace kesu {

/// Decides which request libcurl gets next. Each origin has a queue of its own, so that a host which answers slowly or
/// not at all delays no other; waiting requests cost only their own bytes (an easy handle costs some 20 KB).
///
/// An origin starts at most `connectionsPerHost` requests at a time, and up to `multiplexed` once it has shown that one
/// connection carries many. Not synchronised: belongs to the network thread.
class HttpOriginQueue {
 public:
  HttpOriginQueue(std::size_t connectionsPerHost, std::size_t multiplexed);

  /// Puts a job behind the others of its origin.
  void add(std::unique_ptr<HttpJob> job);

  /// Puts a job before the others of its origin: it has waited already.
  void addFirst(std::unique_ptr<HttpJob> job);

  /// Removes the next job that may start now, counts it as started and returns it; null when none may.
  std::unique_ptr<HttpJob> startNext();

  /// Takes note that a started job of that origin has ended, or has left it by a redirect.
  void ended(const HttpOrigin& origin);

  /// Sets whether the origin serves many requests over one connection, as its latest reply shows.
  void setMultiplexed(const HttpOrigin& origin, bool multiplexed);

  bool isMultiplexed(const HttpOrigin& origin) const;

  /// Removes and returns the jobs that wait for one origin, or for any, in order.
  std::vector<std::unique_ptr<HttpJob>> takeWaiting(const HttpOrigin& origin);
  std::vector<std::unique_ptr<HttpJob>> takeAllWaiting();

  bool hasWaiting() const;

  /// The URL of a job that must wait because its origin has started as many as it may; empty when there is none.
  std::string blockedUrl() const;

 private:
  struct Lane {
    std::deque<std::unique_ptr<HttpJob>> waiting;
    std::size_t started = 0;
    bool multiplexed = false;
  };

  bool mayStart(const Lane& lane) const;

  const std::size_t connectionsPerHost_;
  const std::size_t multiplexedLimit_;
  std::map<HttpOrigin, Lane> lanes_;
};

}  // namespace kesu
