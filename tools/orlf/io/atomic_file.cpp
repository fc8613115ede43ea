#include "io/atomic_file.h"

#include <ORLFoundation/platform/files/WholeFile.h>

#include <memory>

#include "cli/failure.h"

namespace orlftool {
namespace {

namespace files = ORLFoundation::internal::files;

template <class Contents>
void replaceOrFail(const std::string& path, const Contents& contents) {
  std::shared_ptr<const ORLFoundation::NSError> error;
  if (files::replaceFile(path, contents, files::NewFileRights::Shared, &error)) return;
  // The library's text begins with the path, too.
  const std::string reason = error->localizedDescription().substr(path.size() + 2);
  throw JobFailure(path + ": cannot be written: " + reason);
}

}  // namespace

void writeFileAtomically(const std::string& path,
                         const std::function<void(const std::string&)>& write) {
  replaceOrFail(path, write);
}

void writeFileAtomically(const std::string& path, std::string_view contents) {
  replaceOrFail(path, contents);
}

}  // namespace orlftool
