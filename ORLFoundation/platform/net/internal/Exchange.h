/// Loads from a server, through libcurl: one hop, or several where the server redirects.
#pragma once

#include <ORLFoundation/platform/net/internal/AnswerHead.h>
#include <ORLFoundation/platform/net/internal/BodyDecoder.h>
#include <ORLFoundation/platform/net/internal/CurlHandle.h>
#include <ORLFoundation/platform/net/internal/Loader.h>
#include <ORLFoundation/platform/net/internal/Transfer.h>
#include <ORLFoundation/platform/net/internal/TransferPlan.h>

#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::net {

class Exchange final : public Transfer {
 public:
  Exchange(Loader& loader, std::shared_ptr<LoadingTask> task, std::shared_ptr<Recipient> recipient,
           TransferPlan plan);
  ~Exchange() override;

  /// Of a loader's exchanges.
  static void setUpPattern(const CurlPattern& pattern);
  [[nodiscard]] static Exchange& ofHandle(CURL* handle);

  void begin() override;
  void proceed() override;
  [[nodiscard]] LoadTime due() const override;
  /// libcurl is done with the hop; goes on with the next, or ends and destroys this.
  void ended(CURLcode result);

 private:
  void sendHop();
  void setUp();
  void setUpFields(bool hasBody);
  [[nodiscard]] bool hasBody() const noexcept;
  void detach() noexcept;
  void settle(CURLcode result);
  [[nodiscard]] NSURLError codeOfFailure(CURLcode result) const;
  void follow();
  void heard() noexcept;
  void noteSent(curl_off_t sent);

  // What libcurl calls, with the exchange.
  [[nodiscard]] static Exchange& of(void* self) noexcept;
  static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* self);
  static int onProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);
  static int onSocket(void* self, curl_socket_t, curlsocktype);
  static int onRequest(void* self, char*, char*, int, int);
  static int onResolve(void*, void*, void* self);
  [[nodiscard]] bool takeHeader(std::string_view line);
  [[nodiscard]] std::size_t takeBody(std::span<const std::uint8_t> bytes);
  [[nodiscard]] Recipient::Taking takeAnswer(std::span<const std::uint8_t> bytes);
  [[nodiscard]] Recipient::Taking refuse(NSURLError code) noexcept;
  void answerBegins();

  Loader& loader_;
  Hop hop_;
  const double timeout_;  ///< Seconds of silence.
  const bool usesCookies_;
  const bool decodes_;
  int redirects_ = 0;
  std::optional<CurlHandle> handle_;  ///< Of the hop.
  CURLM* multi_ = nullptr;            ///< That has the handle.
  AnswerHead head_;
  std::optional<std::string> location_;  ///< Of a redirect that is followed.
  std::size_t skipped_ = 0;              ///< Bytes of its body.
  BodyEncoding encoding_ = BodyEncoding::None;
  std::unique_ptr<BodyDecoder> decoder_;  ///< There from the body's first bytes on.
  curl_off_t sent_ = 0;                   ///< Bytes of the request's body, in this hop.
  std::optional<NSURLError> refusal_;
  bool isStarted_ = false;
  bool isPaused_ = false;
  std::optional<CURLcode> result_;  ///< While the delegate has not answered.
  LoadTime heard_ = kNeverDue;
};

}  // namespace ORLFoundation::internal::net
