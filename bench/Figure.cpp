#include "Figure.h"

#include <cstdio>

#include "Stopwatch.h"
#include "foundation/Json.h"
#include "foundation/NumberText.h"

namespace kesu::bench {

Figure& Figure::compared(std::string withWhat, double number) {
  besideWhat = std::move(withWhat);
  beside = number;
  return *this;
}

Figure& Figure::atMost(double limit) {
  budget = "<= " + shortestReal(limit) + " " + unit;
  met = measured <= limit;
  return *this;
}

Figure& Figure::ratioAtMost(double limit) {
  budget = "<= " + shortestReal(limit) + " x";
  met = ratio().value_or(limit + 1.0) <= limit;
  return *this;
}

Figure& Figure::ratioAtLeast(double limit) {
  budget = ">= " + shortestReal(limit) + " x";
  met = ratio().value_or(0.0) >= limit;
  return *this;
}

std::optional<double> Figure::ratio() const {
  return besideWhat.empty() || beside == 0.0 ? std::nullopt : std::optional(measured / beside);
}

Dictionary Figure::toDictionary() const {
  Dictionary dictionary{{"what", what}, {"measured", measured}, {"unit", unit}, {"budget", budget}, {"met", met}};
  if (!besideWhat.empty()) {
    dictionary.set("besideWhat", besideWhat);
    dictionary.set("beside", beside);
  }
  return dictionary;
}

std::optional<Figure> Figure::fromDictionary(const Dictionary& dictionary) {
  const std::string* what = dictionary.findText("what");
  const std::string* unit = dictionary.findText("unit");
  const Value* measured = dictionary.find("measured");
  const Value* met = dictionary.find("met");
  if (what == nullptr || unit == nullptr || measured == nullptr || met == nullptr) {
    return std::nullopt;
  }
  Figure figure(*what, measured->realValue(), *unit);
  if (const std::string* besideWhat = dictionary.findText("besideWhat")) {
    figure.compared(*besideWhat, dictionary.find("beside")->realValue());
  }
  const std::string* budget = dictionary.findText("budget");
  figure.budget = budget != nullptr ? *budget : "";
  figure.met = met->integerValue() != 0;
  return figure;
}

void Figures::add(const Figure& figure) {
  std::string line;
  if (writeJson(figure.toDictionary(), line) == JsonStatus::Ok) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
  }
}

void Figures::addTimes(const std::string& what, const std::vector<double>& times, double budget) {
  add(Figure(what + ", p50", median(times) * kMillisecondsPerSecond, "ms").atMost(budget));
  add(Figure(what + ", p99", quantile(times, 0.99) * kMillisecondsPerSecond, "ms"));
}

}  // namespace kesu::bench
