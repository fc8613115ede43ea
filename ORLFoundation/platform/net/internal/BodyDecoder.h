/// Takes the encoding off an answer's body, piece by piece, and knows a body that was cut off from
/// a whole one.
#pragma once

#include <zlib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace ORLFoundation::internal::net {

enum class BodyEncoding : std::uint8_t { None, Gzip, Deflate, Unknown };

/// Of the field Content-Encoding, in any case. Several encodings, one over the other, are unknown.
[[nodiscard]] BodyEncoding bodyEncodingIn(std::string_view contentEncoding);

class BodyDecoder {
 public:
  enum class Outcome : std::uint8_t {
    Read,
    Held,    ///< Nobody takes more for now: the same bytes are to be given again.
    Broken,  ///< They are not of the encoding.
  };
  /// Takes decoded bytes, or answers false and is given them again.
  using Receiver = std::function<bool(std::span<const std::uint8_t>)>;

  /// Of gzip, which may be several streams in a row, or deflate, with or without the wrapping that
  /// belongs to it.
  explicit BodyDecoder(BodyEncoding encoding) noexcept : encoding_(encoding) {}
  ~BodyDecoder();
  BodyDecoder(const BodyDecoder&) = delete;
  BodyDecoder& operator=(const BodyDecoder&) = delete;

  /// The next bytes of the body; after `Held` they begin with those that were given before.
  [[nodiscard]] Outcome decode(std::span<const std::uint8_t> bytes, const Receiver& receive);
  /// Whether the body may end here.
  [[nodiscard]] bool isWhole() const noexcept { return state_ == State::Ended; }

 private:
  enum class State : std::uint8_t { New, Open, Ended };

  [[nodiscard]] bool begin(std::uint8_t first) noexcept;
  [[nodiscard]] bool step(std::span<const std::uint8_t>& bytes) noexcept;

  const BodyEncoding encoding_;
  State state_ = State::New;
  bool isInitialized_ = false;
  bool hasMore_ = false;  ///< Whether decoded bytes may be left that had no room.
  z_stream stream_{};
  std::size_t read_ = 0;                   ///< Of bytes that are given again, how many were read.
  std::span<const std::uint8_t> decoded_;  ///< What nobody has taken.
  std::array<std::uint8_t, std::size_t{64} * 1024> buffer_{};
};

}  // namespace ORLFoundation::internal::net
