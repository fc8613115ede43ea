/// Silence of libxml2 for a while.
#pragma once

#include <libxml/xmlerror.h>

namespace ORLFoundation::internal::xml {

/// libxml2 tells faults of conversion to a function of the thread, not to the parser, and would
/// print them.
class QuietThread {
 public:
  QuietThread();
  ~QuietThread();
  QuietThread(const QuietThread&) = delete;
  QuietThread& operator=(const QuietThread&) = delete;

 private:
  xmlGenericErrorFunc generic_;
  void* genericData_;
  xmlStructuredErrorFunc structured_;
  void* structuredData_;
};

}  // namespace ORLFoundation::internal::xml
