/// Reads the objects of an archive: those that were read before are the same ones again, and what
/// reading takes is bounded by the archive's length.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/archive/internal/ArchiveDocument.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::archive {

/// Faults are thrown inside and caught in `run`, where the coder's operations begin, so that none
/// passes through an object's `initWithCoder`. Keys are those of the object that is being read.
class ArchiveReader {
 public:
  using Index = PropertyListTable::Index;

  /// The coder is what objects read themselves from. Throws `PropertyListFault` for data that is no
  /// archive.
  ArchiveReader(NSCoder& coder, const NSData& data);

  /// Runs a step unless the reader has failed, and fails it with the step's fault.
  template <class Step>
  auto run(Step&& step) -> decltype(step()) {
    using Result = decltype(step());
    if (error_) return Result{};
    try {
      return step();
    } catch (const plist::PropertyListFault& fault) {
      fail(fault.what());
    } catch (const NSException& exception) {
      fail(exception.what());
    }
    return Result{};
  }

  /// The first failure is the one that stays.
  void fail(std::string_view what);
  [[nodiscard]] const std::shared_ptr<const NSError>& error() const noexcept { return error_; }

  [[nodiscard]] std::optional<Index> value(std::string_view key) const;
  [[nodiscard]] std::int64_t integer(std::string_view key) const;
  [[nodiscard]] bool boolean(std::string_view key) const;
  [[nodiscard]] double real(std::string_view key) const;
  [[nodiscard]] std::optional<std::string_view> text(std::string_view key,
                                                     plist::PropertyListKind kind);
  [[nodiscard]] id object(NSCodingClasses allowed, std::string_view key);
  /// `areKeys`: they are about to be hashed.
  [[nodiscard]] std::optional<std::vector<id>> objects(std::string_view key, bool areKeys);
  /// What references to the object being read are to lead to.
  void announce(const std::shared_ptr<NSObject>& object);

 private:
  /// The object that is being read, and the classes that are allowed in it.
  struct Frame {
    Index dictionary = 0;
    Index uid = 0;
    NSCodingClasses allowed = {};
    std::uint64_t weight = 1;
  };
  /// An object that was read, or is: then its value is what it announced, or nil.
  struct Made {
    id value;
    bool isBusy = true;
    std::uint64_t weight = 1;  // how many values it would be without shared references
  };

  void expect(Index node, plist::PropertyListKind kind, std::string_view key) const;
  std::string_view textOf(Index node);
  void takeHashing(std::uint64_t weight);
  void addWeight(std::uint64_t weight) noexcept;
  id objectAt(Index uid, NSCodingClasses allowed);
  id directObject(Index entry);
  id decimalInOtherForm(Index entry, NSCodingClasses allowed) const;
  id keyedObject(Index uid, const NSCodingClass& record, NSCodingClasses allowed);

  NSCoder& coder_;
  ArchiveDocument document_;
  const PropertyListTable& table_;
  plist::PropertyListTextBudget text_;
  std::uint64_t hashing_;
  Frame frame_;
  std::size_t depth_ = 0;
  std::unordered_map<Index, Made> made_;
  std::shared_ptr<const NSError> error_;
};

}  // namespace ORLFoundation::internal::archive
