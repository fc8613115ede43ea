/// A log line that is written only when a user default asks for it.
///
///     ORLFConditionalLog("ORLFXMLParserLogging", "element %@ at line %ld", name, line);
#pragma once

#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSString.h>

#include <string_view>

namespace ORLFoundation {

/// `ORLFConditionalLog`  Writes the format with its arguments, as `stringWithFormat` puts them
/// together, through `NSLog` when the default named `key` is true. The text is put together only
/// then.
template <class... Arguments>
void ORLFConditionalLog(std::string_view key, std::string_view format,
                        const Arguments&... arguments) {
  if (NSUserDefaults::standardUserDefaults()->boolForKey(key))
    NSLog(stringWithFormat(format, arguments...));
}

}  // namespace ORLFoundation
