#include <ORLFoundation/platform/xml/internal/PushParser.h>

#include <ORLFoundation/platform/xml/internal/PushSession.h>

namespace ORLFoundation::internal::xml {

PushParser::PushParser(EventSink& sink, const NSXMLParserLimits& limits)
    : session_(std::make_unique<Session>(sink, limits)) {}
PushParser::~PushParser() = default;

bool PushParser::push(std::span<const std::uint8_t> bytes) { return session_->push(bytes); }
bool PushParser::finish() { return session_->finish(); }
void PushParser::stop(NSInteger code, std::string_view message) { session_->stop(code, message); }
const std::optional<Fault>& PushParser::fault() const noexcept { return session_->fault(); }
NSInteger PushParser::line() const noexcept { return session_->line(); }
NSInteger PushParser::column() const noexcept { return session_->column(); }
TagPlace PushParser::startTag() const noexcept { return session_->startTag(); }

}  // namespace ORLFoundation::internal::xml
