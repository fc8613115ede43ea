#include "files/file_argument.h"

#include <filesystem>

#include "cli/failure.h"

namespace orlftool {

std::string absolutePathOfArgument(const std::string& name, const std::string& text) {
  if (text.empty()) throw UsageFailure(name + ": expected a path, got ''");
  std::error_code code;
  const std::filesystem::path path = std::filesystem::absolute(text, code);
  if (code) throw JobFailure(text + ": " + code.message());
  return path.string();
}

ORLFoundation::NSURL fileURLOfArgument(const std::string& name, const std::string& text) {
  return ORLFoundation::NSURL::fileURLWithPath(absolutePathOfArgument(name, text));
}

}  // namespace orlftool
