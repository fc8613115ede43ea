#include <ORLFoundation/platform/container/ArchiveByteStream.h>

#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <ORLFoundation/platform/container/Archive_testing.h>
#include <ORLFoundation/platform/container/internal/SealedPrologue.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace ORLFoundation {
namespace {

using internal::container::ChainKey;
using internal::container::Seal;
using orlftest::archiveErrorOf;
using orlftest::Bytes;
using orlftest::bytesOf;
using orlftest::hexOf;
using orlftest::MemoryByteStream;
using orlftest::ScriptedRandomBytes;
using orlftest::sha256Of;
using Profile = ArchiveEncryptionContext::Profile;
using Checksum = ArchiveEncryptionContext::Checksum;

constexpr Profile kSymmetric = Profile::hkdf_sha256_aesctr_hmac__symmetric__none;
constexpr Profile kPassword = Profile::hkdf_sha256_aesctr_hmac__scrypt__none;

SymmetricKey countingKey() {
  Bytes bytes(32);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  return SymmetricKey(bytes);
}

/// A container that can be foretold.
struct Form {
  const char* name = "";
  Bytes payload = {};
  std::string sha256 = {};
  std::size_t size = 0;
  Profile profile = kSymmetric;
  std::size_t segmentSize = 0x100000;
  Checksum checksum = Checksum::sha256;
  std::size_t padding = 0;
};

std::unique_ptr<ArchiveEncryptionContext> contextOf(const Form& form, ArchiveCompression kind) {
  auto context = std::make_unique<ArchiveEncryptionContext>(form.profile, kind);
  if (form.profile == kSymmetric)
    context->setSymmetricKey(countingKey());
  else
    context->setPassword("correct horse");
  context->setSegmentSize(form.segmentSize);
  context->setSegmentsPerCluster(32);
  context->setChecksum(form.checksum);
  context->setPaddingBytes(form.padding);
  return context;
}

Bytes sealed(const Form& form) {
  std::deque<ScriptedRandomBytes::Script> scripts{ScriptedRandomBytes::from(0x20)};
  if (form.padding > 0) scripts.push_back(ScriptedRandomBytes::all(0xcc));
  if (!form.payload.empty()) scripts.push_back(ScriptedRandomBytes::all(0xaa));
  if (form.padding == 0) scripts.push_back(ScriptedRandomBytes::all(0xbb));
  const ScriptedRandomBytes random(std::move(scripts));
  MemoryByteStream memory;
  const auto stream =
      ArchiveByteStream::encryptionStream(memory, *contextOf(form, ArchiveCompression::none));
  stream->write(form.payload);
  stream->close();
  return memory.bytes();
}

Bytes opened(const Bytes& container, const SymmetricKey& key = countingKey(),
             const std::string& password = "correct horse") {
  MemoryByteStream memory(container);
  ArchiveEncryptionContext context(memory);
  if (context.profile() == kSymmetric)
    context.setSymmetricKey(key);
  else
    context.setPassword(password);
  const auto stream = ArchiveByteStream::decryptionStream(memory, context);
  return orlftest::readAll(*stream);
}

std::vector<Form> forms() {
  const Bytes hello = bytesOf("Hello, archive!\n");
  Bytes clusters(0x4000 * 40 + 5);
  for (std::size_t i = 0; i < clusters.size(); ++i)
    clusters[i] = static_cast<std::uint8_t>(7 * i + (i >> 8));
  return {
      {"one segment", hello, "45d1bd571b2bd5eb9d22e8f24828c09d19a0b9fbbc60d052e196edfd3db56c75",
       2508},
      {.name = "padding",
       .payload = hello,
       .sha256 = "9d6eff574fa780c65e4d225b75dbbf92acc4fd644482dd4077a592d008884587",
       .size = 2524,
       .padding = 16},
      {.name = "two clusters",
       .payload = clusters,
       .sha256 = "9c96e915fc30b3a325b41c21cf906219f6e83e2c47ee3f1f58589feada553c6e",
       .size = 658657,
       .segmentSize = 0x4000,
       .checksum = Checksum::murmurHash64},
      {.name = "a password",
       .payload = hello,
       .sha256 = "fec95f5e643326a79e47e12d642f06eaab86f7c0b6b68a569d4c1ebc7aa4adcb",
       .size = 2508,
       .profile = kPassword},
      {.name = "nothing",
       .payload = {},
       .sha256 = "e9fdf969b80ce74e55bc3f9148a12fff685e542950ef7ad2b15fa33e2ece4d4a",
       .size = 156},
  };
}

TEST(SealedContainer, IsWrittenAndReadToTheByte) {
  for (const Form& form : forms()) {
    const Bytes container = sealed(form);
    EXPECT_EQ(container.size(), form.size) << form.name;
    EXPECT_EQ(sha256Of(container), form.sha256) << form.name;
    EXPECT_EQ(opened(container), form.payload) << form.name;
  }
}

TEST(SealedContainer, HasTheStatedPieces) {
  const Bytes container = sealed(forms()[0]);
  EXPECT_EQ(sha256Of(std::span(container).first(156)),
            "2baf074c548349e31cdbc46723000c54d871887d312fcf754467883922a1b5a1");
  const auto part = [&](std::size_t at, std::size_t count) {
    return hexOf(std::span(container).subspan(at, count));
  };
  EXPECT_EQ(part(44, 32), "29b7eef006df7f2b76300bc59c11fa46c574732cb732e8535fed8ea60f46b016");
  EXPECT_EQ(part(76, 48),
            "cfd4b417d9702264bcacc0a1f36f28281145d4b8f2b8ad2f5e154557762db7cdda80bd04315f1e23958669"
            "5ccc9db9"
            "3b");
  EXPECT_EQ(part(124, 32), "a4744e23dcc471adf6e7728388fc14fd15303711e12d0eda226f2720f1e22fb2");
  EXPECT_EQ(part(156 + 32 * 40 + 32, 32),
            "76ecdc0f819d303a14a447b1d295adb61dde4a7881bb0306d525baaae6037c13");
  EXPECT_EQ(part(2492, 16), "bad8eb01a61898d42830979cdbb9bfc5");
}

TEST(SealedContainer, DerivesTheStatedKeys) {
  MemoryByteStream memory(sealed(forms()[0]));
  ArchiveEncryptionContext context(memory);
  context.setSymmetricKey(countingKey());
  ChainKey mainKey, clusterKey;
  deriveMainKey(context.prologue(), mainKey);
  EXPECT_EQ(hexOf(mainKey.bytes()),
            "ac500d0293bbc50793afbdba467a787268945058d86425ff2379b053b7befd13");
  EXPECT_EQ(hexOf(Seal::ofRoot(mainKey).bytes()),
            "072456b1906a7ba6e8cf11ad1186a620da4ff299479aa9e9d4bc216c772449b8"
            "197d3a3b76e1388fc98e8e408f4be86eaa3384b4a86b0cb9b4accf0600245484"
            "dcae7f11884af9f7b0e909081714b1f2");
  deriveClusterKey(mainKey, 0, clusterKey);
  EXPECT_EQ(hexOf(clusterKey.bytes()),
            "bb29198f5fdc26401770ee631fd93ea6cd176097f7742b2c5da729f28acc83a8");
  EXPECT_EQ(hexOf(Seal::ofClusterHeader(clusterKey).bytes()),
            "62f248a9231232a7795afafddc69f0035244a3e6d07cef5152bdf0a6ae7d7dbc"
            "2e5f1bdb789111bcecb2951422463cf780dff62ba8ad24eae9970f2981e53d88"
            "9f560e442d362eb84924d1c972b2bb3b");
  EXPECT_EQ(hexOf(Seal::ofSegment(clusterKey, 0).bytes()),
            "aa140ab6030c83d760910a11f41a8a3ee98aa0f2f9f57c98f904e1069f740acd"
            "0b5eb79d9dbd0a8a8a3b9242743233ca1ab77ce20e0622bfef17fa3e7168c58b"
            "1807d2fbaccf42cf1b425b3ba44508dd");
  const ChainKey none;
  EXPECT_NE(internal::container::tagOfPadding(mainKey, {}),
            internal::container::tagOfPadding(none, {}));
}

TEST(SealedContainer, HashesAsPublished) {
  // The lowest byte first, as it is stored.
  const auto stored = [](const Bytes& bytes) {
    Bytes hash;
    internal::container::appendLittle(hash, internal::container::murmurHash64(bytes), 8);
    return hexOf(hash);
  };
  EXPECT_EQ(stored({}), "d91b6fd651fbfe9f");
  EXPECT_EQ(stored(bytesOf("abc")), "33c085c6263308d6");
}

TEST(SealedContainer, GivesBackWhatWasCompressed) {
  Bytes text;
  for (int i = 0; text.size() < 900000; ++i)
    for (const char c : "line " + std::to_string(i * 37 % 1009) + "\n")
      text.push_back(static_cast<std::uint8_t>(c));
  for (const Checksum checksum : {Checksum::none, Checksum::murmurHash64, Checksum::sha256}) {
    const Form form{.segmentSize = 0x4000, .checksum = checksum};
    MemoryByteStream memory;
    const auto stream =
        ArchiveByteStream::encryptionStream(memory, *contextOf(form, ArchiveCompression::lzfse));
    stream->write(text);
    stream->close();
    EXPECT_LT(memory.bytes().size(), text.size() / 2);
    EXPECT_EQ(opened(memory.bytes()), text);
  }
}

// Each byte of a container, and each length, tells.
TEST(SealedContainer, RefusesEveryChange) {
  const Bytes container = sealed(forms()[1]);
  for (std::size_t at = 0; at < container.size(); ++at) {
    Bytes changed = container;
    changed[at] ^= 0x10;
    const NSInteger code = archiveErrorOf([&] { static_cast<void>(opened(changed)); });
    // Of the bytes between, some ask for another form.
    const bool isStart = at >= 4 && at < 12;
    const NSInteger expected = at >= 12 && at < 156 ? ArchiveErrorWrongKey : ArchiveErrorDamaged;
    EXPECT_EQ(isStart ? expected : code, expected) << at;
    EXPECT_NE(code, 0) << at;
  }
  for (std::size_t length = 0; length < container.size(); length += length < 200 ? 1 : 37) {
    const Bytes cut(container.begin(), container.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(opened(cut)); }), ArchiveErrorDamaged);
  }
  Bytes longer = container;
  longer.push_back(0);
  EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(opened(longer)); }), ArchiveErrorDamaged);
}

TEST(SealedContainer, GivesNothingMoreOnceItHasFailed) {
  const Form form{.payload = Bytes(0x4000 * 3), .segmentSize = 0x4000};
  const Bytes container = sealed(form);
  // Within the second segment, and behind the last.
  const std::size_t segments = container.size() - form.payload.size();
  Bytes changed = container, longer = container;
  changed[segments + 0x4000] ^= 1;
  longer.push_back(0);
  for (const auto& [bytes, given] : {std::pair{changed, std::size_t{0x4000}}, {longer, 0xc000}}) {
    MemoryByteStream memory(bytes);
    ArchiveEncryptionContext context(memory);
    context.setSymmetricKey(countingKey());
    const auto stream = ArchiveByteStream::decryptionStream(memory, context);
    Bytes piece(given);
    EXPECT_EQ(stream->read(piece), given);
    for (int again = 0; again < 20; ++again)
      EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(stream->read(piece)); }),
                ArchiveErrorDamaged);
  }
}

TEST(SealedContainer, RefusesOtherKeys) {
  const auto code = [](const Bytes& container, const SymmetricKey& key, const char* password) {
    return archiveErrorOf([&] { static_cast<void>(opened(container, key, password)); });
  };
  EXPECT_EQ(code(sealed(forms()[0]), SymmetricKey(Bytes(32)), ""), ArchiveErrorWrongKey);
  EXPECT_EQ(code(sealed(forms()[3]), countingKey(), "correct hors"), ArchiveErrorWrongKey);
  EXPECT_EQ(code(sealed(forms()[0]), SymmetricKey(Bytes(16)), ""), ArchiveErrorUnsupported);
}

TEST(SealedContainer, NeedsTheKeyOfItsProfile) {
  MemoryByteStream memory(sealed(forms()[0]));
  ArchiveEncryptionContext context(memory);
  EXPECT_FALSE(context.hasKey());
  context.setPassword("correct horse");
  EXPECT_EQ(ArchiveByteStream::decryptionStream(memory, context), nullptr);
  const ArchiveEncryptionContext fresh(kPassword, ArchiveCompression::lzfse);
  EXPECT_EQ(ArchiveByteStream::encryptionStream(memory, fresh), nullptr);
}

TEST(SealedContainer, RefusesFormsThatItDoesNotRead) {
  const Bytes container = sealed(forms()[0]);
  const auto code = [&](std::size_t at, std::uint8_t byte) {
    Bytes changed = container;
    changed[at] = byte;
    return archiveErrorOf([&] { static_cast<void>(opened(changed)); });
  };
  for (const int profile : {0, 2, 3, 4, 6, 255})
    EXPECT_EQ(code(4, static_cast<std::uint8_t>(profile)), ArchiveErrorUnsupported) << profile;
  EXPECT_EQ(code(7, 1), ArchiveErrorDamaged);
  EXPECT_EQ(code(11, 1), ArchiveErrorTooLarge);
}

TEST(SealedContainer, MakesNoFormsThatAreNone) {
  const auto code = [](auto make) { return archiveErrorOf(make); };
  for (const std::uint32_t profile : {0U, 2U, 4U, 6U})
    EXPECT_EQ(code([&] {
                const ArchiveEncryptionContext made(static_cast<Profile>(profile),
                                                    ArchiveCompression::lzfse);
              }),
              ArchiveErrorUnsupported);
  EXPECT_EQ(code([&] {
              const ArchiveEncryptionContext made(kSymmetric, static_cast<ArchiveCompression>(2));
            }),
            ArchiveErrorUnsupported);
  ArchiveEncryptionContext context(kSymmetric, ArchiveCompression::none);
  EXPECT_EQ(code([&] { context.setChecksum(static_cast<Checksum>(3)); }), ArchiveErrorUnsupported);
}

TEST(SealedContainer, TakesNoMoreMemoryForAPasswordThanAllowed) {
  Bytes container = sealed(forms()[3]);
  for (const int strength : {2, 3}) {
    container[7] = static_cast<std::uint8_t>(strength);
    EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(opened(container)); }), ArchiveErrorTooLarge);
  }
  container[7] = 4;
  EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(opened(container)); }), ArchiveErrorDamaged);
}

TEST(SealedContainer, ChecksTheRootHeader) {
  const auto root = internal::container::SealedRoot().encoded();
  struct Row {
    std::size_t at;
    std::uint8_t byte;
    NSInteger code;
  };
  const Row rows[] = {{24, 'x', ArchiveErrorUnsupported}, {25, 3, ArchiveErrorUnsupported},
                      {18, 0, ArchiveErrorDamaged},       {21, 0, ArchiveErrorDamaged},
                      {26, 1, ArchiveErrorDamaged},       {47, 1, ArchiveErrorDamaged},
                      {19, 5, ArchiveErrorTooLarge},      {22, 2, ArchiveErrorTooLarge}};
  EXPECT_EQ(internal::container::SealedRoot::rootWithBytes(root).encoded(), root);
  for (const Row& row : rows) {
    auto changed = root;
    changed[row.at] = row.byte;
    EXPECT_EQ(archiveErrorOf([&] {
                static_cast<void>(internal::container::SealedRoot::rootWithBytes(changed));
              }),
              row.code)
        << row.at;
  }
}

TEST(SealedContainer, FailsWithoutRandomBytes) {
  MemoryByteStream memory;
  const ScriptedRandomBytes random({});
  const auto context = contextOf(forms()[0], ArchiveCompression::none);
  EXPECT_THROW(static_cast<void>(ArchiveByteStream::encryptionStream(memory, *context)),
               ArchiveError);
}

}  // namespace
}  // namespace ORLFoundation
