// A host without a screen, for tests that end it at any moment: does what its arguments say, in their order.
//   kesu_test_host HOME COLLECTOR COMMAND...
// Commands:
//   launch, background, foreground, end (willTerminate), crash
//   exit                 calls exit() on another thread, _exit: ends without exit handlers
//   post=FIRST,COUNT     posts numbered events
//   flood=FIRST[,quiet]  posts numbered events until it is killed; quiet: without a turn of the main loop
//   steady=FIRST,COUNT   posts that many numbered events a second until standard input is closed; now and then in the
//                        background
//   threads=FIRST,COUNT  posts from that many threads until the host ends
//   screen=NAME, gone=NAME, event=NAME
//   forks=COUNT          forks that many children, one after the other, which post and exit; each must end in time
//   stored=COUNT         gives the main loop its turns until so many records are stored
//   turns=MILLISECONDS   gives the main loop its turns for that long
//   serve                gives the main loop its turns until standard input is closed
// It writes a line for each command that is done, "ack NUMBER" for each numbered event once the call has returned, and
// "log LEVEL TEXT".
#include <kesu.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr std::chrono::microseconds kBetweenPosts(200);
constexpr unsigned kSecondsOfChild = 20;

void writeLine(const std::string& line) {
  const std::string whole = line + "\n";
  if (::write(STDOUT_FILENO, whole.data(), whole.size()) < 0) {
    ::_exit(3);  // Nobody is listening any more.
  }
}

void post(std::int64_t number) {
  kesu::KesuCustomEvent::postWithEventName("numbered", {{"n", number}});
  writeLine("ack " + std::to_string(number));
}

class Host {
 public:
  explicit Host(std::string home) : home_(std::move(home)) {}

  void run(const std::string& command) {
    const std::size_t equals = command.find('=');
    const std::string name = command.substr(0, equals);
    const std::string argument = equals == std::string::npos ? "" : command.substr(equals + 1);
    if (!callApplication(name)) {
      act(name, argument);
    }
    writeLine(name);
  }

  void joinThreads() {
    isEnding_ = true;
    for (std::thread& thread : threads_) {
      thread.join();
    }
    threads_.clear();
  }

 private:
  static bool callApplication(const std::string& name) {
    kesu::Application& application = kesu::Application::shared();
    if (name == "launch") {
      application.didFinishLaunching();
    } else if (name == "background") {
      application.didEnterBackground();
    } else if (name == "foreground") {
      application.willEnterForeground();
    } else if (name == "end") {
      application.willTerminate();
    } else {
      return false;
    }
    return true;
  }

  void act(const std::string& name, const std::string& argument) {
    const std::int64_t first = std::strtoll(argument.c_str(), nullptr, 10);
    const std::size_t comma = argument.find(',');
    const std::string second = comma == std::string::npos ? "" : argument.substr(comma + 1);
    const std::int64_t count = std::strtoll(second.c_str(), nullptr, 10);
    if (name == "post") {
      for (std::int64_t number = first; number < first + count; ++number) {
        post(number);
      }
    } else if (name == "flood") {
      flood(first, second == "quiet");
    } else if (name == "steady") {
      postSteadily(first, count);
    } else if (name == "threads") {
      startThreads(first, count);
    } else if (name == "screen") {
      kesu::screenAppeared(argument);
    } else if (name == "gone") {
      kesu::screenDisappeared(argument);
    } else if (name == "event") {
      kesu::KesuCustomEvent::postWithEventName(argument);
    } else if (name == "forks") {
      fork(first);
    } else if (name == "turns") {
      const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(first);
      giveTurnsUntil([end] { return std::chrono::steady_clock::now() > end; }, false);
    } else if (name == "stored") {
      giveTurnsUntil([this, first] { return storedCount() >= first; });
    } else if (name == "serve") {
      giveTurnsUntil([] { return false; });
    } else if (name == "exit") {
      std::thread([] { std::exit(0); }).join();
    } else if (name == "_exit") {
      ::_exit(0);
    } else if (name == "crash") {
      ::raise(SIGKILL);
    } else {
      writeLine("unknown command " + name);
      ::_exit(2);
    }
  }

  [[noreturn]] static void flood(std::int64_t first, bool isQuiet) {
    for (std::int64_t number = first;; ++number) {
      post(number);
      if (!isQuiet) {
        kesu::MainLoop::shared().pump();
      }
      std::this_thread::sleep_for(kBetweenPosts);
    }
  }

  void startThreads(std::int64_t first, std::int64_t count) {
    for (std::int64_t thread = 0; thread < count; ++thread) {
      threads_.emplace_back([this, first, count, thread] {
        for (std::int64_t number = first + thread; !isEnding_; number += count) {
          post(number);
          std::this_thread::sleep_for(kBetweenPosts);
        }
      });
    }
  }

  static void fork(std::int64_t count) {
    for (std::int64_t child = 0; child < count; ++child) {
      const pid_t process = ::fork();
      if (process == 0) {
        ::alarm(kSecondsOfChild);
        kesu::KesuCustomEvent::postWithEventName("of a child");
        std::exit(0);
      }
      int status = 0;
      ::waitpid(process, &status, 0);
      if (!WIFEXITED(status)) {
        writeLine("child " + std::to_string(child) + " hangs");
      }
    }
  }

  static void postSteadily(std::int64_t first, std::int64_t perSecond) {
    constexpr std::int64_t kSecondsOfSession = 10;
    const auto start = std::chrono::steady_clock::now();
    std::int64_t number = first;
    giveTurnsUntil([&] {
      const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
      const auto due = first + static_cast<std::int64_t>(passed.count() * static_cast<double>(perSecond));
      for (; number < due; ++number) {
        post(number);
        if (number % (kSecondsOfSession * perSecond) == 0) {
          callApplication("background");
          callApplication("foreground");
        }
      }
      return false;
    });
  }

  std::int64_t storedCount() const {
    std::int64_t count = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(home_ + "/Documents", error)) {
      count += entry.path().extension() == ".kesuCache" ? 1 : 0;
    }
    return count;
  }

  template <typename IsDone>
  static void giveTurnsUntil(const IsDone& isDone, bool endsWithInput = true) {
    constexpr int kMostMilliseconds = 10;
    kesu::MainLoop& mainLoop = kesu::MainLoop::shared();
    pollfd sources[] = {{.fd = mainLoop.fd(), .events = POLLIN, .revents = 0},
                        {.fd = endsWithInput ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0}};
    while (!isDone() && sources[1].revents == 0) {
      ::poll(sources, std::size(sources), kMostMilliseconds);
      mainLoop.pump();
    }
  }

  const std::string home_;
  std::atomic<bool> isEnding_{false};
  std::vector<std::thread> threads_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    return 2;
  }
  // Runs after the library's handlers and before a leak checker's: what the threads of a parent own looks lost in its
  // child.
  static const pid_t parent = ::getpid();
  std::atexit([] {
    if (::getpid() != parent) {
      ::_exit(0);
    }
  });
  kesu::PlatformOptions options;
  options.homeDirectory = argv[1];
  options.collectorUrl = argv[2];
  if (const char* bundle = std::getenv("KESU_TEST_BUNDLE")) {  // A directory with Info.plist.
    options.bundlePath = bundle;
  }
  options.logSink = [](int level, std::string_view text) {
    writeLine("log " + std::to_string(level) + " " + std::string(text));
  };
  kesu::installLinuxPlatform(options);
  kesu::Kesu::initialize("key");
  writeLine("initialised");
  Host host(argv[1]);
  for (int argument = 3; argument < argc; ++argument) {
    host.run(argv[argument]);
  }
  host.joinThreads();
  return 0;
}
