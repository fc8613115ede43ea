#include <ORLFoundation/platform/files/NSURLResourceValues.h>

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/files/ResolvedPath.h>

#include <array>
#include <cerrno>

namespace ORLFoundation {
namespace {

using namespace internal::files;

constexpr double kNanosecondsPerSecond = 1e9;

struct ValueOfKey {
  std::string_view key;
  id (*value)(const struct stat& status);
};

id sizeOf(const struct stat& status) {
  return S_ISDIR(status.st_mode) ? id() : id(NSNumber(std::int64_t{status.st_size}));
}

id modificationDateOf(const struct stat& status) {
  const timespec& time = status.st_mtim;
  return NSDate::dateWithTimeIntervalSince1970(
      static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / kNanosecondsPerSecond);
}

constexpr std::array kValues{
    ValueOfKey{NSURLIsDirectoryKey,
               [](const struct stat& status) { return id(S_ISDIR(status.st_mode)); }},
    ValueOfKey{NSURLFileSizeKey, &sizeOf},
    ValueOfKey{NSURLContentModificationDateKey, &modificationDateOf},
};

bool readStatus(const NSURL& url, struct stat& status, NSErrorSlot error) {
  const auto path = pathOfFileURL(url, FileWork::Read, error);
  return path && (FileCalls::system()->status(AT_FDCWD, *path, status) ||
                  fillErrorSlot(error, {FileWork::Read, errno, *path}));
}

}  // namespace

std::shared_ptr<NSDictionary> resourceValuesForKeys(const NSURL& url,
                                                    const std::vector<std::string_view>& keys,
                                                    NSErrorSlot error) {
  struct stat status {};
  if (!readStatus(url, status, error)) return nullptr;
  NSDictionary::Entries entries;
  for (const std::string_view key : keys)
    for (const ValueOfKey& known : kValues)
      if (known.key == key)
        if (id value = known.value(status)) entries.emplace_back(key, std::move(value));
  return std::make_shared<NSDictionary>(entries);
}

bool getResourceValue(const NSURL& url, id& value, std::string_view forKey, NSErrorSlot error) {
  const auto values = resourceValuesForKeys(url, {forKey}, error);
  if (values) value = values->objectForKey(forKey);
  return values != nullptr;
}

std::string stringByResolvingSymlinksInPath(const std::string& path) {
  return resolvedPath(*FileCalls::system(), path).value_or(path);
}

NSURL URLByResolvingSymlinksInPath(const NSURL& url) {
  if (!url.isFileURL()) return url;
  return NSURL::fileURLWithPath(stringByResolvingSymlinksInPath(url.path()));
}

}  // namespace ORLFoundation
