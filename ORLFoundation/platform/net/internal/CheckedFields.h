/// What may stand in a request's head.
#pragma once

#include <string_view>

namespace ORLFoundation::internal::net {

/// Both raise `NSInvalidArgumentException`, whose reason tells neither name nor value: either may
/// be a secret.
void requireMethod(std::string_view method);
void requireField(std::string_view name, std::string_view value);

}  // namespace ORLFoundation::internal::net
