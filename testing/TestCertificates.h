#pragma once

#include <string>

#include "tools/loopback/Certificate.h"
#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::testing {

/// The certificates of a test run: a private certificate authority and servers, some of them not to be trusted.
class TestCertificates {
 public:
  TestCertificates() { authority_.save(caFile()); }

  /// Where the authority's certificate lies, and nothing else.
  const std::string& directory() const { return directory_.path(); }

  /// The authority's certificate, to be trusted by the client.
  std::string caFile() const { return directory_ / "authority.pem"; }
  /// Signed by the authority, for 127.0.0.1, ::1 and localhost.
  const loopback::Certificate& server() const { return server_; }
  /// Signed by the authority, for another host.
  const loopback::Certificate& wrongHost() const { return wrongHost_; }
  /// For 127.0.0.1, signed by itself only.
  const loopback::Certificate& selfSigned() const { return selfSigned_; }

 private:
  const loopback::TemporaryDirectory directory_;
  const loopback::Certificate authority_ = loopback::Certificate::authority("Kesu Test Authority");
  const loopback::Certificate server_ = authority_.sign("localhost");
  const loopback::Certificate wrongHost_ = authority_.sign("elsewhere", "DNS:elsewhere.example");
  const loopback::Certificate selfSigned_ = loopback::Certificate::selfSigned("localhost");
};

}  // namespace kesu::testing
