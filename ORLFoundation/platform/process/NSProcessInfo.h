/// What the process knows of itself and of the machine that it runs on.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/process/NSOperatingSystemVersion.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSProcessInfo final : public NSObject {
 public:
  /// `processInfo`  The one of this process.
  [[nodiscard]] static std::shared_ptr<NSProcessInfo> processInfo();

  /// `processName`  The name of the program's file; "" where it cannot be told.
  [[nodiscard]] std::string processName() const;
  /// `processIdentifier`
  [[nodiscard]] std::int32_t processIdentifier() const noexcept;
  /// `hostName`  "" where it cannot be told.
  [[nodiscard]] std::string hostName() const;
  /// `operatingSystemVersion`  Of the facts in use (NSProcessFacts.h).
  [[nodiscard]] NSOperatingSystemVersion operatingSystemVersion() const;

  [[nodiscard]] std::string className() const override { return "NSProcessInfo"; }
};

}  // namespace ORLFoundation
