/// Decimals in archives: a sign, an exponent, and a mantissa of up to eight words of 16 bits.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSDecimal.h>

namespace ORLFoundation::internal::archive {

/// Without zeros at the end of the mantissa, in little-endian words, unused words zero.
void encodeDecimal(const NSDecimal& decimal, NSCoder& coder);
/// Words in either byte order; what stands in unused ones is passed over. Mantissas past 38 digits
/// are rounded to the nearest. Fails the coder for a form that no decimal has.
[[nodiscard]] id decodeDecimal(NSCoder& coder);

}  // namespace ORLFoundation::internal::archive
