// kesu_bench: measures the library against its budgets and prints one table.
//   kesu_bench [--row NAME]... [--json FILE] [--directory DIR] [--list]
// Files are made below DIR (else the system's temporary directory). Each row runs in a process of its own. The exit
// status is 1 when a budget is not met or a row cannot be measured.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>

#include "Child.h"
#include "Rows.h"
#include "Scratch.h"
#include "foundation/Json.h"

namespace kesu::bench {
namespace {

// Rows that remove many files come after those that make many (Scratch.h).
const std::vector<Row> kRows = {
    {"post", &measurePosting},      {"worker", &measureRecordRoad},
    {"screens", &measureScreens},   {"log", &measureLogging},
    {"start", &measureStart},       {"store", &measureStoreWrite},
    {"exit", &measureExit},         {"kill", &measureKill},
    {"read", &measureReadBack},     {"away", &measureAway},
    {"restart", &measureRestart},   {"resend", &measureResend},
    {"delivery", &measureDelivery}, {"delivery-tls", &measureDeliveryOverTls},
    {"idle", &measureIdle},         {"size", &measureSize},
    {"popup", &measurePopup},       {"message", &measureMessage},
};

const std::vector<Program> kPrograms = {{"fill-store", &fillStore},
                                        {"post-and-end", &postAndEnd},
                                        {"post-and-wait", &postAndWait},
                                        {"deliver-all", &deliverAll},
                                        {"send-bare", &sendBare}};

struct Options {
  std::vector<std::string> rows;
  std::string jsonFile;
  std::string directory;
  bool list = false;
};

std::string numberText(double number) {
  char text[32];
  std::snprintf(text, sizeof text, number >= 1000.0 ? "%.0f" : number >= 10.0 ? "%.1f" : "%.2f", number);
  return text;
}

/// Pads to a number of characters; the texts are UTF-8.
std::string padded(const std::string& text, std::size_t width) {
  const auto characters = static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
  return text + std::string(characters < width ? width - characters : 1, ' ');
}

void printLine(const std::string& row, const std::string& what, const std::string& measured, const std::string& beside,
               const std::string& ratio, const std::string& budget, const std::string& verdict) {
  std::cout << padded(row, 14) << padded(what, 74) << padded(measured, 18) << padded(beside, 40) << padded(ratio, 9)
            << padded(budget, 14) << verdict << std::endl;
}

void printFigure(const std::string& row, const Figure& figure) {
  const std::string beside =
      figure.besideWhat.empty() ? "" : numberText(figure.beside) + " (" + figure.besideWhat + ")";
  const auto ratio = figure.ratio();
  const char* const verdict = figure.budget.empty() ? "" : figure.met ? "ok" : "OVER";
  printLine(row, figure.what, numberText(figure.measured) + " " + figure.unit, beside,
            ratio ? numberText(*ratio) + " x" : "", figure.budget, verdict);
}

std::vector<Figure> figuresIn(const std::string& output) {
  std::vector<Figure> figures;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    const auto value = parseJson(line);
    const Dictionary* dictionary = value ? value->dictionary() : nullptr;
    if (auto figure = dictionary != nullptr ? Figure::fromDictionary(*dictionary) : std::nullopt) {
      figures.push_back(std::move(*figure));
    }
  }
  return figures;
}

/// Measures one row in another process and prints its lines. Returns whether all is within budget.
bool runRow(const std::string& name, Array& all) {
  const ChildResult result = runProgram({ownPath(), "--measure", name});
  const std::vector<Figure> figures = figuresIn(result.output);
  for (const Figure& figure : figures) {
    printFigure(name, figure);
    Dictionary entry{{"row", name}};
    for (const auto& [key, value] : figure.toDictionary()) {
      entry.set(key, value);
    }
    all.push_back(std::move(entry));
  }
  if (!result.ended) {
    printLine(name, "(ended before its time)", "", "", "", "", "FAILED");
  }
  return result.ended && std::all_of(figures.begin(), figures.end(), [](const Figure& figure) { return figure.met; });
}

int printTable(const Options& options) {
  const RunDirectory directory(options.directory);
  directory.waitUntilFast();
  printLine("row", "what", "measured", "beside it", "ratio", "budget", "verdict");
  Array all;
  bool met = true;
  for (const Row& row : kRows) {
    if (options.rows.empty() || std::ranges::find(options.rows, row.name) != options.rows.end()) {
      met = runRow(row.name, all) && met;
    }
  }
  std::string json;
  if (!options.jsonFile.empty() && writeJson(Value(std::move(all)), json) == JsonStatus::Ok) {
    std::ofstream(options.jsonFile) << json << '\n';
  }
  return met ? 0 : 1;
}

template <typename Entry>
const Entry* named(const std::vector<Entry>& entries, const std::string& name) {
  const auto found = std::ranges::find(entries, name, &Entry::name);
  return found == entries.end() ? nullptr : &*found;
}

int measureHere(const std::string& name) {
  const Row* const row = named(kRows, name);
  Figures figures;
  if (row != nullptr) {
    row->measure(figures);
  }
  return row != nullptr ? 0 : 2;
}

int runHere(std::vector<std::string> words) {
  const Program* const program = named(kPrograms, words.front());
  words.erase(words.begin());
  return program != nullptr ? program->run(words) : 2;
}

/// Returns nothing for unknown arguments.
std::optional<Options> optionsFrom(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t at = 0; at < words.size(); ++at) {
    const bool hasValue = at + 1 < words.size();
    if (words[at] == "--row" && hasValue && named(kRows, words[at + 1]) != nullptr) {
      options.rows.push_back(words[++at]);
    } else if (words[at] == "--json" && hasValue) {
      options.jsonFile = words[++at];
    } else if (words[at] == "--directory" && hasValue) {
      options.directory = words[++at];
    } else if (words[at] == "--list") {
      options.list = true;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

int run(std::vector<std::string> words) {
  if (words.size() == 2 && words[0] == "--measure") {
    return measureHere(words[1]);
  }
  if (words.size() >= 2 && words[0] == "--program") {
    words.erase(words.begin());
    return runHere(std::move(words));
  }
  const auto options = optionsFrom(words);
  if (!options || options->list) {
    std::cout << "kesu_bench [--row NAME]... [--json FILE] [--directory DIR] [--list]; rows:";
    for (const Row& row : kRows) {
      std::cout << ' ' << row.name;
    }
    std::cout << '\n';
    return options ? 0 : 2;
  }
  return printTable(*options);
}

}  // namespace
}  // namespace kesu::bench

int main(int argc, char** argv) {
  return kesu::bench::run({argv + 1, argv + argc});
}
