#pragma once

#include <cstddef>
#include <string>

namespace kesu {

/// Settings of the Linux HTTP client. The defaults are those of a platform's own loader.
struct LinuxHttpClientOptions {
  std::string caFile;                     ///< PEM file of authorities to trust besides the system's; empty for none.
  std::string systemCaFile;               ///< The system's own bundle; empty for that of the distribution.
  double connectTimeoutSeconds = 60;      ///< For resolving, connecting and the TLS handshake together.
  double idleTimeoutSeconds = 60;         ///< A connected request fails after this time without a byte either way.
  double longestDeadlineSeconds = 3600;   ///< No HttpRequest::deadlineSeconds counts for more.
  std::size_t maxConnectionsPerHost = 6;  ///< Also the requests sent to an HTTP/1.1 host at a time.
  std::size_t maxAdmitted = 64;           ///< Requests sent to an HTTP/2 host at a time.
};

}  // namespace kesu
