#include <ORLFoundation/platform/net/internal/Exchange.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>
#include <ORLFoundation/platform/net/internal/CookieJar.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <string_view>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

using std::chrono::steady_clock;

/// A redirect's body is read, so that its connection can be used again, unless it is longer.
constexpr std::size_t kMostSkipped = std::size_t{256} * 1024;
/// What libcurl reads from a socket at a time.
constexpr long kBufferSize = long{64} * 1024;
/// libcurl's own limit on connecting, beyond every other.
constexpr long kConnectTimeout = 7L * 24 * 60 * 60 * 1000;

}  // namespace

Exchange::Exchange(Loader& loader, std::shared_ptr<LoadingTask> task,
                   std::shared_ptr<Recipient> recipient, TransferPlan plan)
    : Transfer(std::move(task), std::move(recipient)),
      loader_(loader),
      plan_(std::move(plan)),
      hop_(plan_.hop),
      heard_(steady_clock::now()) {}

Exchange::~Exchange() {
  detach();
  if (handle_ != nullptr) loader_.giveBackHandle(handle_);
}

Exchange& Exchange::ofHandle(CURL* handle) {
  char* exchange = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &exchange);
  return *reinterpret_cast<Exchange*>(exchange);
}

void Exchange::begin() {
  handle_ = loader_.takeHandle();
  setUp();
  multi_ = loader_.multi();
  curl_multi_add_handle(multi_, handle_);
}

void Exchange::detach() noexcept {
  if (multi_ != nullptr) curl_multi_remove_handle(std::exchange(multi_, nullptr), handle_);
}

void Exchange::setUp() {
  const auto set = [this](CURLoption option, auto value) {
    curl_easy_setopt(handle_, option, value);
  };
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_ERRORBUFFER, reason_.data());
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // A name that is still being looked up is not waited for.
  set(CURLOPT_URL, hop_.address.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_CONNECTTIMEOUT_MS, kConnectTimeout);
  set(CURLOPT_BUFFERSIZE, kBufferSize);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_HEADERFUNCTION, &Exchange::onHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &Exchange::onBody);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_SOCKOPTFUNCTION, &Exchange::onSocket);
  set(CURLOPT_SOCKOPTDATA, this);
  set(CURLOPT_PREREQFUNCTION, &Exchange::onRequest);
  set(CURLOPT_PREREQDATA, this);
  set(CURLOPT_RESOLVER_START_FUNCTION, &Exchange::onResolve);
  set(CURLOPT_RESOLVER_START_DATA, this);
  set(CURLOPT_SHARE, plan_.usesCookies ? cookieJar() : nullptr);
  if (plan_.usesCookies) set(CURLOPT_COOKIEFILE, "");  // No file, but what uses the jar.
  setUpTrust();
  setUpMethod();
  setUpFields();
}

void Exchange::setUpTrust() {
  curl_easy_setopt(handle_, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYHOST, 2L);
  // The system's folder of certificates stays beside the file.
  const std::string& file = loader_.configuration().additionalTrustedCertificatesFile();
  if (!file.empty()) curl_easy_setopt(handle_, CURLOPT_CAINFO, file.c_str());
}

void Exchange::setUpMethod() {
  const std::string& method = hop_.method;
  if (method == "HEAD") {
    curl_easy_setopt(handle_, CURLOPT_NOBODY, 1L);
    return;
  }
  const bool asksForBody = method == "POST" || method == "PUT" || method == "PATCH";
  if (hop_.body || asksForBody) {
    const auto body = hop_.body ? hop_.body->text() : std::string_view();
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body.empty() ? "" : body.data());
    curl_easy_setopt(handle_, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle_, CURLOPT_XFERINFOFUNCTION, &Exchange::onProgress);
    curl_easy_setopt(handle_, CURLOPT_XFERINFODATA, this);
  } else {
    curl_easy_setopt(handle_, CURLOPT_HTTPGET, 1L);
  }
  if (method != "GET" || hop_.body)
    curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void Exchange::addField(const std::string& line) {
  curl_slist* const list = curl_slist_append(fields_.get(), line.c_str());
  static_cast<void>(fields_.release());
  fields_.reset(list);
}

void Exchange::setUpFields() {
  fields_.reset();
  for (const auto& [name, value] : hop_.fields) {
    // The jar's cookies and the request's own go in one field.
    if (!NSHTTPFieldNameOrder()(name, "Cookie") && !NSHTTPFieldNameOrder()("Cookie", name))
      continue;
    std::string field = name;
    // libcurl leaves a field out whose value is blank, unless it is told so.
    if (trimmed(value).empty())
      field += ';';
    else
      field.append(": ").append(value);
    addField(field);
  }
  const auto cookies = fieldOf(hop_.fields, "Cookie");
  curl_easy_setopt(handle_, CURLOPT_COOKIE, cookies ? cookies->c_str() : nullptr);
  addField("Expect:");
  if (hop_.method != "POST" && !fieldOf(hop_.fields, "Content-Type")) addField("Content-Type:");
  curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, fields_.get());
}

void Exchange::heard() noexcept {
  heard_ = steady_clock::now();
  if (std::exchange(isStarted_, true)) return;
  loader_.askAt(timeAfter(heard_, plan_.timeout));
}

LoadTime Exchange::due() const {
  return isStarted_ && !isPaused_ && !result_ ? timeAfter(heard_, plan_.timeout) : kNeverDue;
}

int Exchange::onSocket(void* exchange, curl_socket_t /*socket*/, curlsocktype /*purpose*/) {
  static_cast<Exchange*>(exchange)->heard();
  return CURL_SOCKOPT_OK;
}

int Exchange::onRequest(void* exchange, char* /*there*/, char* /*here*/, int /*port*/,
                        int /*ownPort*/) {
  static_cast<Exchange*>(exchange)->heard();
  return CURL_PREREQFUNC_OK;
}

int Exchange::onResolve(void* /*state*/, void* /*reserved*/, void* exchange) {
  static_cast<Exchange*>(exchange)->heard();
  return 0;
}

int Exchange::onProgress(void* exchange, curl_off_t /*expected*/, curl_off_t /*received*/,
                         curl_off_t /*expectedToSend*/, curl_off_t sent) {
  static_cast<Exchange*>(exchange)->noteSent(sent);
  return 0;
}

void Exchange::noteSent(curl_off_t sent) {
  if (sent <= sent_) return;
  sent_ = sent;
  heard();
  const auto expected = static_cast<std::int64_t>(hop_.body ? hop_.body->length() : 0);
  recipient().sent(sent, expected);
}

std::size_t Exchange::onHeader(char* bytes, std::size_t size, std::size_t count, void* exchange) {
  auto& self = *static_cast<Exchange*>(exchange);
  self.heard();
  return self.takeHeader({bytes, size * count}) ? size * count : 0;
}

bool Exchange::takeHeader(std::string_view line) {
  const bool wasWhole = head_.isWhole();
  if (!head_.take(line)) {
    refusal_ = NSURLErrorBadServerResponse;
    return false;
  }
  if (wasWhole || !head_.isWhole()) return true;
  if (hop_.body) {
    curl_off_t sent = 0;
    curl_easy_getinfo(handle_, CURLINFO_SIZE_UPLOAD_T, &sent);
    noteSent(sent);
  }
  const auto location = fieldOf(head_.fields(), "Location");
  if (isRedirect(head_.status()) && location && !location->empty()) {
    location_ = location;
  } else {
    answerBegins();
  }
  return true;
}

void Exchange::answerBegins() {
  constexpr long kPart = 206;  // A range of the encoded bytes, which nobody can decode.
  if (plan_.decodes && head_.status() != kPart)
    encoding_ = bodyEncodingIn(fieldOf(head_.fields(), "Content-Encoding").value_or(""));
  recipient().began(std::make_shared<NSHTTPURLResponse>(
      NSURL::URLWithString(hop_.address), head_.status(), head_.version(), head_.fields()));
}

std::size_t Exchange::onBody(char* bytes, std::size_t size, std::size_t count, void* exchange) {
  auto& self = *static_cast<Exchange*>(exchange);
  self.heard();
  return self.takeBody({reinterpret_cast<const std::uint8_t*>(bytes), size * count});
}

std::size_t Exchange::takeBody(std::span<const std::uint8_t> bytes) {
  if (location_) {
    skipped_ += bytes.size();
    return skipped_ <= kMostSkipped ? bytes.size() : 0;
  }
  switch (takeAnswer(bytes)) {
    case Recipient::Taking::Taken:
      return bytes.size();
    case Recipient::Taking::Later:
      isPaused_ = true;
      return CURL_WRITEFUNC_PAUSE;
    case Recipient::Taking::Refused:
      return 0;
  }
  return 0;
}

Recipient::Taking Exchange::refuse(NSURLError code) noexcept {
  refusal_ = code;
  return Recipient::Taking::Refused;
}

// libcurl could decode, but takes a body that is cut off for a whole one.
Recipient::Taking Exchange::takeAnswer(std::span<const std::uint8_t> bytes) {
  Recipient::Taking taking = Recipient::Taking::Taken;
  const auto receive = [&](std::span<const std::uint8_t> piece) {
    taking = recipient().take(piece);
    return taking == Recipient::Taking::Taken;
  };
  if (encoding_ == BodyEncoding::Unknown) return refuse(NSURLErrorCannotDecodeContentData);
  if (encoding_ == BodyEncoding::None) {
    receive(bytes);
  } else {
    if (!decoder_) decoder_ = std::make_unique<BodyDecoder>(encoding_);
    if (decoder_->decode(bytes, receive) == BodyDecoder::Outcome::Broken)
      return refuse(NSURLErrorCannotDecodeRawData);
  }
  return taking == Recipient::Taking::Refused ? refuse(recipient().refusal()) : taking;
}

void Exchange::proceed() {
  if (result_) return settle(*result_);
  if (!std::exchange(isPaused_, false)) return;
  heard();
  loader_.askAt(timeAfter(heard_, plan_.timeout));
  // What waited is taken, or refused, within; libcurl would go on after a refusal.
  const CURLcode result = curl_easy_pause(handle_, CURLPAUSE_CONT);
  if (result != CURLE_OK) settle(result);
}

void Exchange::ended(CURLcode result) {
  if (location_) return follow();
  if (result == CURLE_OK && !recipient().isOpen()) {
    result_ = result;
    return;
  }
  settle(result);
}

NSURLError Exchange::codeOfFailure(CURLcode result) const {
  if (refusal_) return *refusal_;
  // So libcurl calls a line of a head that is longer than it takes.
  if (result == CURLE_OUT_OF_MEMORY && !head_.isWhole()) return NSURLErrorBadServerResponse;
  CurlFailure failure{static_cast<int>(result)};
  curl_easy_getinfo(handle_, CURLINFO_SSL_VERIFYRESULT, &failure.verified);
  curl_easy_getinfo(handle_, CURLINFO_OS_ERRNO, &failure.systemError);
  return codeOf(failure);
}

// Destroys this.
void Exchange::settle(CURLcode result) {
  detach();
  if (result == CURLE_OK && decoder_ && !decoder_->isWhole())
    refusal_ = NSURLErrorCannotDecodeRawData;
  if (result == CURLE_OK && refusal_) result = CURLE_WRITE_ERROR;
  if (result == CURLE_OK && !head_.isWhole()) result = CURLE_WEIRD_SERVER_REPLY;
  loader_.finish(task(), result == CURLE_OK
                             ? nullptr
                             : failure(codeOfFailure(result), refusal_ ? "" : reason_.data()));
}

void Exchange::follow() {
  detach();
  if (++redirects_ > kMostRedirects)
    return loader_.finish(task(), failure(NSURLErrorHTTPTooManyRedirects));
  NextHop next = nextHop(hop_, head_.status(), *location_);
  if (!next.hop || !NSURL::URLWithString(next.hop->address))
    return loader_.finish(
        task(), failure(next.hop ? NSURLErrorRedirectToNonExistentLocation : next.failure));
  hop_ = *std::move(next.hop);
  location_.reset();
  head_ = AnswerHead();
  skipped_ = 0;
  sent_ = 0;
  isStarted_ = false;  // It may have to wait for a connection again.
  refusal_.reset();
  curl_easy_setopt(handle_, CURLOPT_COOKIEFILE, nullptr);  // What was set is not given back else.
  curl_easy_reset(handle_);
  setUp();
  multi_ = loader_.multi();
  curl_multi_add_handle(multi_, handle_);
}

}  // namespace ORLFoundation::internal::net
