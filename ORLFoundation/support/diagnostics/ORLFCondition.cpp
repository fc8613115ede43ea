
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <ORLFoundation/platform/log/NSLog.h>

#include <boost/container/small_vector.hpp>

namespace ORLFoundation {

void ORLFLogFailedCondition(std::string_view text, std::string_view message) {
  boost::container::small_vector<char, 256> line;
  for (const std::string_view part :
       {std::string_view("Condition Failed: "), text, std::string_view(" "), message})
    line.insert(line.end(), part.begin(), part.end());
  NSLog({line.data(), line.size()});
}

}  // namespace ORLFoundation
