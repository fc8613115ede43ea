/// A processor that masks texts by their value: what was named to it stands nowhere in what comes
/// out, in none of these spellings:
///
/// - as it is;
/// - with percent escapes, needless ones too, and "+" for a blank;
/// - with the escapes of JSON, needless ones too: "\u0061", "\/";
/// - in hexadecimal digits of either case;
/// - in Base64, with either alphabet and at each of the three alignments, so also in the middle of
///   what is encoded ("user:password");
/// - the last two with escapes in them, and one kind of escapes within the other.
///
///     ORLFURLSessionSecretMask mask;
///     mask.addSecret("hunter2");
///     *mask.process("pass=hunter%32&x=1");   // "pass=***&x=1"
///
/// Secrets that overlap are masked as one. The time that it takes grows with the length of the text
/// and next to not at all with the number of secrets.
#pragma once

#include <ORLFoundation/web/logging/ORLFURLSessionLogProcessor.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::logging {
class SecretIndex;
class SecretStream;
}  // namespace internal::logging

/// Any thread may add and mask.
class ORLFURLSessionSecretMask final : public ORLFURLSessionLogProcessor {
 public:
  /// Shorter ones would stand in texts by chance.
  static constexpr std::size_t kShortestSecret = 6;

  ORLFURLSessionSecretMask();
  /// Overwrites the secrets in memory.
  ~ORLFURLSessionSecretMask() override;

  /// false, and nothing more is masked, for a secret of under 6 bytes.
  bool addSecret(std::string_view secret);
  /// `process:`  With "***" for each secret. nil for nil.
  [[nodiscard]] std::optional<std::string> process(std::optional<std::string> string) override;

  /// Masks a text that comes in pieces, whatever it is cut through. What may be the beginning of a
  /// secret is held back: of a text without end a few multiples of the longest spelling and 64 KB
  /// are kept in memory. Secrets that are added afterwards are not masked here. For one thread at a
  /// time.
  class Pieces {
   public:
    explicit Pieces(const ORLFURLSessionSecretMask& mask);
    ~Pieces();
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    /// What is now known to hold no part of a secret.
    [[nodiscard]] std::string append(std::string_view piece);
    /// The rest. Afterwards a new text may begin.
    [[nodiscard]] std::string finish();

   private:
    const std::unique_ptr<internal::logging::SecretStream> stream_;
  };

  [[nodiscard]] std::string className() const override { return "ORLFURLSessionSecretMask"; }

 private:
  [[nodiscard]] std::shared_ptr<const internal::logging::SecretIndex> index() const;

  mutable std::mutex lock_;
  std::vector<std::string> secrets_;
  mutable std::shared_ptr<const internal::logging::SecretIndex> index_;  // null: to be made
};

}  // namespace ORLFoundation
