/// Loads what needs no server: a file, piece by piece, or the bytes that an address holds.
#pragma once

#include <ORLFoundation/platform/net/internal/Transfer.h>

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace ORLFoundation::internal::net {

class LocalLoad final : public Transfer {
 public:
  LocalLoad(Loader& loader, std::shared_ptr<LoadingTask> task,
            std::shared_ptr<Recipient> recipient);
  ~LocalLoad() override;

  void begin() override;
  void proceed() override { isPaused_ = false; }
  /// Whether a step would do something.
  [[nodiscard]] bool isReady() const noexcept { return !isPaused_; }
  /// The next piece, or the end; may destroy this.
  void step();

 private:
  void beginData(const NSURL& url);
  void beginFile(const NSURL& url);
  void fail(NSURLError code);
  /// nil where the file cannot be read on.
  [[nodiscard]] std::optional<std::span<const std::uint8_t>> nextPiece();
  [[nodiscard]] bool hasBody() const;

  Loader& loader_;
  bool isPaused_ = false;
  std::optional<NSURLError> failure_;
  int descriptor_ = -1;
  std::string bytes_;      ///< Those of the address, or a piece of the file.
  std::size_t begin_ = 0;  ///< Of them, where those begin that the delegate has not taken.
};

}  // namespace ORLFoundation::internal::net
