/// LZFSE streams: matches within the last 262,139 bytes, and the rest coded by tables of states
/// that each block brings along; inputs below 4,096 bytes are coded in bytes, as LZVN.
///
///     LZFSEEncoder encoder;
///     std::vector<std::uint8_t> stream;
///     encoder.append(text, stream);
///     LZFSEDecoder decoder;
///     const std::optional<std::vector<std::uint8_t>> back = decoder.decoded(stream, 1U << 20);
///
/// An encoder and a decoder keep their tables, 700 and 50 kilobytes, from one call to the next; one
/// serves one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace ORLFoundation::internal::compression {

class LZFSEEncoder {
 public:
  LZFSEEncoder();
  ~LZFSEEncoder();
  LZFSEEncoder(const LZFSEEncoder&) = delete;
  LZFSEEncoder& operator=(const LZFSEEncoder&) = delete;

  /// Puts a whole stream behind what `output` holds. What does not shrink is stored, so that a
  /// stream is never more than 12 bytes longer than its input. Inputs of 2 GB and more raise
  /// `std::length_error`.
  void append(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output);

 private:
  struct Tables;
  const std::unique_ptr<Tables> tables_;
};

class LZFSEDecoder {
 public:
  LZFSEDecoder();
  ~LZFSEDecoder();
  LZFSEDecoder(const LZFSEDecoder&) = delete;
  LZFSEDecoder& operator=(const LZFSEDecoder&) = delete;

  /// Fills the whole of `output`. False for a stream that is damaged, cut off, followed by
  /// anything, or that gives another number of bytes; what the output holds then is of no use.
  [[nodiscard]] bool decode(std::span<const std::uint8_t> stream, std::span<std::uint8_t> output);
  /// The bytes of a stream; nil for a damaged one, and for one of more than `mostBytes`, before
  /// memory is taken for them.
  [[nodiscard]] std::optional<std::vector<std::uint8_t>> decoded(
      std::span<const std::uint8_t> stream, std::size_t mostBytes);

 private:
  struct Tables;
  const std::unique_ptr<Tables> tables_;
};

}  // namespace ORLFoundation::internal::compression
