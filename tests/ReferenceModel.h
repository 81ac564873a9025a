#pragma once

#include <time.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace kesu::testing {

/// What one installation has to report, worked out a second time: the plain rules of the product, on the C library's
/// calendar, with no code and no types of the library. A record is the text "|key=value|key=value" in the order of its
/// keys; message identifiers are chance and read "*". Everything runs at the call, as if no queue ever waited.
class ReferenceModel {
 public:
  // The world, which the script changes.
  double now = 0.0;
  std::function<int(double)> offset;  ///< Seconds from GMT at an instant.
  std::string zone, appVersion, build, osVersion, vendorHash, nameHash;
  std::vector<std::pair<std::string, std::string>> records;  ///< Destination and body.

  void start(const std::string& key, const std::string& kaid, const std::string& kaid2) {
    run_ = Run();
    run_.firstLaunch = key_ != key;
    counted_ = run_.firstLaunch ? Counted() : counted_;
    std::tie(key_, kaid_, kaid2_) = std::tie(key, kaid, kaid2);
  }
  void finishLaunching() {
    if (run_.firstLaunch) {
      const std::string facts = "|idv=" + vendorHash + "|dn=" + nameHash + "|an=Example|pkg=tv.example.app|prd=x86_64" +
                                "|cn=Simulated|sw=1920|sh=1080|mem=2147483648|np=4|nap=4|pspd=1800";
      records.emplace_back("i", columns("i") + "|kaid2=" + kaid2_ + facts + traits(0) + "|~r=w");
      send("t", columns("t") + "|kaid2=" + kaid2_ + traits(5));
    } else if (savedAt_["t"] == 0.0 || now - savedAt_["t"] >= 86400.0) {
      send("t", columns("t") + "|kaid2=" + kaid2_ + traits(0));
    }
    applicationChange('l', "|~ld=Foreground Inactive");
    versionChange("Kesu.OSVersionChanged", osVersion);
    versionChange("Kesu.AppVersionChanged", appVersion);
  }
  void enterBackground() { applicationChange('b', ""); }
  void enterForeground() { applicationChange('r', ""); }
  void terminate() { applicationChange('t', "|~tf=from foreground"); }
  void localeChanged() { send("t", columns("t") + "|kaid2=" + kaid2_ + traits(2)); }
  void appear(const std::string& name, const std::string& suffix) {
    run_.shown.emplace_back(name, suffix);
    stateChange('a', "|~sd=" + name, {{name, suffix}});
  }
  void disappear(const std::string& name, const std::string& suffix) {
    std::erase(run_.shown, std::pair(name, suffix));
    stateChange('d', "|~sd=" + name, {{name, suffix}});
  }
  void event(const std::string& name, const std::string& attributes) {
    eventFlow_ += "$$" + name + "~~0";
    send("e", attributes + "|~e=" + name + columns("e") + "|~r=w");
  }
  void scene(const std::string& name, double seconds) { sceneFlow_ += "$$" + name + "~~" + oneDecimal(seconds); }
  void user(const std::string& identifier) {  // An empty one is a reset.
    identifier_ = "";
    const std::string record = "|~uid=" + identifier + columns("u") + "|~r=w";
    identifier_ = identifier.empty() ? "" : "|~uid=" + identifier;
    send("u", record);
  }

 private:
  using Screen = std::pair<std::string, std::string>;
  struct Counted {  // Replaced by another key.
    int launchesAndResumes = 0;
    std::set<std::string> flags;
    std::map<std::string, long> usage;
    double total = 0.0, lastSeen = 0.0;
    std::vector<std::string> days;
  };
  struct Run {  // What a process has in memory.
    bool firstLaunch = false;
    std::map<Screen, double> screens;
    std::vector<Screen> shown;
    std::string flow;
    double pending = 0.0, lastSeen = 0.0;
  };
  static std::string oneDecimal(double number) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << number;
    return text.str();
  }
  static std::string milliseconds(double seconds) { return std::to_string(static_cast<long long>(seconds * 1000.0)); }
  static std::string text(const tm& is, const char* pattern) {
    std::ostringstream text;
    text << std::put_time(&is, pattern);
    return text.str();
  }
  static std::string dashed(int left, int right) { return std::to_string(left) + "-" + std::to_string(right); }
  tm local(double instant) const {
    const auto seconds = static_cast<time_t>(std::floor(instant)) + offset(instant);
    tm fields{};
    ::gmtime_r(&seconds, &fields);
    fields.tm_gmtoff = offset(instant);
    return fields;
  }
  tm gmt(double instant) const { return local(instant - offset(now)); }
  static std::string hour(const tm& is) { return date(is) + "-" + std::to_string(is.tm_hour); }
  static std::string date(const tm& is) { return month(is) + "-" + std::to_string(is.tm_mday); }
  static std::string month(const tm& is) { return dashed(is.tm_year + 1900, is.tm_mon + 1); }
  static std::string quarter(const tm& is) { return dashed(is.tm_year + 1900, is.tm_mon / 3 + 1); }
  static std::string week(tm is) {
    if (const int number = std::stoi(text(is, "%W")); number != 0) {
      return dashed(is.tm_year + 1900, number);
    }
    is.tm_mday -= is.tm_yday + 1;  // Before the first whole week: still the last one of the year before.
    ::timegm(&is);
    return week(is);
  }
  double daysAgo(int days) const {
    const double same = now - 86400.0 * days;
    const double shifted = same + offset(now) - offset(same);
    return shifted + offset(shifted) == same + offset(now) ? shifted : std::max(same, shifted);
  }
  std::string gmtDay(int ago) const { return text(gmt(daysAgo(ago)), "%Y%m%d"); }
  std::string weekYearDay(int ago) const {  // Of the United States: the week with the next first of January is new.
    tm is = local(daysAgo(ago));
    is.tm_year += is.tm_mon == 11 && is.tm_mday + 6 - is.tm_wday > 31 ? 1 : 0;
    return text(is, "%Y%m%d");
  }
  std::string columns(const std::string& destination) const {
    const std::string versions = "|rv=" + build + "|av=" + appVersion + "|ov=" + osVersion;
    return columnsAt(milliseconds(now), (destination == "t" ? "|prd=x86_64" : "") + identifier_, versions);
  }
  std::string columnsAt(const std::string& collected, const std::string& more, const std::string& versions) const {
    return "|kak=" + key_ + "|~v=10-i-3.2.3|kaid=" + kaid_ + "|ace=" + collected + "|ase=" + milliseconds(now) +
           "|msg_id=*" + more + "|ldt=" + text(local(now), "%Y-%m-%d %H:%M:%S %z") + versions;
  }
  void send(const std::string& destination, const std::string& record) {
    records.emplace_back(destination, record);
    savedAt_[destination] = now;
  }
  std::string traits(int type) {
    const std::string carrier = "|cn=Simulated|ccc=N/A for tvOS|cmm=N/A for tvOS";
    const std::string locale = "|lrg=en_US|lco=US|lan=en-US|al=en|lpl=en-US|lca=gregorian";
    const std::string full = "|~x=1" + (type == 0 && run_.firstLaunch ? carrier.substr(13) : carrier) + locale;
    return type == 2 ? locale : full + "|jb=0|pm=Unknown|pas=0" + (type == 5 ? variants(true) : "|~ft=1");
  }
  void versionChange(const std::string& name, const std::string& version) {
    const std::string old = std::exchange(versions_[name], version);
    if (!old.empty() && old != version) {
      event(name, "|oldver=" + old + "|newver=" + version);
    }
  }
  void applicationChange(char state, const std::string& detail) {
    const std::vector<Screen> visible = run_.shown.empty() ? std::vector{Screen("Unknown", "")} : run_.shown;
    stateChange(state, detail, state == 't' ? std::vector{Screen("from foreground", "")} : visible);
    const std::string launches = state == 'l' || state == 'r' ? countLaunch() : "";
    const std::string flags = launches + (state == 'l' || state == 'r' ? countDay() : "");
    sendFlags(flags + variants(!flags.empty()));
  }
  void stateChange(char state, const std::string& detail, const std::vector<Screen>& screens) {
    std::string record = columns("s");
    const std::string flows = track(state, screens, record);
    const std::string flags = state == 'b' || state == 't' ? foldUsage() : "";
    record += flows + "|~ns=" + state + detail + "|bl=unmonitored|bs=Unknown|~o=Unknown|umem=1073741824|~r=w";
    records.emplace_back("s", record + (state == 'l' ? "|~u=1489500250000" : ""));
    sendFlags(flags);
  }
  void sendFlags(const std::string& flags) {
    if (!flags.empty()) {
      send("t", flags + columns("t"));
    }
  }
  std::string track(char state, const std::vector<Screen>& screens, std::string& recordColumns) {
    std::string flows;
    const auto take = [&](const char* as, std::string& text) {
      flows += text.empty() ? "" : as + std::exchange(text, "");
    };
    if (state == 'l' || state == 'r' || state == 't') {
      run_.screens.clear();
      if (state == 'l' && !unsent_.empty() && !lastAppearance_.empty()) {
        recordColumns = columnsAt(lastAppearance_, identifier_, std::exchange(flowVersions_, "|rv=|av=|ov="));
        flows = "|~cfqt=" + std::exchange(lastAppearance_, "");
      }
      flows = unsent_.empty() ? "" : "|~uf=" + std::exchange(unsent_, "") + flows;
    }
    lastAppearance_ = state == 'a' ? milliseconds(now) : lastAppearance_;
    for (const Screen& screen : screens) {
      if (state == 'a' || state == 'r') {
        run_.screens[screen] = now;
      } else if (state != 'l' && run_.screens.count(screen) != 0) {
        const double seconds = now - run_.screens[screen];
        run_.pending += seconds;
        run_.flow += "$$" + screen.first + "~~" + oneDecimal(seconds > 7200.0 ? 300.0 : seconds);
        run_.screens.erase(screen);
      }
    }
    if (state == 'b' || state == 't') {
      flows = flows.empty() || sceneFlow_.empty() ? flows : "|~uf=" + std::exchange(sceneFlow_, "");
      lastAppearance_ = unsent_ = "";
      run_.screens.clear();
      take("|~sf=", run_.flow);
      take("|~ef=", eventFlow_);
      take("|~uf=", sceneFlow_);
    }
    if (!run_.flow.empty() && run_.flow != unsent_) {
      flowVersions_ = "|rv=" + build + "|av=" + appVersion + "|ov=" + osVersion;
      unsent_ = run_.flow;
    }
    return flows;
  }
  std::string raise(bool due, const std::string& flag) {
    return due && counted_.flags.insert(flag).second ? "|" + flag + "=1" : "";
  }
  std::string raiseEach(const std::vector<int>& steps, double reached, const std::string& name,
                        const std::string& end) {
    std::string flags;
    for (const int step : steps) {
      flags += raise(reached >= step, name + std::to_string(step) + end);
    }
    return flags;
  }
  bool sent(const std::set<std::string>& flags) const {
    return std::includes(counted_.flags.begin(), counted_.flags.end(), flags.begin(), flags.end());
  }
  std::string countLaunch() {
    int& count = counted_.launchesAndResumes;
    count = std::min(count + 1, 10);
    return raise(count == 3 || count == 5 || count == 10, "~a:LR" + std::to_string(count));
  }
  std::string countDay() {
    auto& days = counted_.days;
    if ((!days.empty() && days.front() == gmtDay(0)) || sent({"~a:3UD", "~a:5UD", "~a:7UD", "~a:2DL7", "~a:3DL7"})) {
      return "";
    }
    days.insert(days.begin(), gmtDay(0));
    days.resize(std::min<std::size_t>(days.size(), 7));
    const std::set<std::string> used(days.begin(), days.end());
    double both = 0;
    for (int ago = 0; ago < 7; ++ago) {
      both += used.count(weekYearDay(ago)) != 0 ? 1.0 : 0.0;
    }
    const std::string flags = raiseEach({3, 5, 7}, static_cast<double>(days.size()), "~a:", "UD");
    return flags + raiseEach({2, 3}, both, "~a:", "DL7");
  }
  std::string variants(bool otherwiseSent) {
    const auto changed = [](const std::string& key, const std::string& is, const std::string& was) {
      return is != was ? "|" + key + "=" + is : "";
    };
    const double before = run_.lastSeen != 0.0 ? run_.lastSeen : counted_.lastSeen;
    const tm is = gmt(now), was = gmt(before);
    std::string list = changed("~lh", hour(local(now)), hour(local(before))) + changed("~h", hour(is), hour(was));
    list += changed("~d", date(is), date(was)) + (date(is) != date(was) ? "|ltz=" + zone : "");
    list += changed("~m", month(is), month(was)) + changed("~q", quarter(is), quarter(was));
    list += changed("~w", week(is), week(was));
    if (otherwiseSent || !list.empty()) {
      run_.lastSeen = counted_.lastSeen = now;
    }
    return list;
  }
  std::string foldUsage() {
    std::string flags;
    if (!sent({"appExceeds3dayUsage", "appExceeds5dayUsage", "appExceeds7dayUsage"})) {
      for (const int days : {3, 5, 7}) {
        flags += addUsage(days);
      }
      const auto sixth = counted_.usage.find(gmtDay(6));
      counted_.usage.erase(counted_.usage.begin(), sixth != counted_.usage.end() ? sixth : counted_.usage.begin());
    }
    if (!sent({"~a:u15m", "~a:u30m", "~a:u60m"})) {
      const double total = counted_.total + std::exchange(run_.pending, 0.0);
      counted_.total = std::trunc(total);
      flags += raiseEach({15, 30, 60}, total / 60.0, "~a:u", "m");
    }
    return flags;
  }
  std::string addUsage(int days) {
    const std::string end = "mo" + std::to_string(days) + "D";
    const auto flag = [&](int minutes) { return "~a:u" + std::to_string(minutes) + end; };
    if (sent({flag(5), flag(10), flag(15), flag(30)})) {
      return "";
    }
    long& today = counted_.usage[gmtDay(0)];
    today = static_cast<long>(static_cast<double>(today) + run_.pending);
    long sum = today;
    for (int ago = 1; ago < days; ++ago) {
      const auto found = counted_.usage.find(gmtDay(ago));
      sum += found != counted_.usage.end() ? found->second : 0;
    }
    raise(sum >= 1800, "appExceeds" + std::to_string(days) + "dayUsage");
    return raiseEach({5, 10, 15, 30}, static_cast<double>(sum) / 60.0, "~a:u", end);
  }

  std::string key_, kaid_, kaid2_, identifier_, unsent_, lastAppearance_, eventFlow_, sceneFlow_, flowVersions_;
  std::map<std::string, double> savedAt_;
  std::map<std::string, std::string> versions_;
  Counted counted_;
  Run run_;
};

}  // namespace kesu::testing
