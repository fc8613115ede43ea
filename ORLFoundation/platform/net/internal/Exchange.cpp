#include <ORLFoundation/platform/net/internal/Exchange.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <string_view>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

using std::chrono::steady_clock;

/// A redirect's body is read, so that its connection can be used again, unless it is longer.
constexpr std::size_t kMostSkipped = std::size_t{256} * 1024;

}  // namespace

Exchange::Exchange(Loader& loader, std::shared_ptr<LoadingTask> task,
                   std::shared_ptr<Recipient> recipient, TransferPlan plan)
    : Transfer(std::move(task), std::move(recipient)),
      loader_(loader),
      hop_(std::move(plan.hop)),
      timeout_(plan.timeout),
      usesCookies_(plan.usesCookies),
      decodes_(plan.decodes) {}

Exchange::~Exchange() { detach(); }

void Exchange::setUpPattern(const CurlPattern& pattern) {
  pattern.set(CURLOPT_HEADERFUNCTION, &Exchange::onHeader);
  pattern.set(CURLOPT_WRITEFUNCTION, &Exchange::onBody);
  pattern.set(CURLOPT_SOCKOPTFUNCTION, &Exchange::onSocket);
  pattern.set(CURLOPT_PREREQFUNCTION, &Exchange::onRequest);
  pattern.set(CURLOPT_RESOLVER_START_FUNCTION, &Exchange::onResolve);
  pattern.set(CURLOPT_XFERINFOFUNCTION, &Exchange::onProgress);
}

Exchange& Exchange::ofHandle(CURL* handle) {
  char* data = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &data);
  return of(data);
}

Exchange& Exchange::of(void* self) noexcept { return *static_cast<Exchange*>(self); }

void Exchange::begin() { sendHop(); }

void Exchange::sendHop() {
  handle_.emplace(loader_.pattern());
  for (const CURLoption data :
       {CURLOPT_PRIVATE, CURLOPT_HEADERDATA, CURLOPT_WRITEDATA, CURLOPT_SOCKOPTDATA,
        CURLOPT_PREREQDATA, CURLOPT_RESOLVER_START_DATA, CURLOPT_XFERINFODATA})
    handle_->set(data, static_cast<void*>(this));
  // The process's cookies would go without a jar for good that is made without memory.
  if (handle_->get() != nullptr) setUp();
  if (curl_multi_add_handle(loader_.multi(), handle_->get()) != CURLM_OK)
    return loader_.cannotSend(task());
  multi_ = loader_.multi();
}

void Exchange::detach() noexcept {
  if (multi_ != nullptr) curl_multi_remove_handle(std::exchange(multi_, nullptr), handle_->get());
}

void Exchange::setUp() {
  handle_->set(CURLOPT_URL, hop_.address.c_str());
  if (usesCookies_) handle_->useCookies();
  const std::string_view body = hop_.body ? hop_.body->text() : std::string_view();
  const bool has = hasBody();
  handle_->setMethod(hop_.method, has ? &body : nullptr);
  setUpFields(has);
}

bool Exchange::hasBody() const noexcept {
  const std::string_view method = hop_.method;
  if (method == "HEAD") return false;
  return hop_.body || method == "POST" || method == "PUT" || method == "PATCH";
}

void Exchange::setUpFields(bool hasBody) {
  for (const auto& [name, value] : hop_.fields) {
    // The jar's cookies and the request's own go in one field.
    if (!NSHTTPFieldNameOrder()(name, "Cookie") && !NSHTTPFieldNameOrder()("Cookie", name)) {
      handle_->set(CURLOPT_COOKIE, value.c_str());
      continue;
    }
    std::string field = name;
    // libcurl leaves a field out whose value is blank, unless it is told so.
    if (trimmed(value).empty())
      field += ';';
    else
      field.append(": ").append(value);
    handle_->addField(field);
  }
  // What libcurl would say of a body on its own.
  if (hasBody) handle_->addField("Expect:");
  if (hasBody && hop_.method != "POST" && !hop_.fields.contains("Content-Type"))
    handle_->addField("Content-Type:");
  handle_->useFields(!hop_.fields.contains("Accept-Encoding"));
}

void Exchange::heard() noexcept {
  heard_ = steady_clock::now();
  if (std::exchange(isStarted_, true)) return;
  loader_.askAt(timeAfter(heard_, timeout_));
}

LoadTime Exchange::due() const {
  return isStarted_ && !isPaused_ && !result_ ? timeAfter(heard_, timeout_) : kNeverDue;
}

int Exchange::onSocket(void* self, curl_socket_t /*socket*/, curlsocktype /*purpose*/) {
  of(self).heard();
  return CURL_SOCKOPT_OK;
}

int Exchange::onRequest(void* self, char* /*there*/, char* /*here*/, int /*port*/,
                        int /*ownPort*/) {
  of(self).heard();
  return CURL_PREREQFUNC_OK;
}

int Exchange::onResolve(void* /*state*/, void* /*reserved*/, void* self) {
  of(self).heard();
  return 0;
}

int Exchange::onProgress(void* self, curl_off_t /*expected*/, curl_off_t /*received*/,
                         curl_off_t /*expectedToSend*/, curl_off_t sent) {
  of(self).noteSent(sent);
  return 0;
}

void Exchange::noteSent(curl_off_t sent) {
  if (sent <= sent_) return;
  sent_ = sent;
  heard();
  const auto expected = static_cast<std::int64_t>(hop_.body ? hop_.body->length() : 0);
  recipient().sent(sent, expected);
}

std::size_t Exchange::onHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
  of(self).heard();
  return of(self).takeHeader({bytes, size * count}) ? size * count : 0;
}

bool Exchange::takeHeader(std::string_view line) {
  const bool wasWhole = head_.isWhole();
  if (!head_.take(line)) {
    refusal_ = NSURLErrorBadServerResponse;
    return false;
  }
  if (wasWhole || !head_.isWhole()) return true;
  if (!isLengthClear(head_.fields()) || (isRedirect(head_.status()) && !head_.isLocationClear())) {
    refusal_ = NSURLErrorBadServerResponse;
    return false;
  }
  if (hop_.body) {
    curl_off_t sent = 0;
    curl_easy_getinfo(handle_->get(), CURLINFO_SIZE_UPLOAD_T, &sent);
    noteSent(sent);
  }
  if (isRedirect(head_.status())) {
    const std::string_view location = textOf(head_.fields(), "Location");
    if (!location.empty()) location_ = location;
  }
  if (!location_) answerBegins();
  return true;
}

void Exchange::answerBegins() {
  constexpr long kPart = 206;  // A range of the encoded bytes, which nobody can decode.
  if (decodes_ && head_.status() != kPart)
    encoding_ = bodyEncodingIn(textOf(head_.fields(), "Content-Encoding"));
  const NSURL& asked = *task()->request()->URL();
  auto url = hop_.address == asked.absoluteString() ? std::optional(asked)
                                                    : NSURL::URLWithString(hop_.address);
  recipient().began(std::make_shared<NSHTTPURLResponse>(std::move(url), head_.status(),
                                                        head_.version(), head_.takeFields()));
}

std::size_t Exchange::onBody(char* bytes, std::size_t size, std::size_t count, void* self) {
  of(self).heard();
  return of(self).takeBody({reinterpret_cast<const std::uint8_t*>(bytes), size * count});
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
  loader_.askAt(timeAfter(heard_, timeout_));
  // What waited is taken, or refused, within; libcurl would go on after a refusal.
  const CURLcode result = curl_easy_pause(handle_->get(), CURLPAUSE_CONT);
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
  curl_easy_getinfo(handle_->get(), CURLINFO_SSL_VERIFYRESULT, &failure.verified);
  curl_easy_getinfo(handle_->get(), CURLINFO_OS_ERRNO, &failure.systemError);
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
                             : failure(codeOfFailure(result), refusal_ ? "" : handle_->reason()));
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
  sendHop();
}

}  // namespace ORLFoundation::internal::net
