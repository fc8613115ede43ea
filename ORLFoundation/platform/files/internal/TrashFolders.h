/// The folders into which a user's deleted files go.
#pragma once

#include <ORLFoundation/platform/files/NSURLRelationship.h>
#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

namespace ORLFoundation::internal::files {

struct TrashPlaces {
  /// The user's own, "" for none.
  std::string home;
  uid_t user = 0;
  /// Whether a folder is the top of a volume.
  std::function<bool(const std::string& folder)> isTop;
};

/// Those of the process's user, as its environment has them.
[[nodiscard]] TrashPlaces trashPlaces();

/// nil, with errno, where there is no item at the path.
[[nodiscard]] std::optional<NSURLRelationship> relationshipOfTrash(const std::string& item,
                                                                   const TrashPlaces& places);

}  // namespace ORLFoundation::internal::files
