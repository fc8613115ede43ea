/// Files that are there whole or not at all: written beside their place under another name, brought
/// to the disk, then moved over it. A file that is replaced hands on its mode.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace orlftool {

/// Gives `write` the path of a new file beside `path` and moves that file to `path` when `write`
/// returns. When `write` throws, or the move fails, the new file is removed and `path` keeps what
/// it held. Throws JobFailure.
void writeFileAtomically(const std::string& path,
                         const std::function<void(const std::string& temporaryPath)>& write);
/// The same for bytes that are there already.
void writeFileAtomically(const std::string& path, std::string_view contents);

}  // namespace orlftool
