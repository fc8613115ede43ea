/// The names in a keyed archive: a dictionary of four entries, of which one is the table of
/// objects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::archive {

inline constexpr std::string_view kVersionKey = "$version";
inline constexpr std::string_view kArchiverKey = "$archiver";
inline constexpr std::string_view kTopKey = "$top";
inline constexpr std::string_view kObjectsKey = "$objects";
inline constexpr std::string_view kClassKey = "$class";
inline constexpr std::string_view kClassNameKey = "$classname";
inline constexpr std::string_view kClassesKey = "$classes";
inline constexpr std::string_view kClassHintsKey = "$classhints";

inline constexpr std::int64_t kVersion = 100000;
inline constexpr std::string_view kArchiver = "NSKeyedArchiver";
inline constexpr std::string_view kRootClass = "NSObject";
/// The first object, and any other of this text, is nil.
inline constexpr std::string_view kNull = "$null";

/// Objects within objects.
inline constexpr std::size_t kDeepestNesting = 128;

/// Whether a caller's key could be one of the keys above; it then stands in the archive escaped.
inline bool isOwnKey(std::string_view key) noexcept { return key.starts_with('$'); }
inline std::string escapedKey(std::string_view key) { return "$" + std::string(key); }

}  // namespace ORLFoundation::internal::archive
