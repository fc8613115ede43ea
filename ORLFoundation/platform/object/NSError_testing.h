/// Errors of vectors as the library's, and back.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>

namespace orlftest {

/// An error of a "domain" and a "code"; null of null.
inline std::shared_ptr<const ORLFoundation::NSError> errorOfVector(const Json& error) {
  if (error.is_null()) return nullptr;
  return ORLFoundation::NSError::errorWithDomain(error.at("domain").get<std::string>(),
                                                 error.at("code").get<ORLFoundation::NSInteger>());
}

inline Json jsonFromError(const std::shared_ptr<const ORLFoundation::NSError>& error) {
  if (!error) return nullptr;
  return {{"domain", error->domain()}, {"code", error->code()}};
}

}  // namespace orlftest
