/// Work that is done in a process of its own: as an ordinary user, in a world of mounts of its own,
/// or to be killed.
///
///     EXPECT_EQ(orlftest::asOrdinaryUser(folder, [&] {
///       return refuses(path) ? "" : "it was opened";
///     }), "");
#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace orlftest {

/// What the work, a function that gives a text, gave in a child of this process; "killed by 9"
/// where a signal ended it.
template <class Work>
std::string inChild(const Work& work) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    std::string text;
    try {
      text = work();
    } catch (const std::exception& exception) {
      text = exception.what();
    }
    const bool isWritten =
        ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::_exit(isWritten ? 0 : 1);
  }
  ::close(ends[1]);
  std::string text;
  std::array<char, 512> piece{};
  for (ssize_t count = 0; (count = ::read(ends[0], piece.data(), piece.size())) > 0;)
    text.append(piece.data(), static_cast<std::size_t>(count));
  ::close(ends[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? "killed by " + std::to_string(WTERMSIG(status)) : text;
}

inline constexpr uid_t kNobody = 65534;

/// The same as a user whom modes bind, who then owns the folder and all that is in it now.
template <class Work>
std::string asOrdinaryUser(const std::filesystem::path& folder, const Work& work) {
  namespace fs = std::filesystem;
  const bool isRoot = ::geteuid() == 0;
  if (isRoot) {
    if (::lchown(folder.c_str(), kNobody, kNobody) != 0) return "cannot give the folder away";
    for (const auto& entry : fs::recursive_directory_iterator(folder))
      if (::lchown(entry.path().c_str(), kNobody, kNobody) != 0) return "cannot give a file away";
  }
  return inChild([&]() -> std::string {
    if (isRoot && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) return "cannot be nobody";
    return work();
  });
}

/// The same with a file system of so many kilobytes mounted at a folder, for the work alone. ""
/// where the machine forbids that; `isDone` says whether the work was done.
template <class Work>
std::string onSmallDisk(const std::filesystem::path& folder, int kilobytes, bool& isDone,
                        const Work& work) {
  const std::string text = inChild([&]() -> std::string {
    const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS;
    const std::string options = "size=" + std::to_string(kilobytes) + "k";
    const bool isMounted = ::unshare(spaces) == 0 &&
                           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                           ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
    return isMounted ? "done:" + work() : "forbidden";
  });
  isDone = text != "forbidden";
  if (!isDone) return "";
  return text.starts_with("done:") ? text.substr(5) : text;
}

}  // namespace orlftest
