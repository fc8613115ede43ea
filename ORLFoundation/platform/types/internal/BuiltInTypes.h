/// The types that the library declares itself.
#pragma once

#include <ORLFoundation/platform/types/UTTypeCatalog.h>

namespace ORLFoundation::internal::types {

[[nodiscard]] const UTTypeTable& builtInTypes();

}  // namespace ORLFoundation::internal::types
