/// The name of an entry of a `PlistDictionary`, tied to the type of its value.
///
///     const PlistDictionaryKey<bool> kIsHidden{"isHidden"};
#pragma once

#include <ORLFoundation/support/plist/PlistConvertible.h>

#include <string>

namespace ORLFoundation {

template <PlistConvertible T>
struct PlistDictionaryKey {
  using Value = T;

  std::string name;
};

}  // namespace ORLFoundation
