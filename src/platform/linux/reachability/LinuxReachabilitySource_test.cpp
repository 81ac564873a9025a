#include "platform/linux/reachability/LinuxReachabilitySource.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "testing/ChildProcess.h"
#include "testing/RawConnection.h"
#include "testing/TemporaryDirectory.h"
#include "testing/WaitingMainLoop.h"

namespace kesu {
namespace {

/// A source that watches one target, and what it told.
class Watching {
 public:
  explicit Watching(const ReachabilityTarget& target, ReachabilitySystem system = {})
      : source(loop.loop(), std::move(system)), handle(source.watch(target)) {
    EXPECT_TRUE(handle->start([this] { told.push_back(handle->flags().value_or(kNothing)); }));
  }

  /// Waits until the newest callback found these flags.
  bool tells(std::uint32_t flags) {
    return loop.waitUntil([&] { return !told.empty() && told.back() == flags; });
  }

  static constexpr std::uint32_t kNothing = 0xffffffff;

  testing::WaitingMainLoop loop;
  LinuxReachabilitySource source;
  std::unique_ptr<ReachabilityHandle> handle;
  std::vector<std::uint32_t> told;  // The flags found by each callback.
};

void run(const std::string& command) {
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

/// Runs `body` on a thread in a network and mount namespace of its own, with two connected interfaces: "near"
/// (10.9.0.2/24, default route over 10.9.0.1) and "far". False, with the reason, where this process may not make
/// namespaces.
bool inOwnNetwork(const std::function<void()>& body) {
  bool made = false;
  std::thread([&] {
    made =
        ::unshare(CLONE_NEWNET | CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    if (made) {
      run("ip link set lo up && ip link add near type veth peer name far && ip addr add 10.9.0.2/24 dev near && "
          "ip link set near up && ip link set far up && ip route add default via 10.9.0.1");
      body();
    }
  }).join();
  if (!made) {
    std::cout << "this machine lets the test make no network namespaces (needs root)\n";
  }
  return made;
}

#define IN_OWN_NETWORK(body)                                      \
  if (!inOwnNetwork(body)) {                                      \
    GTEST_SKIP() << "needs the right to make network namespaces"; \
  }

constexpr std::uint32_t kDirect = kFlagReachable | kFlagIsDirect;

TEST(LinuxReachabilitySourceTest, GivesNoHandleForWhatCanBeNoHostName) {
  testing::WaitingMainLoop loop;
  LinuxReachabilitySource source(loop.loop());
  for (const std::string& name : {std::string(" "), std::string("a b"), std::string("a\nb"), std::string("."),
                                  std::string("[]"), std::string("a\0b", 3), std::string(254, 'a')}) {
    EXPECT_EQ(source.watch({name, 443, 0}), nullptr) << name;
  }
}

TEST(LinuxReachabilitySourceTest, AnswersForAddressesWithoutAStart) {
  testing::WaitingMainLoop loop;
  LinuxReachabilitySource source(loop.loop());
  EXPECT_EQ(source.watch({"[::ffff:127.0.0.1]", 443, 0})->flags(), kDirect);
  EXPECT_EQ(source.watch({"", 443, 0x7f000001})->flags(), kDirect);
  EXPECT_EQ(source.watch({"", 443, 0})->flags(), source.internetFlags());
  EXPECT_EQ(source.watch({"localhost", 443, 0})->flags(), std::nullopt);
}

TEST(LinuxReachabilitySourceTest, FollowsTheLinkToAHostBehindTheRouter) {
  IN_OWN_NETWORK([] {
    Watching host({"198.51.100.7", 443, 0});
    Watching internet({"", 443, 0});
    EXPECT_TRUE(host.tells(kFlagReachable) && internet.tells(kFlagReachable));
    run("ip link set far down");  // Takes the carrier away: the route stays.
    EXPECT_TRUE(host.tells(0) && internet.tells(0));
    EXPECT_EQ(internet.source.internetFlags(), 0U);
    run("ip link set far up");
    EXPECT_TRUE(host.tells(kFlagReachable) && internet.tells(kFlagReachable));
    EXPECT_EQ(internet.source.internetFlags(), kFlagReachable);
  });
}

TEST(LinuxReachabilitySourceTest, FollowsTheRoutes) {
  IN_OWN_NETWORK([] {
    Watching far({"198.51.100.7", 443, 0});
    Watching near({"10.9.0.7", 443, 0});
    Watching localNetwork({"", 443, 0xa9fe0000});
    EXPECT_TRUE(far.tells(kFlagReachable) && near.tells(kDirect) && localNetwork.tells(kDirect));
    run("ip route del default");
    EXPECT_TRUE(far.tells(0));
    run("ip route add 198.51.100.0/24 via 10.9.0.1");
    EXPECT_TRUE(far.tells(kFlagReachable));
    EXPECT_EQ(far.source.internetFlags(), 0U) << "a route to one network is not the internet";
    run("ip addr flush dev near");
    EXPECT_TRUE(far.tells(0) && near.tells(0) && localNetwork.tells(0));
    EXPECT_EQ(near.told.size(), 2U);
  });
}

TEST(LinuxReachabilitySourceTest, TellsMobileRadioFromOtherWays) {
  IN_OWN_NETWORK([] {
    run("ip link set near down && ip link set near name wwan0 && ip link set wwan0 up && "
        "ip route add default via 10.9.0.1");
    Watching host({"198.51.100.7", 443, 0});
    EXPECT_TRUE(host.tells(kFlagReachable | kFlagIsWwan));
  });
}

TEST(LinuxReachabilitySourceTest, TreatsLostEventsAsAChangeAndKeepsListening) {
  IN_OWN_NETWORK([] {
    NetworkEvents events("/nowhere/resolv.conf");
    run("for i in $(seq 400); do echo link set far down; echo link set far up; done | ip -batch -");
    EXPECT_TRUE(events.take().network);
    EXPECT_FALSE(events.take().network);
    run("ip link set far down");
    EXPECT_TRUE(events.take().network);
  });
}

/// Takes from the calling thread, and from those it starts, the right to ask the kernel for routes.
bool forbidNetlink() {
  sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_NETLINK, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog filter{static_cast<unsigned short>(std::size(program)), program};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(LinuxReachabilitySourceTest, LearnsFromConnectionsWhereTheKernelMayNotBeAsked) {
  bool forbidden = false;
  std::thread([&] {
    forbidden = forbidNetlink();
    if (!forbidden) {
      return;
    }
    testing::SilentServer server;
    Watching host({"127.0.0.1", server.port(), 0});
    EXPECT_TRUE(host.tells(kFlagReachable));
    EXPECT_TRUE(host.source.internetFlags());
    host.source.connectionObserved("127.0.0.1", server.port(), false);
    EXPECT_TRUE(host.tells(0));
    EXPECT_TRUE(host.tells(kFlagReachable));
  }).join();
  if (!forbidden) {
    GTEST_SKIP() << "this machine has no system call filters";
  }
}

TEST(LinuxReachabilitySourceTest, FindsANameThatTheSystemLearnsLate) {
  IN_OWN_NETWORK([] {
    const testing::TemporaryDirectory directory;
    const std::string hosts = directory / "hosts";
    std::ofstream(hosts) << "127.0.0.1 localhost\n";
    ASSERT_EQ(::mount(hosts.c_str(), "/etc/hosts", nullptr, MS_BIND, nullptr), 0);
    Watching host({"late.kesu.example", 443, 0});
    EXPECT_TRUE(host.tells(0));
    std::ofstream(hosts) << "10.9.0.7 late.kesu.example\n";
    EXPECT_TRUE(host.tells(kDirect));
  });
}

/// A resolver that finds loopback once the configuration exists, else an address that no route leads to: never a
/// failure, which would be repeated anyway.
NameLookups::Resolver resolverReading(const std::filesystem::path& configuration) {
  return [configuration](const std::string&) {
    const bool configured = std::filesystem::exists(configuration);
    return std::vector<IpAddress>{IpAddress::fromIpv4(configured ? INADDR_LOOPBACK : INADDR_BROADCAST)};
  };
}

TEST(LinuxReachabilitySourceTest, LooksAgainAsSoonAsTheNameServersChange) {
  const testing::TemporaryDirectory directory;
  const std::filesystem::path folder = directory.path();
  std::filesystem::create_directories(folder / "first");
  std::filesystem::create_directories(folder / "second");
  const std::filesystem::path file = folder / "resolv.conf";
  std::filesystem::create_symlink("first/resolv.conf", file);  // As network managers lay it.
  Watching host({"collector.kesu.example", 443, 0}, {file, "/sys", resolverReading(file)});
  EXPECT_TRUE(host.tells(0));
  std::ofstream(folder / "first/new") << "nameserver 127.0.0.1\n";
  std::filesystem::rename(folder / "first/new", folder / "first/resolv.conf");
  EXPECT_TRUE(host.tells(kDirect));
  std::filesystem::create_symlink(folder / "second/resolv.conf", folder / "link");
  std::filesystem::rename(folder / "link", file);
  EXPECT_TRUE(host.tells(0));
  std::ofstream(folder / "second/resolv.conf") << "nameserver 127.0.0.2\n";
  EXPECT_TRUE(host.tells(kDirect));
}

TEST(LinuxReachabilitySourceTest, TellsWithinASecondAlthoughTheLookupHangs) {
  const auto mutex = std::make_shared<std::mutex>();
  std::unique_lock<std::mutex> hanging(*mutex);
  ReachabilitySystem system;
  system.resolver = [mutex](const std::string&) {
    const std::lock_guard<std::mutex> wait(*mutex);
    return std::vector<IpAddress>{IpAddress::fromIpv4(INADDR_LOOPBACK)};
  };
  Watching host({"collector.kesu.example", 443, 0}, system);
  EXPECT_TRUE(host.tells(0));
  hanging.unlock();
  EXPECT_TRUE(host.tells(kDirect));
}

TEST(LinuxReachabilitySourceTest, TellsWhenACollectorIsBackOnAnUnchangedNetwork) {
  auto server = std::make_unique<testing::SilentServer>();
  const int port = server->port();
  Watching host({"LocalHost", port, 0});
  EXPECT_TRUE(host.tells(kDirect));
  for (int round = 0; round < 2; ++round) {
    server.reset();
    host.source.connectionObserved("localhost", port, false);
    EXPECT_TRUE(host.tells(kFlagIsDirect));
    server = std::make_unique<testing::SilentServer>(port);
    EXPECT_TRUE(host.tells(kDirect));
  }
  EXPECT_EQ(host.told.size(), 5U);
}

TEST(LinuxReachabilitySourceTest, IgnoresConnectionsToOtherHostsAndPorts) {
  Watching host({"127.0.0.1", 9, 0});
  EXPECT_TRUE(host.tells(kDirect));
  host.source.connectionObserved("127.0.0.2", 9, false);
  host.source.connectionObserved("127.0.0.1", 8, false);
  host.source.connectionObserved("127.0.0.1", 10, false);
  int laterTold = 0;
  const auto later = host.source.watch({"127.0.0.1", 1, 0});  // Is told after what went before.
  EXPECT_TRUE(later->start([&] { ++laterTold; }));
  EXPECT_TRUE(host.loop.waitUntil([&] { return laterTold == 1; }));
  EXPECT_EQ(host.told.size(), 1U);
  EXPECT_EQ(host.handle->flags(), kDirect);
}

TEST(LinuxReachabilitySourceTest, LearnsOfFailuresFromManyThreads) {
  testing::SilentServer server;
  Watching host({"127.0.0.1", server.port(), 0});
  EXPECT_TRUE(host.tells(kDirect));
  std::vector<std::thread> clients;
  for (int i = 0; i < 4; ++i) {
    clients.emplace_back([&host, port = server.port()] {
      for (int n = 0; n < 500; ++n) {
        host.source.connectionObserved("127.0.0.1", port, false);
        host.source.internetFlags();
      }
    });
  }
  for (std::thread& client : clients) {
    client.join();
  }
  EXPECT_TRUE(host.loop.waitUntil([&] { return host.told.size() >= 2 && host.told.back() == kDirect; }));
}

TEST(LinuxReachabilitySourceTest, AForkedChildMayAskAndDestroyButWatchesNothing) {
  auto host = std::make_unique<Watching>(ReachabilityTarget{"127.0.0.1", 9, 0});
  EXPECT_TRUE(host->tells(kDirect));
  const auto verdict = testing::runInChild([&] {
    host->source.connectionObserved("127.0.0.1", 9, false);
    const bool answers = host->source.internetFlags().has_value();
    const auto other = host->source.watch({"127.0.0.1", 9, 0});
    const bool silent = !other->start([] {});
    host.reset();
    return answers && silent ? 0 : 1;
  });
  EXPECT_EQ(verdict, 0);
}

}  // namespace
}  // namespace kesu
