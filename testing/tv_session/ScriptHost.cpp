#include "ScriptHost.h"

#include <kesu.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

#include "CatalogueTable.h"
#include "MessageCommands.h"

namespace tv {
namespace {

constexpr double kDefaultPumpSeconds = 0.1;
constexpr double kLongestSleepSeconds = 0.05;

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void initialise(const ScriptLine& line) {
  kesu::Kesu::initialize(line.word(0), static_cast<std::int64_t>(line.number(1).value_or(0)));
}

void postSms(const ScriptLine& line) {
  kesu::KesuEvent event;
  event.name = line.word(0);
  event.attributes = line.attributes;
  event.postEventForTableM();
}

}  // namespace

ScriptHost::ScriptHost(ScriptClock& clock) : clock_(clock) {
  addLifeCycle();
  addEvents();
  addUser();
  addScript();
  table_.merge(messageCommands());
}

void ScriptHost::addLifeCycle() {
  kesu::Application& application = kesu::Application::shared();
  table_["init"] = initialise;
  table_["launch"] = [&application](const ScriptLine&) { application.didFinishLaunching(); };
  table_["background"] = [&application](const ScriptLine&) { application.didEnterBackground(); };
  table_["resume"] = [&application](const ScriptLine&) { application.willEnterForeground(); };
  table_["terminate"] = [&application](const ScriptLine&) { application.willTerminate(); };
  table_["locale"] = [&application](const ScriptLine&) { application.localeDidChange(); };
  table_["appear"] = [](const ScriptLine& line) { kesu::screenAppeared(line.word(0)); };
  table_["disappear"] = [](const ScriptLine& line) { kesu::screenDisappeared(line.word(0)); };
  table_["scene"] = [](const ScriptLine& line) {
    kesu::Kesu::updateScreenFlowForScenesWithName(line.word(0), line.number(1).value_or(0.0));
  };
}

void ScriptHost::callCatalogue(const ScriptLine& line) {
  std::vector<kesu::Object> arguments;
  for (std::size_t i = 2; i < line.words.size(); ++i) {
    arguments.push_back(line.words[i] == "nil" ? kesu::Object(kesu::nil) : kesu::Object(line.words[i]));
  }
  const auto* operation = kesu::catalogue::findOperation(line.word(0), line.word(1), arguments.size());
  if (operation != nullptr) {
    operation->invoke(arguments, line.attributes);
  } else {
    error_ = "no operation \"" + line.word(1) + "\" of \"" + line.word(0) + "\" takes that many arguments";
  }
}

void ScriptHost::addEvents() {
  table_["call"] = [this](const ScriptLine& line) { callCatalogue(line); };
  table_["event"] = [](const ScriptLine& line) {
    kesu::KesuCustomEvent::postWithEventName(line.word(0), line.attributes);
  };
  table_["start"] = [this](const ScriptLine& line) { timers_[line.word(0)] = kesu::Kesu::timerReference(); };
  table_["timed"] = [this](const ScriptLine& line) {
    kesu::KesuCustomEvent::postTimedWithEventName(line.word(0), timers_[line.word(0)], line.attributes);
  };
  table_["sms"] = postSms;
  table_["activation"] = [](const ScriptLine& line) { kesu::KesuExplicitActivation::post(line.attributes); };
  table_["burst"] = [](const ScriptLine& line) {
    for (int i = 1; i <= static_cast<int>(line.number(1).value_or(0)); ++i) {
      kesu::KesuCustomEvent::postWithEventName(line.word(0), {{"number", i}});
    }
  };
}

void ScriptHost::addUser() {
  table_["uid"] = [](const ScriptLine& line) {
    if (line.words.empty()) {
      kesu::Kesu::resetUserIdentifer();
    } else {
      kesu::Kesu::setUserIdentifer(line.word(0));
    }
  };
  table_["traits"] = [](const ScriptLine& line) { kesu::KesuIdentity::postTraits(line.attributes); };
  table_["token"] = [](const ScriptLine& line) {
    const std::string bytes = line.word(0);
    kesu::Kesu::setRemoteNotificationDeviceToken(kesu::Data(bytes.begin(), bytes.end()));
  };
  table_["push"] = [](const ScriptLine& line) {
    kesu::Kesu::processReceivedRemoteNotificationWithId(line.word(0), line.attributes);
  };
}

void ScriptHost::addScript() {
  table_["loglevel"] = [](const ScriptLine& line) {
    kesu::Kesu::logThrottling(static_cast<std::int64_t>(line.number(0).value_or(0)));
  };
  table_["pump"] = [](const ScriptLine& line) { pumpFor(line.number(0).value_or(kDefaultPumpSeconds)); };
  table_["clock"] = [this](const ScriptLine& line) { clock_.move(line.number(0).value_or(0.0)); };
  table_["say"] = [](const ScriptLine& line) {
    std::printf("tv_session: %s\n", line.word(0).c_str());
    std::fflush(stdout);
  };
  table_["quit"] = [this](const ScriptLine&) { hasQuit_ = true; };
}

const char* ScriptHost::commands() {
  return "Life cycle\n"
         "  init KEY [LOGLEVEL]   initialise the library\n"
         "  launch                report the finished launch\n"
         "  background, resume    report that the application leaves the screen, and that it comes back\n"
         "  terminate             report the end of the process\n"
         "  locale                report that the locale has changed\n"
         "  appear NAME           a screen appears; \"disappear NAME\" ends it\n"
         "  scene NAME SECONDS    add to the scene flow\n"
         "Events\n"
         "  event NAME k=v ...    post an event\n"
         "  start NAME            remember a timer reference\n"
         "  timed NAME k=v ...    post an event with the seconds since \"start NAME\"\n"
         "  sms NAME k=v ...      post a record to the table of SMS records\n"
         "  activation k=v ...    report an activation of the host's own\n"
         "  burst NAME COUNT      post COUNT events at once\n"
         "  call CLASS OPERATION ARGUMENT ... k=v ...\n"
         "                        post an event of the catalogue; the argument nil is for none\n"
         "User\n"
         "  uid [ID]              set the user identifier, or reset it\n"
         "  traits k=v ...        post traits of the user\n"
         "  token BYTES           report the token for push notifications\n"
         "  push [ID] k=v ...     report a push notification with these entries (mid, cid)\n"
         "Messages and tags (TYPE: unread, read or all; or 0 to 2)\n"
         "  count                 print how many new messages there are\n"
         "  headers TYPE          print the headers of messages\n"
         "  messages TYPE         print full messages\n"
         "  body CID MID          print one message, which then counts as read\n"
         "  tags                  fetch and print the personalization tags\n"
         "  is-tag TAG            print whether that tag was among those fetched last\n"
         "Script\n"
         "  pump SECONDS          run the main loop for so long\n"
         "  clock +SECONDS        move the clock\n"
         "  loglevel N            change the log threshold\n"
         "  say TEXT              print a line\n"
         "  quit                  return from main() without \"terminate\"\n";
}

bool ScriptHost::perform(const ScriptLine& line) {
  if (line.command.empty()) {
    return true;
  }
  const auto found = table_.find(line.command);
  if (found == table_.end()) {
    error_ = "unknown command \"" + line.command + "\"";
    return false;
  }
  try {
    found->second(line);
  } catch (const kesu::InternalInconsistencyException& exception) {
    error_ = std::string(exception.name()) + ": " + exception.what();
    return false;
  } catch (const std::runtime_error& exception) {
    error_ = exception.what();
    return false;
  }
  kesu::MainLoop::shared().pump();
  return error_.empty();
}

void ScriptHost::pumpFor(double seconds) {
  kesu::MainLoop& loop = kesu::MainLoop::shared();
  const double end = secondsNow() + seconds;
  for (double left = seconds; left > 0.0; left = end - secondsNow()) {
    const double sleep = std::min({left, loop.nextDue().value_or(left), kLongestSleepSeconds});
    pollfd due{.fd = loop.fd(), .events = POLLIN, .revents = 0};
    ::poll(&due, 1, static_cast<int>(sleep * 1000.0) + 1);
    loop.pump();
  }
}

}  // namespace tv
