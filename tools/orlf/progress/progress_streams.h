/// The streams of a job beside a line of progress.
#pragma once

#include <functional>
#include <mutex>
#include <streambuf>
#include <string>
#include <string_view>

namespace orlftool {

/// Gives whole lines to a block; what is left without an end at its own end too, with one.
class LineStreamBuffer final : public std::streambuf {
 public:
  using Print = std::function<void(std::string_view lines)>;
  explicit LineStreamBuffer(Print print) : print_(std::move(print)) {}
  ~LineStreamBuffer() override;
  LineStreamBuffer(const LineStreamBuffer&) = delete;
  LineStreamBuffer& operator=(const LineStreamBuffer&) = delete;

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;

 private:
  const Print print_;
  std::mutex lock_;  // the log may come from any thread
  std::string line_;
};

/// Hands everything on to another buffer, and calls a block before the first of it.
class TappedStreamBuffer final : public std::streambuf {
 public:
  TappedStreamBuffer(std::streambuf& to, std::function<void()> first)
      : to_(to), first_(std::move(first)) {}

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override { return to_.pubsync(); }

 private:
  void begin();

  std::streambuf& to_;
  std::function<void()> first_;
};

}  // namespace orlftool
