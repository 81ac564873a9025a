// How fast records leave, beside the bare HTTP client that posts the same bytes.
#include <kesu.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <latch>

#include "Child.h"
#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "delivery/CollectorRequest.h"
#include "facade/Wiring.h"
#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "tools/loopback/Certificate.h"
#include "tools/loopback/Server.h"

namespace kesu::bench {
namespace {

constexpr std::size_t kRecords = 10'000;
constexpr int kRounds = 5;
constexpr std::size_t kBurst = 100;
constexpr const char* kHttp2Server = "/usr/sbin/nghttpd";

/// A record as it went to the collector, for the bare client.
HttpRequest sameRequest(const std::string& url, const std::string& body) {
  HttpRequest request;
  request.method = "POST";
  request.url = url;
  request.headers = {{"t", "events"},
                     {"v", KesuPost::FullVersionHeader()},
                     {"Content-Type", "application/json"},
                     {"Accept-Encoding", "gzip"},
                     {"Content-Length", std::to_string(body.size())}};
  request.body = body;
  return request;
}

double secondsOfLibrary(Session& session) {
  return secondsOf([&] {
    for (std::size_t number = 0; number < kRecords; ++number) {
      postNumbered(number);
      if (number % kBurst == kBurst - 1) {
        session.platform().mainLoop.pump();
      }
    }
    session.settle();
  });
}

double secondsOfBareClient(HttpClient& client, const HttpRequest& request, std::size_t count) {
  return secondsOf([&] {
    std::latch left(static_cast<std::ptrdiff_t>(count));
    for (std::size_t number = 0; number < count; ++number) {
      client.sendInBackground(request, [&left](const HttpReply&) { left.count_down(); });
    }
    left.wait();
  });
}

void compareWithBareClient(Figures& figures, const std::string& what, Session& session, const HttpRequest& request,
                           const LinuxHttpClientOptions& options) {
  std::vector<double> library;
  std::vector<double> bare;
  double processors[2] = {};
  LinuxHttpClient client(session.platform().mainLoop, options);
  for (int round = 0; round < kRounds; ++round) {
    const double start = processorSeconds();
    library.push_back(secondsOfLibrary(session));
    const double between = processorSeconds();
    bare.push_back(secondsOfBareClient(client, request, kRecords));
    processors[0] += between - start;
    processors[1] += processorSeconds() - between;
  }
  const std::size_t stored = wiring().store.storedFiles().size();
  constexpr double kMicrosecondsEach = 1e6 / (kRounds * static_cast<double>(kRecords));
  figures.add(Figure(what, kRecords / median(library), "records/s")
                  .compared("bare client", kRecords / median(bare))
                  .ratioAtLeast(0.9));
  Figure processor(what + ": processor time of a record, all threads", processors[0] * kMicrosecondsEach, "µs");
  processor.compared("bare client", processors[1] * kMicrosecondsEach);
  figures.add(request.url.starts_with("https") ? processor : processor.atMost(25.0));
  figures.add(Figure(what + ": not delivered", static_cast<double>(stored), "records").atMost(0.0));
}

[[noreturn]] void serveTls(const loopback::Certificate& certificate, int portPipe) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  const auto accept = [](loopback::Request& request) {
    std::string body;
    request.readBody(body);
    return loopback::Reply();
  };
  loopback::Server server(accept, &certificate.context());
  const bool serves = server.bind(0) && server.start();
  const int port = server.port();
  if (!serves || ::write(portPipe, &port, sizeof port) != sizeof port) {
    ::_exit(1);
  }
  for (;;) {
    ::pause();
  }
}

/// A TLS server in a process of its own: HTTP/2 where that server is installed, else HTTP/1.1.
class TlsServer {
 public:
  TlsServer(const loopback::Certificate& certificate, const Scratch& directory) {
    if (std::filesystem::exists(kHttp2Server)) {
      startHttp2(certificate, directory);
    } else {
      startHttp1(certificate);
    }
  }
  ~TlsServer() {
    if (fork_ > 0) {
      ::kill(fork_, SIGKILL);
    }
  }

  TlsServer(const TlsServer&) = delete;
  TlsServer& operator=(const TlsServer&) = delete;

  std::string url() const { return "https://127.0.0.1:" + std::to_string(port_) + "/"; }
  const char* protocol() const { return http2_ ? "TLS, HTTP/2" : "TLS, HTTP/1.1 (no HTTP/2 server installed)"; }

 private:
  void startHttp2(const loopback::Certificate& certificate, const Scratch& directory) {
    port_ = freePort();
    // Not empty: libcurl resets a stream whose reply has the length 0, and this server hangs up after 1,000 resets.
    std::ofstream(directory / "index.html") << "ok";
    certificate.save(directory / "server.pem");
    certificate.saveKey(directory / "server.key");
    http2_ = std::make_unique<Server>(std::vector<std::string>{kHttp2Server, "--address=127.0.0.1", "--htdocs",
                                                               directory.path(), std::to_string(port_),
                                                               directory / "server.key", directory / "server.pem"});
  }

  void startHttp1(const loopback::Certificate& certificate) {
    int ends[2] = {};
    if (::pipe(ends) == 0) {
      fork_ = ::fork();
      if (fork_ == 0) {
        serveTls(certificate, ends[1]);
      }
      static_cast<void>(::read(ends[0], &port_, sizeof port_));
    }
  }

  /// Returns a port that was free a moment ago.
  static int freePort() {
    const Collector collector(Behaviour::Refuse);
    const std::string url = collector.url();
    return std::stoi(url.substr(url.rfind(':') + 1));
  }

  std::unique_ptr<Server> http2_;
  pid_t fork_ = -1;
  int port_ = 0;
};

}  // namespace

void measureDelivery(Figures& figures) {
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  postNumbered(1);
  session.settle();
  compareWithBareClient(figures, "delivery over HTTP/1.1", session, sameRequest(collector.url(), collector.lastBody()),
                        {});
}

void measureDeliveryOverTls(Figures& figures) {
  const Scratch directory;
  const Scratch home;
  const std::string body = collectorRequest(usualRecord(1), secondsNow(), {})->body;
  const loopback::Certificate certificate = loopback::Certificate::selfSigned("localhost");
  const std::string caFile = directory / "trusted.pem";
  certificate.save(caFile);
  const TlsServer server(certificate, directory);
  Session session(home.path(), server.url(), Session::Launch::Full, caFile);
  // Records posted before the server listened come back from the store.
  session.deliverAll();
  LinuxHttpClientOptions options;
  options.caFile = caFile;
  compareWithBareClient(figures, std::string("delivery over ") + server.protocol(), session,
                        sameRequest(server.url(), body), options);
}

int sendBare(const std::vector<std::string>& arguments) {
  std::ifstream file(arguments.at(1));
  const std::string body{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  LinuxMainLoop loop;
  LinuxHttpClient client(loop);
  secondsOfBareClient(client, sameRequest(arguments.at(0), body), std::stoul(arguments.at(2)));
  return 0;
}

void measureResend(Figures& figures) {
  constexpr std::size_t kStored = 5000;
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  runOwn("fill-store", {home.path(), std::to_string(kStored)});
  Session session(home.path(), collector.url(), Session::Launch::InitializeOnly);
  postNumbered(kStored);
  session.settle();
  const long before = statusField("VmRSS");
  resetPeakMemory();
  const std::size_t expected = collector.requestCount() + kStored;
  const double start = secondsNow();
  double longestPump = secondsOf([] { wiring().resendPass.start(NetworkStatus::Reachable); });
  while (collector.requestCount() < expected && secondsNow() < start + 20.0) {
    longestPump = std::max(longestPump, session.turn(1));
  }
  const double resending = collector.lastAcceptedAt() - start;
  session.deliverAll();
  const double grown = static_cast<double>(statusField("VmHWM") - before) / 1024.0;
  const std::size_t left = wiring().store.storedFiles().size();
  LinuxHttpClient client(session.platform().mainLoop);
  const HttpRequest request = sameRequest(collector.url(), collector.lastBody());
  secondsOfBareClient(client, request, 1);
  const double bare = secondsOfBareClient(client, request, kStored);
  figures.add(Figure("re-send 5,000 stored records", resending * 1e3, "ms")
                  .compared("bare client", bare * 1e3)
                  .ratioAtMost(1.5));
  figures.add(Figure("re-send 5,000: growth of memory", grown, "MB").atMost(32.0));
  figures.add(Figure("re-send 5,000: longest pump", longestPump * 1e3, "ms").atMost(2.0));
  figures.add(Figure("re-send 5,000: files left", static_cast<double>(left), "files").atMost(0.0));
}

}  // namespace kesu::bench
