/// The operators in key paths of collections:
///
///     "@count"                        how many members
///     "@sum.amount"                   the decimal sum; values that are no numbers count as zero
///     "@avg.amount"                   the decimal mean of the values that are not nil; 0 for none
///     "@max.date", "@min.date"        by number, date or text; nil when there is none
///     "@unionOfObjects.name"          the values, nil left out
///     "@distinctUnionOfObjects.name"  each value once, in the order of first appearance
///
/// What follows the collection's operator on a path is asked of each member; the union operators
/// need such a rest. A name that is none of these raises `NSInvalidArgumentException`.
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <string_view>
#include <vector>

namespace ORLFoundation::internal::object {

[[nodiscard]] id applyCollectionOperator(const std::vector<id>& members, std::string_view keyPath);

}  // namespace ORLFoundation::internal::object
