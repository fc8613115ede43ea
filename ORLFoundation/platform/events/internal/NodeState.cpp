#include <ORLFoundation/platform/events/internal/NodeState.h>

#include <ORLFoundation/platform/events/NodeFlags.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <time.h>  // NOLINT(modernize-deprecated-headers): clock_gettime is POSIX's

namespace ORLFoundation::internal::events {
namespace {

constexpr NodeTime kSecond = 1'000'000'000;
// The coarsest tick by which a local file system stamps, twice over.
constexpr NodeTime kTick = 20'000'000;

NodeTime timeOf(const statx_timestamp& time) { return time.tv_sec * kSecond + time.tv_nsec; }

NodeTime now() {
  timespec time{};
  ::clock_gettime(CLOCK_REALTIME, &time);
  return time.tv_sec * kSecond + time.tv_nsec;
}

std::optional<NodeState> look(int descriptor, const char* path, int flags) {
  struct statx found {};
  NodeState state;
  state.seen = now();  // before the look, so that no later change seems to be an older one
  if (::statx(descriptor, path, flags, STATX_BASIC_STATS | STATX_MNT_ID, &found) != 0)
    return std::nullopt;
  constexpr unsigned kMajorShift = 32;
  state.device = (std::uint64_t{found.stx_dev_major} << kMajorShift) | found.stx_dev_minor;
  state.number = found.stx_ino;
  if ((found.stx_mask & STATX_MNT_ID) != 0) state.mount = found.stx_mnt_id;
  state.size = found.stx_size;
  state.links = found.stx_nlink;
  state.mode = found.stx_mode;
  state.user = found.stx_uid;
  state.group = found.stx_gid;
  state.modified = timeOf(found.stx_mtime);
  state.changed = timeOf(found.stx_ctime);
  return state;
}

bool areRightsEqual(const NodeState& left, const NodeState& right) {
  return left.mode == right.mode && left.user == right.user && left.group == right.group;
}

std::uint64_t growth(const NodeState& before, const NodeState& now) {
  return now.size > before.size ? kNodeExtend : 0;
}

/// What is told by the count of links and the name, whatever the kernel said.
std::uint64_t flagsOfLinks(const NodeState& before, const NodeState& now, const NodeName& name) {
  if (now.links == before.links) return 0;
  if (now.links == 0) return kNodeDelete | kNodeLink;
  const bool isLost = now.links < before.links && !now.isFolder() && name.isGone();
  return kNodeLink | (isLost ? kNodeDelete : 0);
}

}  // namespace

bool NodeState::isFolder() const noexcept { return S_ISDIR(mode); }

std::optional<NodeState> stateOfDescriptor(int descriptor) {
  return look(descriptor, "", AT_EMPTY_PATH);
}

std::optional<NodeState> stateOfPath(const std::string& path) {
  return look(AT_FDCWD, path.c_str(), 0);
}

std::uint64_t flagsOfEvents(std::uint32_t mask, const NodeState& before, const NodeState& now,
                            const NodeName& name) {
  const std::uint64_t links = flagsOfLinks(before, now, name);
  std::uint64_t flags = links;
  if ((mask & (IN_MODIFY | kNamesCameOrWent)) != 0) flags |= kNodeWrite | growth(before, now);
  // Links are attributes to the kernel.
  if ((mask & IN_ATTRIB) != 0 && (links == 0 || !areRightsEqual(before, now)))
    flags |= kNodeAttribute;
  if ((mask & IN_MOVE_SELF) != 0 && (now.links <= 1 || now.isFolder() || name.isChanged()))
    flags |= kNodeRename;
  if ((mask & IN_DELETE_SELF) != 0) flags |= kNodeDelete;
  if ((mask & IN_UNMOUNT) != 0) flags |= kNodeRevoke;
  return flags;
}

std::uint64_t flagsOfDifference(const NodeState& before, const NodeState& now,
                                const NodeName& name) {
  std::uint64_t flags = flagsOfLinks(before, now, name) | growth(before, now);
  const bool isTooFresh = before.changed > before.seen - kTick;
  if (now.modified != before.modified || now.size != before.size || isTooFresh) flags |= kNodeWrite;
  if (now.links > 0 && name.isChanged()) flags |= kNodeRename;
  // Whatever else befalls a file stamps the time of its change too.
  if (!areRightsEqual(before, now) || (flags == 0 && now.changed != before.changed))
    flags |= kNodeAttribute;
  return flags;
}

}  // namespace ORLFoundation::internal::events
