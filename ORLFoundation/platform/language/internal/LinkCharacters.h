/// The characters that links are made of, and the host names among them.
#pragma once

#include <cstddef>
#include <string_view>

namespace ORLFoundation::internal::language {

/// The length in bytes of the character at a place that may stand in the local part of a mail
/// address; 0 for any other, and at the end.
[[nodiscard]] std::size_t lengthOfLocalCharacter(std::string_view text, std::size_t at);
/// The same for a label of a host name: letters, digits and hyphens.
[[nodiscard]] std::size_t lengthOfLabelCharacter(std::string_view text, std::size_t at);
/// The same for the rest of an address: all but white space, control characters, quotation marks,
/// angle brackets and broken bytes.
[[nodiscard]] std::size_t lengthOfAddressCharacter(std::string_view text, std::size_t at);

/// The end of the host name that begins at a place: labels of 1 to 63 bytes that no hyphen begins
/// or ends, 253 bytes in all. `begin` when there is none.
[[nodiscard]] std::size_t endOfHost(std::string_view text, std::size_t begin);
/// Whether a host name has a last label of two letters or more behind a point.
[[nodiscard]] bool hasTopLevelDomain(std::string_view host);
/// Whether it lies under one of the most common top-level domains.
[[nodiscard]] bool hasCommonTopLevelDomain(std::string_view host);

}  // namespace ORLFoundation::internal::language
