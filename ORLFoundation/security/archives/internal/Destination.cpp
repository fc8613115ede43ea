#include <ORLFoundation/security/archives/internal/Destination.h>

#include <ORLFoundation/platform/value/NSUUID.h>

#include <cerrno>
#include <cstdio>

namespace ORLFoundation::internal::archives {

using container::FileByteStream;
using files::FileCalls;
using files::FileWork;
using files::OpenFile;
using files::ReplacementFolder;

namespace {

constexpr mode_t kNewFile = 0666;  // of which the process's mask takes away
constexpr std::size_t kDigits = 8;

std::string withoutSlashes(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

std::string parentOf(const std::string& path) {
  std::string folder = files::folderOfPath(path);
  if (!folder.empty()) return folder;
  return path.starts_with('/') ? "/" : ".";
}

}  // namespace

Destination::Destination(const std::string& path)
    : path_(withoutSlashes(path)),
      parent_(*FileCalls::system(), parentOf(path_)),
      name_(files::nameOfPath(path_)) {
  if (!parent_.isOpen()) throwUnwritable(errno);
  if (name_.empty() || name_ == "." || name_ == "..") throwUnwritable(EEXIST);
  struct stat status {};
  if (parent_.status(name_, status)) throwUnwritable(EEXIST);
  if (errno != ENOENT) throwUnwritable(errno);
}

Destination::~Destination() {
  if (folder_) {
    folder_->remove();
  } else if (!temporaryName_.empty()) {
    static_cast<void>(parent_.calls().remove(parent_.number(), temporaryName_));
  }
}

void Destination::throwUnwritable(int number) const {
  container::throwFileFailure(FileWork::Write, number, path_);
}

FileByteStream& Destination::makeFile() {
  const std::string name =
      "." + name_.substr(0, 200) + "." + NSUUID::UUID().UUIDString().substr(0, kDigits);
  noted_.emplace(parentOf(path_) + "/" + name);
  OpenFile file = parent_.open(name, O_RDWR | O_CREAT | O_EXCL, kNewFile);
  if (!file.isOpen()) throwUnwritable(errno);
  temporaryName_ = name;
  file_ = std::make_unique<FileByteStream>(parent_.calls(), std::move(file), path_);
  return *file_;
}

std::string Destination::makeFolder() {
  ReplacementFolder::removeAbandoned(parent_);
  files::FileOutcome failure;
  folder_ = ReplacementFolder::make(parent_, failure);
  if (!folder_) throwUnwritable(failure->number);
  temporaryName_ = files::nameOfPath(folder_->folder().path());
  return folder_->folder().path();
}

void Destination::appear() {
  FileCalls& calls = parent_.calls();
  const auto rename = [&](unsigned flags) {
    return calls.rename(parent_.number(), temporaryName_, parent_.number(), name_, flags);
  };
  if (!rename(RENAME_NOREPLACE)) {
    // Some file systems cannot rename without replacing.
    struct stat status {};
    if (errno != EINVAL && errno != ENOSYS) throwUnwritable(errno);
    if (parent_.status(name_, status)) throwUnwritable(EEXIST);
    if (!rename(0)) throwUnwritable(errno);
  }
  temporaryName_.clear();
  folder_.reset();
  const OpenFile folder(calls, calls.open(parent_.number(), ".", O_RDONLY | O_DIRECTORY));
  if (folder.isOpen()) static_cast<void>(calls.synchronize(folder.number()));
}

}  // namespace ORLFoundation::internal::archives
