
// The lists of processors of a file logger.
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::processors(Kind kind) const {
  const std::lock_guard guard(lock_);
  return processors_[kind];
}

void ORLFURLSessionFileLogger::setProcessors(Kind kind, Processors processors) {
  if (processors && std::ranges::count(*processors, nullptr) > 0)
    throw NSException(NSInvalidArgumentException, "A processor of a log is nil.");
  const std::lock_guard guard(lock_);
  processors_[kind].swap(processors);
}

void ORLFURLSessionFileLogger::add(Kind kind, const Processor& processor) {
  if (!processor) throw NSException(NSInvalidArgumentException, "A processor of a log is nil.");
  const std::lock_guard guard(lock_);
  if (!processors_[kind]) processors_[kind].emplace();
  processors_[kind]->push_back(processor);
}

void ORLFURLSessionFileLogger::remove(Kind kind, const Processor& processor) {
  const std::lock_guard guard(lock_);
  if (!processors_[kind] || !processor) return;
  std::erase_if(*processors_[kind],
                [&](const Processor& one) { return one->isEqual(processor.get()); });
}

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::requestURLProcessors() const {
  return processors(RequestURL);
}
void ORLFURLSessionFileLogger::setRequestURLProcessors(Processors processors) {
  setProcessors(RequestURL, std::move(processors));
}
void ORLFURLSessionFileLogger::addRequestURLProcessor(const Processor& processor) {
  add(RequestURL, processor);
}
void ORLFURLSessionFileLogger::removeRequestURLProcessor(const Processor& processor) {
  remove(RequestURL, processor);
}

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::requestBodyProcessors() const {
  return processors(RequestBody);
}
void ORLFURLSessionFileLogger::setRequestBodyProcessors(Processors processors) {
  setProcessors(RequestBody, std::move(processors));
}
void ORLFURLSessionFileLogger::addRequestBodyProcessor(const Processor& processor) {
  add(RequestBody, processor);
}
void ORLFURLSessionFileLogger::removeRequestBodyProcessor(const Processor& processor) {
  remove(RequestBody, processor);
}

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::responseBodyProcessors() const {
  return processors(ResponseBody);
}
void ORLFURLSessionFileLogger::setResponseBodyProcessors(Processors processors) {
  setProcessors(ResponseBody, std::move(processors));
}
void ORLFURLSessionFileLogger::addResponseBodyProcessor(const Processor& processor) {
  add(ResponseBody, processor);
}
void ORLFURLSessionFileLogger::removeResponseBodyProcessor(const Processor& processor) {
  remove(ResponseBody, processor);
}

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::downloadURLProcessors() const {
  return processors(DownloadURL);
}
void ORLFURLSessionFileLogger::setDownloadURLProcessors(Processors processors) {
  setProcessors(DownloadURL, std::move(processors));
}
void ORLFURLSessionFileLogger::addDownloadURLProcessor(const Processor& processor) {
  add(DownloadURL, processor);
}
void ORLFURLSessionFileLogger::removeDownloadURLProcessor(const Processor& processor) {
  remove(DownloadURL, processor);
}

ORLFURLSessionFileLogger::Processors ORLFURLSessionFileLogger::errorProcessors() const {
  return processors(Error);
}
void ORLFURLSessionFileLogger::setErrorProcessors(Processors processors) {
  setProcessors(Error, std::move(processors));
}
void ORLFURLSessionFileLogger::addErrorProcessor(const Processor& processor) {
  add(Error, processor);
}
void ORLFURLSessionFileLogger::removeErrorProcessor(const Processor& processor) {
  remove(Error, processor);
}

}  // namespace ORLFoundation
