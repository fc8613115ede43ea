/// Queries and items of the keychain, read once from dictionaries and checked. Every store rests on
/// these, so that all match alike.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::keychain {

/// The attributes by which items are found: class, account, service, server, protocol and access
/// group.
inline constexpr std::size_t kMatchedTexts = 6;
extern const std::array<std::string_view, kMatchedTexts> kMatchedKeys;

/// In the order of `kMatchedKeys`; nil for what is not named.
using MatchedTexts = std::array<std::optional<std::string>, kMatchedTexts>;

struct ItemRecord {
  MatchedTexts texts;
  bool isSynchronizable = false;
  /// Wiped when the last copy goes.
  NSData data;
  std::optional<std::string> accessible;

  /// Equal in all by which items are told apart.
  [[nodiscard]] bool isDuplicateOf(const ItemRecord& other) const {
    return texts == other.texts && isSynchronizable == other.isSynchronizable;
  }
  /// As a dictionary with the attributes that are named.
  [[nodiscard]] std::shared_ptr<NSMutableDictionary> attributes() const;
};

struct ItemQuery {
  MatchedTexts texts;
  /// nil for both kinds.
  std::optional<bool> isSynchronizable = false;
  bool returnsData = false;
  bool returnsAttributes = false;
  bool wantsAll = false;

  [[nodiscard]] bool matches(const ItemRecord& item) const;
  /// What is answered for the matches, of which there is at least one.
  [[nodiscard]] id resultFor(std::span<const ItemRecord> matches) const;
};

/// What an update changes; at least one of both.
struct ItemChange {
  std::optional<NSData> data;
  std::optional<std::string> accessible;

  void applyTo(ItemRecord& item) const;
};

/// nil for attributes that a store does not know or that hold what they cannot.
[[nodiscard]] std::optional<ItemQuery> itemQueryIn(const NSDictionary& query);
/// The same for what is added; nil too for what only a query can say.
[[nodiscard]] std::optional<ItemRecord> itemRecordIn(const NSDictionary& attributes);
[[nodiscard]] std::optional<ItemChange> itemChangeIn(const NSDictionary& attributes);

}  // namespace ORLFoundation::internal::keychain
