#pragma once

#include <kesu/foundation/Value.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// What an application asks the messaging service for.
enum class MessagingCall {
  Count,          // How many messages this installation has not fetched.
  NewHeaders,     // Their headers.
  SingleMessage,  // One message, whether fetched before or not.
  NewMessages,    // All messages not fetched, whole.
  Tags,           // The personalization tags.
};

/// A route of the service. It exists for applications in production and in development mode alike.
struct MessagingRoute {
  MessagingCall call;
  std::string_view method;
  std::string_view productionPath;
  std::string_view developmentPath;
};

std::span<const MessagingRoute> messagingRoutes();

/// Finds the route of a path, in either mode; null when there is none.
const MessagingRoute* findMessagingRoute(std::string_view path);

/// The parts of a request that the check reads.
struct MessagingRequest {
  std::string_view method;
  std::string_view contentType;
  std::string_view body;
};

/// What the check found.
struct MessagingCheck {
  std::vector<std::string> reasons;  // Why the request is bad, one plain sentence each; none = good.
  Dictionary body;                   // Empty when it is no JSON object.
};

/// Checks a request for a route. Pure: no state, no clock, no I/O.
MessagingCheck checkMessagingRequest(const MessagingRoute& route, const MessagingRequest& request);

}  // namespace kesu::dev
