#include "ScriptHost.h"

#include <kesu.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
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

}  // namespace

ScriptHost::ScriptHost(ScriptClock& clock) : clock_(clock) {
  addLifeCycle();
  addEvents();
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
  table_["uid"] = [](const ScriptLine& line) { kesu::Kesu::setUserIdentifer(line.word(0)); };
  table_["activation"] = [](const ScriptLine& line) { kesu::KesuExplicitActivation::post(line.attributes); };
}

void ScriptHost::addScript() {
  table_["pump"] = [](const ScriptLine& line) { pumpFor(line.number(0).value_or(kDefaultPumpSeconds)); };
  table_["clock"] = [this](const ScriptLine& line) { clock_.move(line.number(0).value_or(0.0)); };
  table_["quit"] = [this](const ScriptLine&) { hasQuit_ = true; };
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
