#include "services/HttpStatusText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kesu {
namespace {

struct Meaning {
  int status;
  std::string_view text;
};

constexpr auto kMeanings = std::to_array<Meaning>({{100, "continue"},
                                                   {101, "switching protocols"},
                                                   {200, "no error"},
                                                   {201, "created"},
                                                   {202, "accepted"},
                                                   {203, "non-authoritative information"},
                                                   {204, "no content"},
                                                   {205, "reset content"},
                                                   {206, "partial content"},
                                                   {300, "multiple choices"},
                                                   {301, "moved permanently"},
                                                   {302, "found"},
                                                   {303, "see other"},
                                                   {304, "not modified"},
                                                   {305, "needs proxy"},
                                                   {307, "temporarily redirected"},
                                                   {400, "bad request"},
                                                   {401, "unauthorized"},
                                                   {402, "payment required"},
                                                   {403, "forbidden"},
                                                   {404, "not found"},
                                                   {405, "method not allowed"},
                                                   {406, "unacceptable"},
                                                   {407, "proxy authentication required"},
                                                   {408, "request timed out"},
                                                   {409, "conflict"},
                                                   {410, "no longer exists"},
                                                   {411, "length required"},
                                                   {412, "precondition failed"},
                                                   {413, "request too large"},
                                                   {414, "requested URL too long"},
                                                   {415, "unsupported media type"},
                                                   {416, "requested range not satisfiable"},
                                                   {417, "expectation failed"},
                                                   {429, "too many requests"},
                                                   {500, "internal server error"},
                                                   {501, "unimplemented"},
                                                   {502, "bad gateway"},
                                                   {503, "service unavailable"},
                                                   {504, "gateway timed out"},
                                                   {505, "unsupported version"}});

constexpr std::array<std::string_view, 6> kClasses = {"server error", "informational", "success",
                                                      "redirected",   "client error",  "server error"};

}  // namespace

std::string_view httpStatusText(int status) {
  const auto* known = std::find_if(kMeanings.begin(), kMeanings.end(),
                                   [status](const Meaning& meaning) { return meaning.status == status; });
  if (known != kMeanings.end()) {
    return known->text;
  }
  const std::size_t group = status < 0 ? 0 : static_cast<std::size_t>(status) / 100;
  return kClasses[std::min(group, kClasses.size() - 1)];
}

}  // namespace kesu
