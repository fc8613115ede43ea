/// A kernel that a test plays: its routes and links answer questions, and it tells of changes when
/// the test says so.
///
///     ScriptedKernel kernel;
///     kernel.setLink(2, IFF_UP | IFF_RUNNING);
///     kernel.setRoutes("192.0.2.7", {{.type = RTN_UNICAST, .link = 2}});
///     kernel.tellOfChange();
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/reachability/HostLookup.h>
#include <ORLFoundation/platform/reachability/RouteFlags.h>
#include <ORLFoundation/platform/reachability/RouteSocket.h>
#include <arpa/inet.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orlftest {

namespace reachability = ORLFoundation::internal::reachability;

template <class Record>
void appendBytes(std::string& bytes, const Record& record) {
  bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

inline void appendAttribute(std::string& bytes, std::uint16_t type, std::string_view value) {
  appendBytes(bytes, rtattr{static_cast<std::uint16_t>(sizeof(rtattr) + value.size()), type});
  bytes += value;
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

template <class Number>
void appendNumber(std::string& bytes, std::uint16_t type, Number number) {
  appendAttribute(bytes, type, {reinterpret_cast<const char*>(&number), sizeof number});
}

inline std::string messageOf(std::uint16_t type, std::uint16_t flags, std::string_view body) {
  nlmsghdr head{};
  head.nlmsg_len = static_cast<std::uint32_t>(sizeof head + body.size());
  head.nlmsg_type = type;
  head.nlmsg_flags = flags;
  std::string message;
  appendBytes(message, head);
  message += body;
  message.resize((message.size() + 3) / 4 * 4);
  return message;
}

inline std::string bodyOf(const reachability::Route& route) {
  rtmsg record{};
  record.rtm_type = route.type;
  record.rtm_dst_len = route.destinationBits;
  std::string body;
  appendBytes(body, record);
  if (route.hasGateway) appendNumber(body, RTA_GATEWAY, std::uint32_t{1});
  appendNumber(body, RTA_PRIORITY, route.priority);
  appendNumber(body, RTA_OIF, route.link);
  return body;
}

inline std::string bodyOfLink(std::int32_t link, std::uint32_t flags) {
  ifinfomsg record{};
  record.ifi_index = link;
  record.ifi_flags = flags;
  std::string body;
  appendBytes(body, record);
  return body;
}

inline sockaddr_storage addressOf(const std::string& numbers) {
  return *reachability::addressOfNumbers(numbers);
}

class ScriptedKernel {
 public:
  ScriptedKernel()
      : opener_(reachability::exchangeRouteSocketOpener,
                [this](std::uint32_t groups) { return open(groups); }) {}
  ~ScriptedKernel() {
    for (std::thread& thread : threads_) thread.join();
  }
  ScriptedKernel(const ScriptedKernel&) = delete;
  ScriptedKernel& operator=(const ScriptedKernel&) = delete;

  void setLink(std::int32_t link, std::uint32_t flags) {
    const std::lock_guard guard(lock_);
    links_[link] = flags;
  }
  /// "" stands for the routes to everywhere.
  void setRoutes(const std::string& numbers, std::vector<reachability::Route> routes) {
    const std::lock_guard guard(lock_);
    routes_[numbers] = std::move(routes);
  }
  /// What questions are refused with; 0 answers them.
  void refuse(int error) {
    const std::lock_guard guard(lock_);
    refusal_ = error;
  }
  /// Whether sockets can be opened.
  void setOpen(bool isOpen) { isOpen_ = isOpen; }
  /// A message to whoever listens.
  void tellOfChange() {
    const std::lock_guard guard(lock_);
    for (const reachability::Descriptor& listener : listeners_)
      static_cast<void>(!::send(listener.number(), "change", 6, MSG_NOSIGNAL | MSG_DONTWAIT));
  }
  [[nodiscard]] std::uint32_t groups() const { return groups_; }

 private:
  int open(std::uint32_t groups) {
    std::array<int, 2> ends{};
    if (!isOpen_ || ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
      return -1;
    const std::lock_guard guard(lock_);
    if (groups != 0) {
      groups_ = groups;
      listeners_.emplace_back(ends[1]);
    } else {
      threads_.emplace_back([this, end = ends[1]] { answer(reachability::Descriptor(end)); });
    }
    return ends[0];
  }

  void answer(const reachability::Descriptor& socket) {
    std::array<char, 512> question{};
    const ssize_t length = ::recv(socket.number(), question.data(), question.size(), 0);
    if (length < static_cast<ssize_t>(sizeof(nlmsghdr))) return;
    nlmsghdr head{};
    std::memcpy(&head, question.data(), sizeof head);
    const std::string_view body(question.data() + sizeof head,
                                static_cast<std::size_t>(length) - sizeof head);
    const std::string answer = answerTo(head, body);
    static_cast<void>(!::send(socket.number(), answer.data(), answer.size(), MSG_NOSIGNAL));
  }

  std::string answerTo(const nlmsghdr& head, std::string_view body) {
    const std::lock_guard guard(lock_);
    if (refusal_ != 0) return errorMessage(refusal_);
    if (head.nlmsg_type == RTM_GETLINK) {
      ifinfomsg wanted{};
      std::memcpy(&wanted, body.data(), sizeof wanted);
      const auto link = links_.find(wanted.ifi_index);
      if (link == links_.end()) return errorMessage(ENODEV);
      return messageOf(RTM_NEWLINK, 0, bodyOfLink(link->first, link->second));
    }
    rtmsg wanted{};
    std::memcpy(&wanted, body.data(), sizeof wanted);
    const bool isDump = (head.nlmsg_flags & NLM_F_DUMP) == NLM_F_DUMP;
    std::array<char, INET6_ADDRSTRLEN> numbers{};
    if (!isDump)
      ::inet_ntop(wanted.rtm_family, body.data() + sizeof wanted + sizeof(rtattr), numbers.data(),
                  numbers.size());
    const auto routes = routes_.find(numbers.data());
    if (routes == routes_.end() && !isDump) return errorMessage(ENETUNREACH);
    std::string answer;
    if (routes != routes_.end())
      for (const auto& route : routes->second)
        answer += messageOf(RTM_NEWROUTE, isDump ? NLM_F_MULTI : 0, bodyOf(route));
    return isDump ? answer + messageOf(NLMSG_DONE, NLM_F_MULTI, std::string(4, '\0')) : answer;
  }

  static std::string errorMessage(int error) {
    nlmsgerr refusal{};
    refusal.error = -error;
    std::string body;
    appendBytes(body, refusal);
    return messageOf(NLMSG_ERROR, 0, body);
  }

  std::mutex lock_;
  std::map<std::int32_t, std::uint32_t> links_;
  std::map<std::string, std::vector<reachability::Route>> routes_;
  std::vector<reachability::Descriptor> listeners_;
  std::vector<std::thread> threads_;
  int refusal_ = 0;
  std::atomic<bool> isOpen_{true};
  std::atomic<std::uint32_t> groups_{0};
  ORLFoundation::Replaced<reachability::RouteSocketOpener> opener_;
};

}  // namespace orlftest
