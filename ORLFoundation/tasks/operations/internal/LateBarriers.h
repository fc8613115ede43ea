/// How a queue learns that an operation was marked as a barrier after it was added, without a look
/// at each of its operations for each one that comes.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::operations {

/// How often, in the whole process, an operation was marked that some queue had already.
[[nodiscard]] std::uint64_t lateBarrierCount() noexcept;

}  // namespace ORLFoundation::internal::operations
