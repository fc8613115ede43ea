// What stays of protected archives in memory that was given back: the password, the key that it
// makes, the archive's own, and those that follow from it; after success and after every failure.
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <ORLFoundation/security/archives/ORLFSymmetricKeyText.h>
#include <gmock/gmock.h>
#include <tests/security/ReleasedBlocks.h>
#include <tests/support/Bytes.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace ORLFoundation;
using internal::archives::ArchiveJob;
using orlftest::kCheapCost;
using orlftest::Outcome;
using orlftest::outcomeOf;
using orlftest::spanOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kPassword = "the password of an archive, long enough for the heap";
constexpr std::string_view kWrong = "another password, which is not the archive's, as long";

/// What the generator gives at its calls, from 1.
template <class Bytes>
void fillRandom(Bytes& bytes, int call) {
  using Byte = std::remove_reference_t<decltype(bytes[0])>;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<Byte>(static_cast<std::size_t>(call) * 97 + i * i * 13 + i * 31);
}

std::string randomBytes(int call, std::size_t count) {
  std::string bytes(count, '\0');
  fillRandom(bytes, call);
  return bytes;
}

class NumberedBytes final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    const int call = ++calls;
    if (call > most) {
      errno = EIO;
      return false;
    }
    fillRandom(bytes, call);
    return true;
  }

  std::atomic<int> calls{0};
  /// It fails behind so many.
  std::atomic<int> most{std::numeric_limits<int>::max()};
};

/// A key from another, as the container derives it.
std::string derived(std::string_view from, std::string_view salt, std::string_view info,
                    std::size_t count) {
  std::string key(count, '\0');
  internal::crypto::deriveKey(spanOf(from), spanOf(salt), spanOf(info),
                              {reinterpret_cast<std::uint8_t*>(key.data()), count});
  return key;
}

std::string passwordKey(std::string_view password, std::string_view salt) {
  std::string key(32, '\0');
  EXPECT_TRUE(internal::crypto::deriveKeyFromPassword(
      spanOf(password), spanOf(salt), kCheapCost, 1 << 20,
      {reinterpret_cast<std::uint8_t*>(key.data()), key.size()}));
  return key;
}

/// The keys of the first archive that is packed: key, salt, nonce and main salt are drawn in this
/// order.
struct Keys {
  const std::string archive = randomBytes(1, 32), salt = randomBytes(2, 16);
  const std::string mainSalt = randomBytes(4, 32);
  const std::string fromPassword = passwordKey(kPassword, salt);
  const std::string fromWrong = passwordKey(kWrong, salt);
  const std::string main = derived(archive, mainSalt, std::string("AEA_AMK\1\0\0\0", 11), 32);
  const std::string cluster = derived(main, "", std::string("AEA_CK\0\0\0\0", 10), 32);
  const std::string root = derived(main, "", "AEA_RHEK", 80);
  const std::string clusterHeader = derived(cluster, "", "AEA_CHEK", 80);
  const std::string segment = derived(cluster, "", std::string("AEA_SK\0\0\0\0", 10), 80);
};

class ArchiveWiping : public orlftest::TemporaryFolderTest {
 protected:
  ArchiveWiping() : TemporaryFolderTest(orlftest::parentInMemory()) {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += "2024-05-01;" + std::to_string(i * 37 % 997) + ";rent\n";
    write("from/books.csv", text);
    write("from/a.txt", "hello\n");
  }
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
  template <class Work>
  [[nodiscard]] std::vector<std::string> foundAfter(const Work& work) const {
    return blocks_.foundAfter(work);
  }
  void pack(
      const std::string& name = "a", const std::function<void()>& check = [] {}) const {
    ArchiveJob job(check, {});
    job.pack(url("from"), url(name), password_, kCheapCost);
  }
  void extract(
      const std::string& name, const std::function<void()>& check = [] {}) const {
    ArchiveJob job(check, {});
    job.extract(url(name), url("to"), password_);
  }
  /// Changes a byte of an archive, or cuts it there.
  void damage(std::size_t at, bool isCut = false) const {
    std::string bytes = read("a");
    if (isCut)
      bytes.resize(at);
    else
      bytes[at] = static_cast<char>(bytes[at] ^ 1);
    write("damaged", bytes);
  }

  const Keys keys_;
  // What holds a password outlives all that is looked into.
  const NSData password_{kPassword}, wrong_{kWrong};
  const std::shared_ptr<NumberedBytes> random_ = std::make_shared<NumberedBytes>();

 private:
  static orlftest::SoughtSecret part(const char* name, const std::string& key, std::size_t at = 0) {
    return {name, key.substr(at, 32)};
  }
  // Of the keys of 80 bytes, what hashes and what encrypts.
  const orlftest::ReleasedBlocks blocks_{{
      {"password", std::string(kPassword)},
      {"wrong password", std::string(kWrong)},
      part("key of the password", keys_.fromPassword),
      part("key of the wrong password", keys_.fromWrong),
      part("archive key", keys_.archive),
      part("main key", keys_.main),
      part("cluster key", keys_.cluster),
      part("root key", keys_.root),
      part("root cipher", keys_.root, 32),
      part("header key", keys_.clusterHeader),
      part("header cipher", keys_.clusterHeader, 32),
      part("segment key", keys_.segment),
      part("segment cipher", keys_.segment, 32),
  }};
  const Replaced<std::shared_ptr<SecRandomSource>> source_{SecSetRandomSource, random_};
};

// The keys that are looked for are those in use: they open what was packed.
TEST_F(ArchiveWiping, LooksForTheKeysInUse) {
  pack();
  const std::string bytes = read("a");
  const std::size_t authBytes = 112, saltAt = 12 + authBytes;
  const auto at = [&](std::size_t begin, std::size_t count) {
    return spanOf(std::string_view(bytes).substr(begin, count));
  };
  const auto archiveKey = internal::archives::archiveKeyOfRecord(at(12, authBytes), password_);
  EXPECT_EQ(NSData(archiveKey.bytes()).text(), keys_.archive);
  EXPECT_EQ(bytes.substr(48, 16), keys_.salt);
  EXPECT_EQ(bytes.substr(saltAt, 32), keys_.mainSalt);
  const std::size_t rootAt = saltAt + 64, clusterAt = rootAt + 80;
  const auto tagOf = [](std::string_view key, auto... parts) {
    const auto tag = internal::crypto::hmacSHA256(spanOf(key.substr(0, 32)), {parts...});
    return std::string(tag.begin(), tag.end());
  };
  const std::string length{static_cast<char>(32 + authBytes), 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(
      tagOf(keys_.root, at(rootAt + 48, 32), at(12, authBytes), at(rootAt, 48), spanOf(length)),
      bytes.substr(saltAt + 32, 32));
  // One segment, behind the header of its cluster.
  const std::size_t tagsAt = clusterAt + 256 * 40 + 32, segmentAt = tagsAt + 256 * 32;
  EXPECT_EQ(tagOf(keys_.segment, at(segmentAt, bytes.size()), spanOf(std::string(8, '\0'))),
            bytes.substr(tagsAt, 32));
}

TEST_F(ArchiveWiping, IsSeen) {
  EXPECT_THAT(foundAfter([] { const std::string copy = "=" + std::string(kPassword); }),
              ElementsAre("password"));
  EXPECT_THAT(foundAfter([&] {
                std::vector<char> copy(keys_.segment.begin(), keys_.segment.end());
                copy.push_back('\0');
              }),
              ElementsAre("segment key", "segment cipher"));
  EXPECT_THAT(foundAfter([&] { const NSData copy(std::string_view(keys_.archive)); }),
              ElementsAre("archive key"));
}

TEST_F(ArchiveWiping, LeavesNothingOfPackingAndExtraction) {
  EXPECT_THAT(foundAfter([&] { pack(); }), IsEmpty());
  EXPECT_THAT(foundAfter([&] { extract("a"); }), IsEmpty());
  EXPECT_EQ(read("to/a.txt"), "hello\n");
}

TEST_F(ArchiveWiping, LeavesNothingOfWrongPasswordsAndDamage) {
  pack();
  const auto failsWith = [&](ArchiveErrorCode code, const char* name, const NSData& password) {
    EXPECT_THAT(foundAfter([&] {
                  const Outcome outcome = outcomeOf([&] {
                    ArchiveJob job([] {}, {});
                    job.extract(url(name), url("to"), password);
                  });
                  EXPECT_TRUE(outcome.is(ArchiveErrorDomain, code)) << outcome.text;
                }),
                IsEmpty());
  };
  failsWith(ArchiveErrorWrongKey, "a", wrong_);
  const std::size_t size = read("a").size();
  // The record, the root header, the header of the cluster, the segment, and the end.
  for (const auto& [at, code] : {std::pair{std::size_t{100}, ArchiveErrorWrongKey},
                                 {std::size_t{130}, ArchiveErrorDamaged},
                                 {std::size_t{190}, ArchiveErrorDamaged},
                                 {std::size_t{400}, ArchiveErrorDamaged},
                                 {size - 10, ArchiveErrorDamaged}}) {
    damage(at);
    failsWith(code, "damaged", password_);
    damage(at, true);
    failsWith(ArchiveErrorDamaged, "damaged", password_);
  }
}

TEST_F(ArchiveWiping, LeavesNothingWhereverItIsCancelled) {
  pack();
  const auto cancelledAt = [&](int look, const auto& work) {
    bool isDone = false;
    EXPECT_THAT(foundAfter([&] {
                  int left = look;
                  try {
                    work([&left] {
                      if (left-- == 0) throw CancellationError();
                    });
                    isDone = true;
                  } catch (const CancellationError&) {
                  }
                }),
                IsEmpty())
        << look;
    return !isDone;
  };
  random_->calls = 0;
  int looks = 0;
  while (cancelledAt(looks, [&](const auto& check) { pack("b", check); })) {
    ++looks;
    random_->calls = 0;
  }
  EXPECT_GT(looks, 4);
  looks = 0;
  while (cancelledAt(looks, [&](const auto& check) { extract("a", check); })) ++looks;
  EXPECT_GT(looks, 4);
}

TEST_F(ArchiveWiping, LeavesNothingWhereRandomBytesEnd) {
  int failures = 0;
  for (int most = 0; most < 20; ++most) {
    random_->calls = 0;
    random_->most = most;
    bool isDone = false;
    EXPECT_THAT(foundAfter([&] {
                  try {
                    pack();
                    isDone = true;
                  } catch (const std::runtime_error&) {
                  }
                }),
                IsEmpty())
        << most;
    if (isDone) break;
    ++failures;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "a"));
  }
  EXPECT_GE(failures, 3);
}

TEST_F(ArchiveWiping, LeavesNothingOfPasswordsThatTasksAreGiven) {
  pack();
  const auto job = [&](CooperativeTask<> task, bool isCancelled = false) {
    const auto context = std::make_shared<CooperativeContext>(CooperativeExecutorOnGlobalQueue());
    if (isCancelled) context->cancel();
    const auto begun = CooperativeJob<>::start(std::move(task), context);
    try {
      return outcomeOf([&] { begun->result(); });
    } catch (const CancellationError&) {
      return Outcome{"cancelled", 0, ""};
    }
  };
  const auto outcomes = [&] {
    const auto given = [](std::string_view text) { return std::string(text); };
    EXPECT_TRUE(job(AppleArchive::extract(url("a"), url("to"), given(kPassword))).isGood());
    EXPECT_TRUE(job(AppleArchive::extract(url("a"), url("other"), given(kWrong)))
                    .is(ArchiveErrorDomain, ArchiveErrorWrongKey));
    EXPECT_FALSE(job(AppleArchive::archive(url("from"), url("a"), given(kPassword))).isGood());
    EXPECT_EQ(job(AppleArchive::archive(url("from"), url("b"), given(kPassword)), true).domain,
              "cancelled");
    EXPECT_EQ(job(AppleArchive::extract(url("a"), url("b"), given(kPassword)), true).domain,
              "cancelled");
    // Never begun.
    static_cast<void>(AppleArchive::archive(url("from"), url("b"), given(kPassword)));
  };
  EXPECT_THAT(foundAfter(outcomes), IsEmpty());
}

// The form of containers whose key is the password's own.
TEST_F(ArchiveWiping, LeavesNothingOfPasswordsThatSealContainers) {
  random_->calls = 10;
  EXPECT_THAT(foundAfter([&] {
                ArchiveEncryptionContext context(
                    ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__scrypt__none,
                    ArchiveCompression::lzfse);
                context.setPassword(kPassword);
                using Mode = ArchiveByteStream::FileMode;
                const auto file = ArchiveByteStream::fileStream(path("a"), Mode::createNew);
                const auto sealed = ArchiveByteStream::encryptionStream(*file, context);
                sealed->close();
                file->close();
              }),
              IsEmpty());
  EXPECT_THAT(foundAfter([&] { extract("a"); }), IsEmpty());
  EXPECT_THAT(foundAfter([&] {
                const Outcome outcome = outcomeOf([&] {
                  ArchiveJob job([] {}, {});
                  job.extract(url("a"), url("other"), wrong_);
                });
                EXPECT_TRUE(outcome.is(ArchiveErrorDomain, ArchiveErrorWrongKey)) << outcome.text;
              }),
              IsEmpty());
}

TEST_F(ArchiveWiping, LeavesNothingOfKeysAsTexts) {
  const std::string text = internal::base::base64Text(keys_.archive);
  const orlftest::ReleasedBlocks blocks({{"key", keys_.archive}, {"text", text.substr(0, 40)}});
  EXPECT_THAT(blocks.foundAfter([&] {
    const auto key = initBase64EncodedString(text);
    ASSERT_TRUE(key);
    EXPECT_EQ(data(*key).text(), keys_.archive);
  }),
              IsEmpty());
  for (const std::string& malformed : {text + "*", text + "****", text + "QR=="})
    EXPECT_THAT(blocks.foundAfter([&] { EXPECT_FALSE(initBase64EncodedString(malformed)); }),
                IsEmpty())
        << malformed;
}

TEST_F(ArchiveWiping, LeavesNothingOfWhatTheToolReads) {
  pack();
  const std::string right = write("right", std::string(kPassword) + "\n");
  const std::string wrong = write("wrong", kWrong);
  damage(400);
  struct Row {
    std::vector<std::string> words;
    int exitCode;
  };
  const Row rows[] = {
      {{"extract", path("a"), path("to"), "--password-file", right}, 0},
      {{"extract", path("a"), path("other"), "--password-file", wrong}, 1},
      {{"extract", path("damaged"), path("other"), "--password-file", right}, 1},
      {{"extract", path("a"), path("to"), "--password-file", right}, 1},
      {{"extract", right, path("other"), "--password-file", right}, 1},
      {{"archive", path("from"), path("a"), "--password-file", right}, 1},
  };
  for (const Row& row : rows)
    EXPECT_THAT(foundAfter([&] { EXPECT_EQ(orlftest::runTool(row.words).exitCode, row.exitCode); }),
                IsEmpty())
        << row.words[0] << row.exitCode;
}

}  // namespace
