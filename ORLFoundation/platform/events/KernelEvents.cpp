#include <ORLFoundation/platform/events/KernelEvents.h>

#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstring>
#include <system_error>
#include <utility>

namespace ORLFoundation::internal::events {
namespace {

constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;
constexpr std::size_t kLongestEvent = sizeof(inotify_event) + NAME_MAX + 1;

class Inotify final : public KernelQueue {
 public:
  explicit Inotify(int descriptor) : descriptor_(descriptor) {}
  ~Inotify() override { ::close(descriptor_); }
  Inotify(const Inotify&) = delete;
  Inotify& operator=(const Inotify&) = delete;

  [[nodiscard]] int descriptor() const override { return descriptor_; }
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask) override {
    return ::inotify_add_watch(descriptor_, path.c_str(), mask | IN_MASK_ADD);
  }
  void set(const std::string& path, std::uint32_t mask) override {
    static_cast<void>(::inotify_add_watch(descriptor_, path.c_str(), mask));
  }
  void remove(int watch) override { static_cast<void>(::inotify_rm_watch(descriptor_, watch)); }

  [[nodiscard]] std::vector<KernelEvent> read() override {
    std::vector<KernelEvent> events;
    while (readSome(events)) {  // far quicker than anyone makes events
    }
    return events;
  }

 private:
  /// Answers whether more may wait.
  [[nodiscard]] bool readSome(std::vector<KernelEvent>& events) const {
    alignas(inotify_event) std::array<char, kBytesAtATime> bytes;  // NOLINT: filled by the kernel
    const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
    if (count <= 0) return false;
    const auto end = static_cast<std::size_t>(count);
    for (std::size_t at = 0; at < end;) {
      inotify_event event{};
      std::memcpy(&event, bytes.data() + at, sizeof event);
      events.push_back({event.wd, event.mask, event.len > 0});
      at += sizeof event + event.len;
    }
    return end + kLongestEvent > bytes.size();
  }

  int descriptor_;
};

/// The kernel tells each open file of a change once: one is for who waits and one for who asks and
/// reads.
class ProcessMounts final : public MountTable {
 public:
  [[nodiscard]] int descriptor() const override { return waitedFor_.number; }
  [[nodiscard]] bool hasChanged() override {
    pollfd table{asked_.number, POLLPRI, 0};
    return ::poll(&table, 1, 0) > 0 && (table.revents & POLLPRI) != 0;
  }
  [[nodiscard]] std::optional<std::set<std::uint64_t>> mounts() override {
    std::string text;
    std::array<char, kBytesAtATime> bytes;  // NOLINT: filled by the kernel
    while (true) {
      const ssize_t count =
          ::pread(asked_.number, bytes.data(), bytes.size(), static_cast<off_t>(text.size()));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return std::nullopt;
      if (count == 0) return mountsOfTable(text);
      text.append(bytes.data(), static_cast<std::size_t>(count));
    }
  }

 private:
  static constexpr const char* kMounts = "/proc/self/mountinfo";

  struct File {
    File() : number(::open(kMounts, O_RDONLY | O_CLOEXEC)) {}
    ~File() {
      if (number >= 0) ::close(number);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    const int number;
  };

  File waitedFor_;
  File asked_;
};

}  // namespace

void KernelQueue::waitForChangesAround(const std::string& path) {
  events::waitForChangesAround(path);
}

std::unique_ptr<KernelQueue> KernelQueue::make() {
  const int descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  return descriptor < 0 ? nullptr : std::make_unique<Inotify>(descriptor);
}

std::unique_ptr<MountTable> MountTable::make() { return std::make_unique<ProcessMounts>(); }

std::optional<std::set<std::uint64_t>> mountsOfTable(std::string_view text) {
  std::set<std::uint64_t> numbers;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string_view line = text.substr(begin, end - begin);
    std::uint64_t number = 0;
    const auto [rest, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    const bool isNumber = error == std::errc() && rest != line.data() + line.size() && *rest == ' ';
    if (!isNumber) return std::nullopt;
    numbers.insert(number);
    begin = end + 1;
  }
  return numbers.empty() ? std::nullopt : std::optional(std::move(numbers));
}

}  // namespace ORLFoundation::internal::events
