#include "platform/linux/LinuxBundle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/linux/HomeDirectory.h"
#include "testing/FakeBundle.h"
#include "testing/FakeLocale.h"
#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

class LinuxBundleTest : public ::testing::Test {
 protected:
  void write(const std::string& name, const std::string& content) { directory_.write(name, content); }

  void writeInfo(const std::string& entries) {
    write("Info.plist",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }

  std::string read(const std::string& name, const std::string& type, std::size_t limit = 100) {
    const auto bytes = bundle_.resource(name, type, limit);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "none";
  }

  testing::ScopedEnvironment environment_;
  testing::FakeLocale locale_;
  const testing::TemporaryDirectory directory_;
  LinuxBundle bundle_{locale_, directory_.path() + "/./"};
};

TEST_F(LinuxBundleTest, LaysEnvironmentOverInfoAndHostOverBoth) {
  const struct {
    const char* variable;
    const char* key;
  } settings[] = {{"KESU_OVERRIDE_SERVER", "KesuOverrideServer"},
                  {"KESU_MESSAGING_HOST", "KesuMessagingHost"},
                  {"KESU_REACHABILITY_HOST", "KesuReachabilityHost"},
                  {"KESU_DEVMODE", "devmode"}};
  const struct {
    std::optional<std::string> environment;
    std::string host;
    std::string expected;
  } cases[] = {{std::nullopt, "", "plist"}, {"", "", "plist"}, {"env", "", "env"}, {"env", "host", "host"}};
  for (const auto& [variable, key] : settings) {
    writeInfo("<key>" + std::string(key) +
              "</key><string>plist</string><key>CFBundleVersion</key><integer>7</integer>");
    for (const auto& [environment, host, expected] : cases) {
      environment_.set(variable, environment);
      LinuxBundle bundle(locale_, directory_.path(), {{key, host}});
      EXPECT_EQ(bundle.infoText(key), expected) << variable;
      EXPECT_EQ(bundle.infoText("CFBundleVersion"), "7");
      EXPECT_TRUE(bundle.hasInfo());
    }
    environment_.set(variable, std::nullopt);
  }
}

TEST_F(LinuxBundleTest, SaysWhenThereIsNoUsableInfo) {
  environment_.set("KESU_DEVMODE", "true");
  EXPECT_FALSE(bundle_.hasInfo());
  EXPECT_EQ(bundle_.infoText("devmode"), "true");
  writeInfo("");
  EXPECT_FALSE(bundle_.hasInfo()) << "read once";
  const std::string unusable[] = {"", "<plist><array/></plist>", "{}", std::string(2U << 20U, ' ')};
  for (const std::string& content : unusable) {
    write("Info.plist", content);
    EXPECT_FALSE(LinuxBundle(locale_, directory_.path()).hasInfo()) << content.substr(0, 20);
  }
}

TEST_F(LinuxBundleTest, ReadsResourcesInsideTheBundleOnly) {
  write("config.json", "{}");
  write("plain", "text");
  ::mkfifo((directory_ / "fifo").c_str(), 0600);
  fs::create_directory(directory_ / "images");
  write("images/a.png", "png");
  fs::create_symlink("plain", directory_ / "link");
  EXPECT_EQ(bundle_.path(), directory_.path());
  EXPECT_EQ(read("config", "json"), "{}");
  EXPECT_EQ(read("plain", ""), "text");
  EXPECT_EQ(read("link", ""), "text");
  EXPECT_EQ(read("images/a", "png"), "png");
  EXPECT_EQ(read("plain", "", 4), "text");
  EXPECT_EQ(read("plain", "", 3), "none");
  for (const char* name : {"missing", "fifo", "images", "", "images/../plain", "../", "/etc/passwd"}) {
    EXPECT_EQ(read(name, ""), "none") << name;
  }
}

TEST_F(LinuxBundleTest, ChoosesLocalizationsByTheUsersLanguages) {
  using Texts = std::vector<std::string>;
  for (const char* name : {"en.lproj", "de.lproj", "zh-Hant.lproj", "pt_BR.lproj", "Base.lproj", "fr"}) {
    fs::create_directory(directory_ / name);
  }
  write("it.lproj", "a file");
  const std::pair<Texts, Texts> cases[] = {{{"de-AT", "en-US", "de"}, {"de", "en"}},
                                           {{"zh-Hant-TW"}, {"zh-Hant"}},
                                           {{"zh-CN", "pt-BR", "fr", "it"}, {"pt_BR"}},
                                           {{"pt-PT"}, {"en"}},
                                           {{}, {"en"}}};
  for (const auto& [languages, expected] : cases) {
    locale_.languages = languages;
    EXPECT_EQ(bundle_.preferredLocalizations(), expected);
  }
  writeInfo("<key>CFBundleDevelopmentRegion</key><string>de</string>");
  EXPECT_EQ(LinuxBundle(locale_, directory_.path()).preferredLocalizations(), Texts{"de"});
}

TEST_F(LinuxBundleTest, IsTheExecutablesDirectoryByDefault) {
  EXPECT_EQ(LinuxBundle(locale_, "").path(), fs::read_symlink("/proc/self/exe").parent_path());
}

TEST_F(LinuxBundleTest, HomeDirectoryIsTheFirstThatIsGiven) {
  const std::string program = fs::path(executablePath()).filename();
  const struct {
    const char* wanted;
    const char* kesuHome;
    const char* dataHome;
    const char* userHome;
    const char* identifier;
    std::string expected;
  } cases[] = {{"/w", "/k", "/x", "/u", "tv.app", "/w"},
               {"", "/k", "/x", "/u", "tv.app", "/k"},
               {"", "", "/x", "/u", "tv.app", "/x/tv.app"},
               {"", "", "relative", "/u", "tv.app", "/u/.local/share/tv.app"},
               {"", "", "", "/u", "", "/u/.local/share/" + program},
               {"", "", "/x", "", "../../etc", "/x/" + program},
               {"", "", "/x", "", "a..b", "/x/" + program},
               {"", "", "", "", "tv.app", ""},
               {"here", "", "", "", "", (fs::current_path() / "here").string()}};
  for (const auto& row : cases) {
    environment_.set("KESU_HOME", row.kesuHome);
    environment_.set("XDG_DATA_HOME", row.dataHome);
    environment_.set("HOME", row.userHome);
    testing::FakeBundle bundle;
    bundle.dictionary.set("CFBundleIdentifier", row.identifier);
    EXPECT_EQ(homeDirectory(row.wanted, bundle), row.expected);
  }
}

}  // namespace
}  // namespace kesu
