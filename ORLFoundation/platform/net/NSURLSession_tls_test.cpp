// Against nginx: files, ranges, many requests, HTTP/2, and certificates that are right and wrong.
#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/ProcessorTime.h>
#include <tests/support/TemporaryFolder.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace {

using namespace ORLFoundation;
using orlftest::Loading;
using orlftest::TaskRecord;
using testing::HasSubstr;

/// A certificate with its key, and the files that hold them.
class Certificate {
 public:
  /// Valid from and until so many days from now; its own issuer where none is given.
  Certificate(const std::string& host, int from, int until, const Certificate* issuer)
      : key_(EVP_EC_gen("P-256"), EVP_PKEY_free), certificate_(X509_new(), X509_free) {
    X509* const x = certificate_.get();
    static int serial = 1;
    X509_set_version(x, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(x), ++serial);
    X509_time_adj_ex(X509_getm_notBefore(x), from, 0, nullptr);
    X509_time_adj_ex(X509_getm_notAfter(x), until, 0, nullptr);
    X509_set_pubkey(x, key_.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(x), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(host.c_str()), -1, -1, 0);
    const Certificate& signer = issuer == nullptr ? *this : *issuer;
    X509_set_issuer_name(x, X509_get_subject_name(signer.certificate_.get()));
    if (host.find('.') == std::string::npos) {
      addExtension(NID_basic_constraints, "critical,CA:TRUE");
    } else {
      addExtension(NID_subject_alt_name, "DNS:" + host);
    }
    X509_sign(x, signer.key_.get(), EVP_sha256());
  }

  void write(const std::string& certificateFile, const std::string& keyFile) const {
    std::FILE* file = std::fopen(certificateFile.c_str(), "w");
    PEM_write_X509(file, certificate_.get());
    std::fclose(file);
    file = std::fopen(keyFile.c_str(), "w");
    PEM_write_PrivateKey(file, key_.get(), nullptr, nullptr, 0, nullptr, nullptr);
    std::fclose(file);
  }

 private:
  void addExtension(int kind, const std::string& value) {
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
    X509_add_ext(certificate_.get(), extension, -1);
    X509_EXTENSION_free(extension);
  }

  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
  const std::unique_ptr<X509, decltype(&X509_free)> certificate_;
};

sockaddr_in loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int freePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t length = sizeof address;
  EXPECT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), length), 0);
  EXPECT_EQ(::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length), 0);
  ::close(socket);
  return ntohs(address.sin_port);
}

bool listens(int port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool isThere =
      ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(socket);
  return isThere;
}

/// nginx with a folder of files, on one port plain and on one with a certificate for each name.
class Nginx {
 public:
  Nginx() : plainPort_(freePort()), securePort_(freePort()), ancientPort_(freePort()) {
    const Certificate authority("authority", -10, 10, nullptr);
    const Certificate stranger("stranger", -10, 10, nullptr);
    authority.write(path("authority.pem"), path("authority.key"));
    addServer("good.localhost", Certificate("good.localhost", -1, 1, &authority));
    addServer("old.localhost", Certificate("old.localhost", -9, -1, &authority));
    addServer("early.localhost", Certificate("early.localhost", 1, 9, &authority));
    addServer("wrong.localhost", Certificate("other.localhost", -1, 1, &authority));
    addServer("strange.localhost", Certificate("strange.localhost", -1, 1, &stranger));
    addServer("self.localhost", Certificate("self.localhost", -1, 1, nullptr));
    addServer("ancient.localhost", Certificate("ancient.localhost", -1, 1, &authority),
              ancientPort_, "ssl_protocols TLSv1 TLSv1.1; ssl_ciphers ALL:@SECLEVEL=0; ");
    folder_.write("files/kilobyte", std::string(1000, 'k'));
    folder_.write("files/megabytes", std::string(8'000'000, 'm'));
    folder_.write("files/long", "");
    std::filesystem::resize_file(path("files/long"), 40'000'000);
    folder_.write("nginx.conf", configuration());
    process_ = std::make_unique<orlftest::BesideProcess>(
        std::vector<std::string>{"/usr/sbin/nginx", "-p", folder_.path().string(), "-c",
                                 path("nginx.conf"), "-e", path("error.log")});
    for (int i = 0; i < 1000 && !(listens(plainPort_) && listens(securePort_)); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  static const Nginx& shared() {
    static const Nginx nginx;
    return nginx;
  }

  [[nodiscard]] NSURL plain(const std::string& file) const {
    return NSURL::URLWithString("http://127.0.0.1:" + std::to_string(plainPort_) + file).value();
  }
  [[nodiscard]] NSURL secure(const std::string& host, const std::string& file = "/kilobyte") const {
    const int port = host == "ancient" ? ancientPort_ : securePort_;
    return NSURL::URLWithString("https://" + host + ".localhost:" + std::to_string(port) + file)
        .value();
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.path() / name; }

 private:
  void addServer(const std::string& name, const Certificate& certificate) {
    addServer(name, certificate, securePort_, "");
  }
  void addServer(const std::string& name, const Certificate& certificate, int port,
                 const std::string& more) {
    certificate.write(path(name + ".pem"), path(name + ".key"));
    servers_ += "server { listen 127.0.0.1:" + std::to_string(port) + " ssl http2; server_name " +
                name + "; ssl_certificate " + path(name + ".pem") + "; ssl_certificate_key " +
                path(name + ".key") + "; root " + path("files") + ";" + more + kMarks +
                "location /redirect { return 302 http://127.0.0.1:" + std::to_string(plainPort_) +
                "/seen; } }\n";
  }
  [[nodiscard]] std::string configuration() const {
    std::string temporary;
    for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
      temporary += std::string(kind) + "_temp_path " + path(kind) + ";\n";
    return "daemon off; master_process off; pid " + path("pid") +
           ";\nevents { worker_connections 1000; }\nhttp { access_log off;\n" + temporary +
           "keepalive_requests 100000;\nserver { listen 127.0.0.1:" + std::to_string(plainPort_) +
           "; root " + path("files") +
           "; location /seen { return 200 \"$http_authorization|$http_cookie\"; }" + kMarks +
           "}\n" + servers_ + "}\n";
  }

  static constexpr const char* kMarks =
      " add_header X-Connection $connection; add_header X-Protocol $server_protocol; ";

  const orlftest::TemporaryFolder folder_;
  const int plainPort_, securePort_, ancientPort_;
  std::string servers_;
  std::unique_ptr<orlftest::BesideProcess> process_;
};

/// The server's numbers of the connections over which tasks were answered.
std::set<std::string> connectionsOf(orlftest::RecordingDelegate& delegate, NSUInteger tasks) {
  std::set<std::string> connections;
  for (NSUInteger task = 1; task <= tasks; ++task)
    connections.insert(delegate.record(task).field("x-connection"));
  return connections;
}

/// A session that trusts the tests' authority beside the system's.
std::shared_ptr<NSURLSessionConfiguration> trusting() {
  auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setAdditionalTrustedCertificatesFile(Nginx::shared().path("authority.pem"));
  return configuration;
}

TEST(NSURLSessionTLS, TrustsAnIssuerThatTheConfigurationAdds) {
  Loading loading(trusting());
  const TaskRecord record = loading.data(Nginx::shared().secure("good"));
  EXPECT_EQ(record.error, nullptr) << record.error->description();
  EXPECT_EQ(record.status(), 200);
  EXPECT_EQ(record.body, std::string(1000, 'k'));
}

TEST(NSURLSessionTLS, RefusesEveryOtherCertificate) {
  Loading loading(trusting());
  const std::pair<const char*, NSURLError> rows[] = {
      {"old", NSURLErrorServerCertificateHasBadDate},
      {"early", NSURLErrorServerCertificateNotYetValid},
      {"wrong", NSURLErrorServerCertificateUntrusted},
      {"strange", NSURLErrorServerCertificateHasUnknownRoot},
      {"self", NSURLErrorServerCertificateUntrusted},
      {"ancient", NSURLErrorSecureConnectionFailed},
  };
  for (const auto& [host, code] : rows) {
    const TaskRecord record = loading.data(Nginx::shared().secure(host));
    EXPECT_EQ(record.code(), code)
        << host << ": " << (record.error ? record.error->description() : "");
    EXPECT_EQ(record.response, nullptr) << host;
    EXPECT_EQ(record.body, "");
  }
}

TEST(NSURLSessionTLS, RefusesTheIssuerThatNobodyAdded) {
  {
    const std::string authority = Nginx::shared().path("authority.pem");
    const orlftest::EnvironmentVariable variables[] = {{"SSL_CERT_FILE", authority},
                                                       {"SSL_CERT_DIR", authority},
                                                       {"CURL_CA_BUNDLE", authority},
                                                       {"CURL_CA_PATH", authority}};
    EXPECT_EQ(Loading().data(Nginx::shared().secure("good")).code(),
              NSURLErrorServerCertificateHasUnknownRoot);
  }
  auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setAdditionalTrustedCertificatesFile("/no/such/file");
  EXPECT_EQ(Loading(configuration).data(Nginx::shared().secure("good")).code(),
            NSURLErrorSecureConnectionFailed);
}

TEST(NSURLSessionTLS, KeepsSecretsFromAnotherScheme) {
  Loading loading(trusting());
  const auto request =
      NSMutableURLRequest::requestWithURL(Nginx::shared().secure("good", "/redirect"));
  request->setValue("Bearer hidden", "Authorization");
  request->setValue("a=hidden", "Cookie");
  EXPECT_EQ(loading.data(request).body, "|");
}

TEST(NSURLSessionTLS, SpeaksHTTP2SideBySideOverFewConnections) {
  constexpr std::size_t kRequests = 50;
  constexpr NSInteger kConnections = 3;
  const auto configuration = trusting();
  configuration->setHTTPMaximumConnectionsPerHost(kConnections);
  Loading loading(configuration);
  const auto request = NSURLRequest::requestWithURL(Nginx::shared().secure("good"));
  // The first tells what the server speaks.
  loading.session->dataTaskWithRequest(request)->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(1));
  for (std::size_t i = 1; i < kRequests; ++i)
    loading.session->dataTaskWithRequest(request)->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(kRequests));
  for (NSUInteger task = 1; task <= kRequests; ++task)
    EXPECT_EQ(loading.delegate->record(task).body, std::string(1000, 'k')) << task;
  const auto connections = connectionsOf(*loading.delegate, kRequests);
  EXPECT_LE(connections.size(), static_cast<std::size_t>(kConnections));
  for (NSUInteger task = 1; task <= kRequests; ++task)
    EXPECT_EQ(loading.delegate->record(task).field("x-protocol"), "HTTP/2.0") << task;
  // One after the other, they all use one that is there.
  std::set<std::string> later;
  for (int i = 0; i < 10; ++i) later.insert(loading.data(request).field("x-connection"));
  EXPECT_EQ(later.size(), 1U);
  EXPECT_EQ(connections.count(*later.begin()), 1U);
  EXPECT_EQ(loading.data(Nginx::shared().plain("/kilobyte")).field("x-protocol"), "HTTP/1.1");
}

TEST(NSURLSessionTLS, SpeaksHTTP2AlsoWhereOneReaderIsSlow) {
  class Slow : public orlftest::RecordingDelegate {
   public:
    void URLSessionDataTaskDidReceiveData(const Session& session,
                                          const std::shared_ptr<NSURLSessionDataTask>& dataTask,
                                          const NSData& data) override {
      RecordingDelegate::URLSessionDataTaskDidReceiveData(session, dataTask, data);
      if (dataTask->taskIdentifier() == 1)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  };
  const auto configuration = trusting();
  configuration->setHTTPMaximumConnectionsPerHost(1);
  const auto delegate = std::make_shared<Slow>();
  const auto session = NSURLSession::sessionWithConfiguration(configuration, delegate,
                                                              std::make_shared<NSOperationQueue>());
  session
      ->dataTaskWithRequest(
          NSURLRequest::requestWithURL(Nginx::shared().secure("good", "/megabytes")))
      ->resume();
  const auto small = NSURLRequest::requestWithURL(Nginx::shared().secure("good"));
  for (int i = 0; i < 5; ++i) session->dataTaskWithRequest(small)->resume();
  ASSERT_TRUE(delegate->waitForCompletions(6));
  EXPECT_EQ(delegate->record(1).body, std::string(8'000'000, 'm'));
  for (NSUInteger task = 2; task <= 6; ++task)
    EXPECT_EQ(delegate->record(task).body, std::string(1000, 'k'));
  EXPECT_EQ(connectionsOf(*delegate, 6).size(), 1U);
  session->invalidateAndCancel();
}

TEST(NSURLSessionFiles, GivesRangesAndConditions) {
  Loading loading;
  const auto request = NSMutableURLRequest::requestWithURL(Nginx::shared().plain("/megabytes"));
  request->setValue("bytes=100-199", "Range");
  const TaskRecord part = loading.data(request);
  EXPECT_EQ(part.status(), 206);
  EXPECT_EQ(part.body, std::string(100, 'm'));
  EXPECT_EQ(part.expected, 100);
  request->setValue("bytes=9000000-", "Range");
  EXPECT_EQ(loading.data(request).status(), 416);
  const TaskRecord whole = loading.download(Nginx::shared().plain("/megabytes"));
  EXPECT_EQ(whole.body, std::string(8'000'000, 'm'));
  request->setValue(std::nullopt, "Range");
  request->setValue(whole.field("Last-Modified"), "If-Modified-Since");
  const TaskRecord same = loading.data(request);
  EXPECT_EQ(same.status(), 304);
  EXPECT_EQ(same.error, nullptr);
  EXPECT_EQ(same.body, "");
}

/// The most memory that the process held since `forgetPeak`, in bytes.
std::int64_t peakMemory() {
  const std::string status = orlftest::contentOf("/proc/self/status");
  constexpr std::string_view kName = "VmHWM:";
  return 1024 * std::stoll(status.substr(status.find(kName) + kName.size()));
}
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

TEST(NSURLSessionFiles, AreDownloadedWithoutBeingHeldInMemory) {
  constexpr std::int64_t kSize = 40'000'000;
  Loading loading;
  loading.delegate->keepsBodies_ = false;
  loading.download(Nginx::shared().plain("/megabytes"));
  forgetPeak();
  const std::int64_t before = peakMemory();
  const TaskRecord record = loading.download(Nginx::shared().plain("/long"));
  EXPECT_EQ(record.error, nullptr);
  EXPECT_EQ(record.written, kSize);
  EXPECT_LT(peakMemory() - before, 4'000'000);
}

TEST(NSURLSessionFiles, LoadsTenThousandTimesOverAHundredConnections) {
  const auto requests = static_cast<std::size_t>(10'000 / orlftest::kSlowdown);
  constexpr std::size_t kConnections = 100;
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(kConnections);
  Loading loading(configuration);
  const auto request = NSURLRequest::requestWithURL(Nginx::shared().plain("/kilobyte"));
  for (std::size_t i = 0; i < requests; ++i)
    loading.session->dataTaskWithRequest(request)->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(requests));
  const auto connections = connectionsOf(*loading.delegate, requests);
  std::size_t whole = 0;
  for (NSUInteger task = 1; task <= requests; ++task) {
    const TaskRecord record = loading.delegate->record(task);
    if (record.error == nullptr && record.body.size() == 1000) ++whole;
  }
  EXPECT_EQ(whole, requests);
  EXPECT_LE(connections.size(), kConnections);
  EXPECT_GE(connections.size(), kConnections / 2);
}

}  // namespace
