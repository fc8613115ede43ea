/// Items taken away and put in place of each other.
#pragma once

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>

#include <cstdint>
#include <string>

namespace ORLFoundation::internal::files {

/// Whether folders that refuse their owner are opened up for it.
enum class RemoveByForce : std::uint8_t { No, Yes };

/// Removes an item with all that it holds; a link, not what it leads to.
[[nodiscard]] FileOutcome removeItem(HeldFolder& root, const std::string& item,
                                     RemoveByForce force);

/// Moves an item, with flags of `renameat2`. A folder that its owner may not write to is moved all
/// the same and keeps its mode.
[[nodiscard]] FileOutcome moveItem(HeldFolder& from, const std::string& item, HeldFolder& to,
                                   const std::string& toItem, unsigned flags);

/// Puts an item in the place of another one, or where nothing stands, in one step. What stood there
/// is gone, or, where either is a folder, stands in the item's old place. Both must be on one file
/// system, which must be able to exchange names where one of them is a folder.
[[nodiscard]] FileOutcome putInPlace(HeldFolder& from, const std::string& item, HeldFolder& to,
                                     const std::string& toItem);

}  // namespace ORLFoundation::internal::files
