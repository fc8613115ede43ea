
#include <ORLFoundation/platform/archive/internal/ArchiveDocument.h>

#include <ORLFoundation/platform/archive/internal/KeyedArchive.h>
#include <ORLFoundation/platform/archive/internal/StandardCoding.h>
#include <ORLFoundation/platform/plist/PropertyListBytes.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal::archive {

using plist::PropertyListFault;
using plist::PropertyListKind;

namespace {

using Index = PropertyListTable::Index;

Index memberOfKind(const PropertyListTable& table, std::string_view key, PropertyListKind kind) {
  const auto member = table.valueForKey(table.top(), key);
  if (!member || table.kind(*member) != kind)
    throw PropertyListFault("The archive lacks its " + std::string(key) + ".");
  return *member;
}

}  // namespace

ArchiveDocument::ArchiveDocument(const NSData& data) : table_(plist::readPropertyList(data)) {
  defineStandardClasses();
  if (table_.kind(table_.top()) != PropertyListKind::Dictionary)
    throw PropertyListFault("The property list is no archive.");
  const Index archiver = memberOfKind(table_, kArchiverKey, PropertyListKind::String);
  if (table_.text(archiver) != kArchiver)
    throw PropertyListFault("The archive was written by an unknown archiver.");
  top_ = memberOfKind(table_, kTopKey, PropertyListKind::Dictionary);
  objects_ = memberOfKind(table_, kObjectsKey, PropertyListKind::Array);
  classes_.resize(objectCount());
}

bool ArchiveDocument::isNull(Index uid) const noexcept {
  return uid == 0 ||
         (table_.kind(entry(uid)) == PropertyListKind::String && table_.text(entry(uid)) == kNull);
}

const NSCodingClass& ArchiveDocument::classOf(Index uid) {
  const Index object = entry(uid);
  switch (table_.kind(object)) {
    case PropertyListKind::Boolean:
    case PropertyListKind::Integer:
    case PropertyListKind::UnsignedInteger:
    case PropertyListKind::Real:
      return NSCodingClassOf<NSNumber>();
    case PropertyListKind::String:
      return NSCodingClassOf<std::string>();
    case PropertyListKind::Data:
      return NSCodingClassOf<NSData>();
    case PropertyListKind::Date:
      return NSCodingClassOf<NSDate>();
    case PropertyListKind::Dictionary:
      break;
    default:
      throw PropertyListFault("An object of the archive is damaged.");
  }
  const auto reference = table_.valueForKey(object, kClassKey);
  if (!reference || table_.kind(*reference) != PropertyListKind::UID ||
      table_.uid(*reference) >= objectCount())
    throw PropertyListFault("An object of the archive has no class.");
  return classDescribedAt(table_.uid(*reference));
}

const NSCodingClass& ArchiveDocument::classDescribedAt(Index uid) {
  if (classes_[uid] != nullptr) return *classes_[uid];
  const Index description = entry(uid);
  if (table_.kind(description) != PropertyListKind::Dictionary)
    throw PropertyListFault("A class of the archive is damaged.");
  const auto name = table_.valueForKey(description, kClassNameKey);
  if (!name || table_.kind(*name) != PropertyListKind::String)
    throw PropertyListFault("A class of the archive has no name.");

  const NSCodingClass* found = NSCodingClass::named(table_.text(*name));
  const auto hints = table_.valueForKey(description, kClassHintsKey);
  if (hints && table_.kind(*hints) == PropertyListKind::Array) {
    for (const Index hint : table_.members(*hints))
      if (found == nullptr && table_.kind(hint) == PropertyListKind::String)
        found = NSCodingClass::named(table_.text(hint));
  }
  if (found == nullptr)
    throw PropertyListFault("The class " + std::string(table_.text(*name)) + " is unknown.");
  classes_[uid] = found;
  return *found;
}

}  // namespace ORLFoundation::internal::archive
