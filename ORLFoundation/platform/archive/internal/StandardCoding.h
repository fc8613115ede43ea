/// How the platform's own values and collections are archived.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/archive/NSCodingClass.h>
#include <ORLFoundation/platform/object/Id.h>

namespace ORLFoundation::internal::archive {

/// The class that an archive names for a value that is not written directly; null for an object
/// that is none of the platform's own.
[[nodiscard]] const NSCodingClass* standardClassOf(const id& value);
/// Writes the fields of such a value.
void encodeStandard(const id& value, NSCoder& coder);
/// The class that mutable text is written under.
[[nodiscard]] const NSCodingClass& mutableStringClass();
/// Defines the platform's classes, mutable ones included.
void defineStandardClasses();

}  // namespace ORLFoundation::internal::archive
