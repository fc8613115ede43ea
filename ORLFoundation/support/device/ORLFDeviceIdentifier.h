/// A text that tells this machine from others, without giving out what the machine is called.
#pragma once

#include <ORLFoundation/platform/process/NSProcessInfo.h>

#include <string>

namespace ORLFoundation {

/// `orlfDeviceIdentifier`  36 characters in the form of a UUID, the same for every process on this
/// machine until its system is installed anew. It is made from the identifier of the installation
/// (/etc/machine-id, or that of the message bus) under a key of this library, by a hash with no way
/// back, so that other software's identifiers do not tell the same machine. A machine without one
/// (a container, a bare root) takes the name of the host in its place: machines of one name then
/// share the text.
[[nodiscard]] std::string orlfDeviceIdentifier(const NSProcessInfo& processInfo);

}  // namespace ORLFoundation
