#pragma once

#include <string>

namespace kesu::testing {

/// A certificate and its private key, as paths of PEM files.
struct TestCertificate {
  std::string certificateFile;
  std::string keyFile;
};

/// Makes the certificates of a test run: a private certificate authority and servers, some of them not to be trusted.
/// Everything is made anew (P-256 keys, valid for a day). Throws std::runtime_error when OpenSSL or the file system
/// refuses.
class TestCertificates {
 public:
  /// In a temporary directory that goes with the object.
  TestCertificates();
  /// In this directory, which must exist; the files stay.
  explicit TestCertificates(const std::string& directory);
  ~TestCertificates();

  TestCertificates(const TestCertificates&) = delete;
  TestCertificates& operator=(const TestCertificates&) = delete;

  const std::string& directory() const { return directory_; }

  /// The authority's certificate, to be trusted by the client.
  const std::string& caFile() const { return caFile_; }
  /// Signed by the authority, for 127.0.0.1, ::1 and localhost.
  const TestCertificate& server() const { return server_; }
  /// Signed by the authority, for another host.
  const TestCertificate& wrongHost() const { return wrongHost_; }
  /// For 127.0.0.1, signed by nobody but itself.
  const TestCertificate& selfSigned() const { return selfSigned_; }

 private:
  TestCertificates(std::string directory, bool isTemporary);

  const std::string directory_;
  const bool isTemporary_;
  std::string caFile_;
  TestCertificate server_;
  TestCertificate wrongHost_;
  TestCertificate selfSigned_;
};

}  // namespace kesu::testing
