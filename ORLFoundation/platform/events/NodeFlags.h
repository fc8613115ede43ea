/// What can befall a watched file or folder, as bits of one word.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::events {

/// Its last name is gone, or the one by which it is held.
inline constexpr std::uint64_t kNodeDelete = 0x1;
/// Written or cut; in a folder, a name was made, removed or renamed.
inline constexpr std::uint64_t kNodeWrite = 0x2;
/// It has grown.
inline constexpr std::uint64_t kNodeExtend = 0x4;
/// Rights, owner, times or extended attributes were set.
inline constexpr std::uint64_t kNodeAttribute = 0x8;
/// The number of its names has changed.
inline constexpr std::uint64_t kNodeLink = 0x10;
/// The name by which it is held was moved.
inline constexpr std::uint64_t kNodeRename = 0x20;
/// The file system that it stands in was taken from the tree.
inline constexpr std::uint64_t kNodeRevoke = 0x40;
/// A writer closed it after a write; beside the flags that kernels have, which end at 32 bits.
inline constexpr std::uint64_t kNodeSettled = std::uint64_t{1} << 32U;

}  // namespace ORLFoundation::internal::events
