#include "platform/linux/reachability/NetworkEvents.h"

#include <linux/rtnetlink.h>
#include <sys/inotify.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kesu {
namespace {

constexpr std::uint32_t kFileEvents = IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_DELETE | IN_ONLYDIR;
constexpr int kMostLinks = 8;  // Links may form a circle.

UniqueFd openRouteEvents() {
  UniqueFd fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
  if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    fd.reset();
  }
  return fd;
}

}  // namespace

NetworkEvents::NetworkEvents(std::string resolverFile)
    : resolverFile_(std::move(resolverFile)),
      routes_(openRouteEvents()),
      files_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  watchFiles();
}

void NetworkEvents::appendTo(std::vector<pollfd>& polled) const {
  polled.push_back({routes_.get(), POLLIN, 0});
  polled.push_back({files_.get(), POLLIN, 0});
}

NetworkEvents::Heard NetworkEvents::take() {
  const Heard heard{takeNetwork(), takeResolver()};
  if (heard.resolver) {
    watchFiles();
  }
  return heard;
}

bool NetworkEvents::takeNetwork() {
  std::array<char, 8192> buffer{};
  bool heard = false;
  while (true) {
    errno = 0;
    const ssize_t length = ::recv(routes_.get(), buffer.data(), buffer.size(), MSG_TRUNC);
    // ENOBUFS says that events were lost, so something did happen; the error is cleared by being read.
    if (length <= 0 && errno != ENOBUFS && errno != EINTR) {
      return heard;
    }
    heard = true;
  }
}

bool NetworkEvents::takeResolver() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  bool heard = false;
  ssize_t length = 0;
  while ((length = ::read(files_.get(), buffer.data(), buffer.size())) > 0) {
    for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(length);) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      const char* name = event.len > 0 ? buffer.data() + at + sizeof event : "";
      heard = heard || (event.mask & IN_Q_OVERFLOW) != 0 || concerns(event.wd, name);
      at += sizeof event + event.len;
    }
  }
  return heard;
}

bool NetworkEvents::concerns(int watch, const char* name) const {
  return std::ranges::any_of(watched_, [&](const WatchedFile& f) { return f.watch == watch && f.name == name; });
}

void NetworkEvents::watchFiles() {
  std::vector<WatchedFile> before = std::exchange(watched_, {});
  std::filesystem::path file(resolverFile_);
  watchFile(file.parent_path() / "hosts");
  // The name is often a link into the directory of a network manager, which replaces the file there (and may not have
  // made it yet).
  std::error_code error;
  for (int links = 0; links < kMostLinks && !error; ++links) {
    watchFile(file);
    file = file.parent_path() / std::filesystem::read_symlink(file, error);
  }
  for (const WatchedFile& old : before) {
    if (std::ranges::none_of(watched_, [&](const WatchedFile& f) { return f.watch == old.watch; })) {
      ::inotify_rm_watch(files_.get(), old.watch);
    }
  }
}

void NetworkEvents::watchFile(const std::string& path) {
  const std::filesystem::path file(path);
  // Adding a directory that is watched already gives the same number again.
  const int watch = ::inotify_add_watch(files_.get(), file.parent_path().c_str(), kFileEvents);
  if (watch >= 0) {
    watched_.push_back({watch, file.filename()});
  }
}

}  // namespace kesu
