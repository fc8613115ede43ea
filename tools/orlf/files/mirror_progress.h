/// How far a mirror has come: first how many items were compared, then which part of those that are
/// to be copied has been.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace orlftool {

class WorkProgress;

/// Where no progress is shown it costs nothing.
class MirrorProgress {
 public:
  /// The folders as they were typed.
  MirrorProgress(std::string source, const std::string& destination);
  ~MirrorProgress();
  MirrorProgress(const MirrorProgress&) = delete;
  MirrorProgress& operator=(const MirrorProgress&) = delete;

  void noteCompared();
  /// An item of the source, by its path in it, is to be copied with all that it holds.
  void notePlanned(const std::string& item);
  /// The copy of one more item begins, of one inside of a folder too.
  void noteCopied();

 private:
  const std::string source_;
  const bool isShown_;
  std::unique_ptr<WorkProgress> progress_;
  std::size_t compared_ = 0, planned_ = 0, copied_ = 0;
};

}  // namespace orlftool
