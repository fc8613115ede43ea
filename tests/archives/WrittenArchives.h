/// Objects of all kinds that archives are written of: read back here, and by another reader.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/platform/object/Id.h>

#include <memory>
#include <string>
#include <vector>

namespace orlftest {

struct WrittenArchive {
  std::string name;
  std::string className;  // to ask for, see `classesToRead`
  ORLFoundation::id object;
};
[[nodiscard]] const std::vector<WrittenArchive>& writtenArchives();

/// A plan of so many segments with all their terms, a month apart.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFAmortizationPlan> planOfSegments(int count);

}  // namespace orlftest
