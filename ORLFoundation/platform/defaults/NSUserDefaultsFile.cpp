
#include <ORLFoundation/platform/defaults/NSUserDefaultsFile.h>

#include <ORLFoundation/platform/defaults/internal/DefaultsValues.h>
#include <ORLFoundation/platform/files/WholeFile.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <algorithm>
#include <cstdlib>

namespace ORLFoundation {
namespace {

namespace files = internal::files;

/// What a file holds: `values` is null where it is no property list with a dictionary.
struct FileState {
  bool exists = false;
  std::shared_ptr<NSDictionary> values;
};

std::optional<FileState> readState(const std::string& path, NSErrorSlot error) {
  const auto contents = files::readWholeFile(path, error);
  if (!contents) return std::nullopt;
  if (!contents->exists) return FileState{false, std::make_shared<NSDictionary>()};
  const id list = NSPropertyListSerialization::propertyListWithData(contents->data, 0);
  return FileState{true, list.as<NSDictionary>()};
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// The value of a variable when it is an absolute path, else "".
std::string folderFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && value[0] == '/' ? value : "";
}

std::string configurationFolder() {
  if (std::string folder = folderFromEnvironment("XDG_CONFIG_HOME"); !folder.empty()) return folder;
  const std::string home = folderFromEnvironment("HOME");
  return home.empty() ? "" : home + "/.config";
}

}  // namespace

std::string NSUserDefaultsFile::pathForDomain(std::string_view domain) {
  const std::string folder = configurationFolder();
  if (folder.empty() || domain.empty()) return {};
  std::string name(domain);
  std::replace(name.begin(), name.end(), '/', '_');
  if (name.front() == '.') name.front() = '_';
  return folder + "/" + name + "/defaults.plist";
}

std::shared_ptr<NSDictionary> NSUserDefaultsFile::read(NSErrorSlot error) {
  const std::optional<FileState> state = readState(path_, error);
  if (!state) return nullptr;
  if (state->values) return state->values;
  NSFillErrorSlot(error, NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                  path_ + ": it is broken, and no property list with a dictionary");
  return std::make_shared<NSDictionary>();
}

std::shared_ptr<NSDictionary> NSUserDefaultsFile::apply(const NSUserDefaultsChanges& changes,
                                                        NSErrorSlot error) {
  const files::LockedFolder folder(folderOf(path_), error);
  if (!folder.isLocked()) return nullptr;
  const std::optional<FileState> state = readState(path_, error);
  if (!state) return nullptr;
  const auto nothing = std::make_shared<NSDictionary>();
  auto values = NSDictionaryByApplyingChanges(state->values ? *state->values : *nothing, changes);
  if (state->values && internal::defaults::isSameValue(state->values, values)) return values;
  const auto bytes = NSPropertyListSerialization::dataWithPropertyList(
      values, NSPropertyListBinaryFormat_v1_0, 0, error);
  if (!bytes) return nullptr;
  if (!state->values && !files::keepAside(path_, error)) return nullptr;
  if (!files::replaceFile(path_, bytes->text(), files::NewFileRights::Private, error))
    return nullptr;
  return values;
}

}  // namespace ORLFoundation
