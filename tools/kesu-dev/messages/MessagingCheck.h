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

/// The route for a path, in whichever mode; nullptr when there is none.
const MessagingRoute* findMessagingRoute(std::string_view path);

/// What a request carries, as far as the check looks at it.
struct MessagingRequest {
  std::string_view method;
  std::string_view contentType;
  std::string_view body;
};

/// What the check found.
struct MessagingCheck {
  std::vector<std::string> reasons;  // One plain sentence for each thing that is wrong.
  Dictionary body;
  bool isObject = false;  // Whether the body is a JSON object at all.
};

/// Checks a request for a route. Pure: no state, no clock, no I/O.
MessagingCheck checkMessagingRequest(const MessagingRoute& route, const MessagingRequest& request);

}  // namespace kesu::dev
