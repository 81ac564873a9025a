#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "CatalogueDescription.h"

namespace kesu::catalogue {
namespace {

namespace fs = std::filesystem;

/// A public operation as its header documents it.
struct Declaration {
  std::string function;
  std::string comment;  ///< Its lines, joined by blanks.
};

std::vector<std::string> linesOf(const fs::path& header) {
  std::ifstream file(header);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
  }
  return lines;
}

/// The operations that a header declares. Left out: deleted forms, which only reject a text in place of a flag, and the
/// forms that take attributes in braces.
std::vector<Declaration> declarationsOf(const fs::path& header) {
  std::vector<Declaration> declarations;
  std::string comment;
  std::string declaration;
  for (const std::string& line : linesOf(header)) {
    if (line.starts_with("/// ")) {
      comment += (comment.empty() ? "" : " ") + line.substr(4);
    } else if (line.starts_with("static void ") || !declaration.empty()) {
      declaration += line;
    } else {
      comment.clear();
    }
    if (declaration.ends_with(";")) {
      const std::string function = declaration.substr(12, declaration.find('(') - 12);
      if (!declaration.ends_with("= delete;") && declaration.find("initializer_list") == std::string::npos) {
        declarations.push_back({function, comment});
      }
      comment.clear();
      declaration.clear();
    }
  }
  return declarations;
}

/// The class of each header of the catalogue, which is named after it. The other headers of events/ are free of it.
std::set<std::string> classesOfTheCatalogue() {
  std::set<std::string> classes;
  for (const auto& entry : fs::directory_iterator(KESU_EVENT_HEADERS)) {
    classes.insert(entry.path().stem().string());
  }
  for (const char* other :
       {"Catalogue", "KesuEvent", "KesuCustomEvent", "KesuExplicitActivation", "KesuIdentity", "KesuGeoPoint"}) {
    EXPECT_EQ(classes.erase(other), 1U) << other;
  }
  return classes;
}

std::vector<const Operation*> operationsOf(const std::string& className) {
  std::vector<const Operation*> operations;
  for (const Operation& operation : allOperations()) {
    if (operation.className == className) {
      operations.push_back(&operation);
    }
  }
  return operations;
}

std::string kindInComments(const Key& key) {
  const bool isAngle = key.kind == KeyKind::Latitude || key.kind == KeyKind::Longitude;
  return isAngle ? "degrees" : std::string(kindName(key.kind));
}

/// The keys as the comments list them: "a", "b" (object); "c" (flag); "d" = "text".
std::string keysSentence(const Operation& operation) {
  if (operation.keys.empty()) {
    return " No keys of its own. ";
  }
  std::string text = " Keys: ";
  for (std::size_t i = 0; i < operation.keys.size(); ++i) {
    const Key& key = operation.keys[i];
    const Key* next = i + 1 < operation.keys.size() ? &operation.keys[i + 1] : nullptr;
    text += "\"" + std::string(key.key) + "\"";
    if (key.kind == KeyKind::Constant) {
      text += " = \"" + std::string(key.constant) + (next != nullptr ? "\"; " : "\"");
    } else if (next != nullptr && kindInComments(*next) == kindInComments(key)) {
      text += ", ";
    } else {
      text += " (" + kindInComments(key) + (next != nullptr ? "); " : ")");
    }
  }
  return text + ". ";
}

TEST(OperationsTest, ListsWhatThePublicHeadersDeclare) {
  std::size_t count = 0;
  for (const std::string& className : classesOfTheCatalogue()) {
    const std::vector<Declaration> declarations = declarationsOf(fs::path(KESU_EVENT_HEADERS) / (className + ".h"));
    const std::vector<const Operation*> operations = operationsOf(className);
    ASSERT_EQ(operations.size(), declarations.size()) << className;
    ASSERT_FALSE(operations.empty()) << className;
    for (std::size_t i = 0; i < operations.size(); ++i) {
      EXPECT_EQ(operations[i]->functionName(), declarations[i].function) << className;
    }
    count += operations.size();
  }
  EXPECT_EQ(count, allOperations().size());
}

TEST(OperationsTest, AgreesWithTheCommentsOfThePublicHeaders) {
  for (const std::string& className : classesOfTheCatalogue()) {
    const std::vector<Declaration> declarations = declarationsOf(fs::path(KESU_EVENT_HEADERS) / (className + ".h"));
    const std::vector<const Operation*> operations = operationsOf(className);
    for (std::size_t i = 0; i < std::min(operations.size(), declarations.size()); ++i) {
      const Operation& operation = *operations[i];
      const std::string& comment = declarations[i].comment;
      EXPECT_TRUE(comment.ends_with(" [" + className + " " + std::string(operation.selector) + "]")) << comment;
      if (!operation.updatesSceneFlow()) {
        EXPECT_TRUE(comment.starts_with("Posts event \"" + std::string(operation.event) + "\": ")) << comment;
        EXPECT_NE(comment.find(keysSentence(operation)), std::string::npos) << comment << keysSentence(operation);
      }
    }
  }
}

TEST(OperationsTest, AreIncludedByTheCatalogueHeader) {
  const std::vector<std::string> lines = linesOf(fs::path(KESU_EVENT_HEADERS) / "Catalogue.h");
  for (const std::string& className : classesOfTheCatalogue()) {
    EXPECT_EQ(std::ranges::count(lines, "#include <kesu/events/" + className + ".h>"), 1) << className;
  }
}

}  // namespace
}  // namespace kesu::catalogue
