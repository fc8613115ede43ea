#include <ORLFoundation/platform/xml/internal/QuietThread.h>

#include <libxml/globals.h>

namespace ORLFoundation::internal::xml {
namespace {

// NOLINTNEXTLINE(cert-dcl50-cpp): the type is libxml2's.
void passOver(void* /*data*/, const char* /*format*/, ...) {}

}  // namespace

QuietThread::QuietThread()
    : generic_(xmlGenericError),
      genericData_(xmlGenericErrorContext),
      structured_(xmlStructuredError),
      structuredData_(xmlStructuredErrorContext) {
  xmlSetGenericErrorFunc(nullptr, passOver);
  xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
}

QuietThread::~QuietThread() {
  xmlSetGenericErrorFunc(genericData_, generic_);
  xmlSetStructuredErrorFunc(structuredData_, structured_);
}

}  // namespace ORLFoundation::internal::xml
