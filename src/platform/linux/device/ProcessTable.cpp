#include "platform/linux/device/ProcessTable.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <system_error>

#include "platform/linux/base/SystemFile.h"
#include "platform/linux/device/SystemTexts.h"

namespace kesu {
namespace {

// Fields of the line, counted from the status letter, which follows the name.
constexpr std::size_t kStatus = 0;
constexpr std::size_t kParent = 1;
constexpr std::size_t kFlags = 6;
constexpr std::size_t kPriority = 15;
constexpr std::size_t kStartTicks = 19;
constexpr std::size_t kFields = 20;

std::optional<std::array<std::string_view, kFields>> fieldsOf(std::string_view text) {
  std::array<std::string_view, kFields> fields;
  for (std::string_view& field : fields) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
    field = text.substr(0, text.find(' '));
    text.remove_prefix(field.size());
    if (field.empty()) {
      return std::nullopt;
    }
  }
  return fields;
}

/// Numbers outside a type's range become its nearest end: real-time priorities are below 0.
template <typename Number>
Number clampedTo(std::int64_t number) {
  return static_cast<Number>(std::clamp(number, std::int64_t{std::numeric_limits<Number>::min()},
                                        std::int64_t{std::numeric_limits<Number>::max()}));
}

std::vector<std::int32_t> processIds(const std::string& directory) {
  std::vector<std::int32_t> ids;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    const auto id = wholeNumber(entry->path().filename().string());
    if (id && *id > 0 && *id <= std::numeric_limits<std::int32_t>::max()) {
      ids.push_back(static_cast<std::int32_t>(*id));
    }
  }
  std::ranges::sort(ids);
  return ids;
}

}  // namespace

std::optional<ProcessDescription> describedProcess(std::string_view stat) {
  const std::size_t open = stat.find('(');
  const std::size_t close = stat.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
    return std::nullopt;
  }
  const auto fields = fieldsOf(stat.substr(close + 1));
  if (!fields || (*fields)[kStatus].size() != 1) {
    return std::nullopt;
  }
  const auto number = [&fields](std::size_t field) { return wholeNumber((*fields)[field]); };
  const auto id = wholeNumber(stat.substr(0, open));
  if (!id || !number(kParent) || !number(kFlags) || !number(kPriority) || !number(kStartTicks)) {
    return std::nullopt;
  }
  ProcessDescription result;
  result.facts.processId = clampedTo<std::int32_t>(*id);
  result.facts.name = cleanText(stat.substr(open + 1, close - open - 1));
  result.facts.priority = clampedTo<std::uint8_t>(*number(kPriority));
  result.facts.status = static_cast<std::int8_t>((*fields)[kStatus].front());
  result.facts.flags = clampedTo<std::uint32_t>(*number(kFlags));
  result.parentId = clampedTo<std::int32_t>(*number(kParent));
  result.startTicks = *number(kStartTicks);
  return result;
}

std::optional<ProcessDescription> readProcess(const std::string& directory, std::int32_t processId) {
  const auto stat = readSystemFile(directory + "/" + std::to_string(processId) + "/stat");
  return stat ? describedProcess(*stat) : std::nullopt;
}

std::optional<std::vector<ProcessFacts>> readProcesses(const std::string& directory, std::int64_t bootSeconds) {
  const std::int64_t ticksPerSecond = std::max(1L, ::sysconf(_SC_CLK_TCK));
  std::vector<ProcessFacts> processes;
  for (const std::int32_t id : processIds(directory)) {
    if (auto process = readProcess(directory, id)) {
      process->facts.startSeconds = bootSeconds + process->startTicks / ticksPerSecond;
      processes.push_back(std::move(process->facts));
    }
  }
  return processes.empty() ? std::nullopt : std::optional(std::move(processes));
}

}  // namespace kesu
