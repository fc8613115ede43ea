#include <ORLFoundation/platform/container/ArchiveHeader.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::archiveErrorOf;
using orlftest::Bytes;
using orlftest::bytesOfHex;
using orlftest::hexOf;
using Field = ArchiveHeader::Field;

ArchiveHeader headerOf(std::vector<Field> fields) {
  ArchiveHeader header;
  for (Field& field : fields) header.append(std::move(field));
  return header;
}

const Field kModified = Field::time("MTM", {1700000000, 123456789});

struct Example {
  const char* name;
  ArchiveHeader header;
  std::string hex;
};

std::vector<Example> examples() {
  return {
      {"a folder",
       headerOf({Field::uint("TYP", 'D'), Field::string("PAT", ""), Field::uint("UID", 501),
                 Field::uint("GID", 20), Field::uint("MOD", 0755), Field::uint("FLG", 0),
                 kModified}),
       "41413031 3700 545950 31 44  504154 50 0000  554944 32 f501  474944 31 14  4d4f44 32 ed01  "
       "464c47 31 00 4d544d 54 00f1536500000000 15cd5b07"},
      {"a file",
       headerOf({Field::uint("TYP", 'F'), Field::string("PAT", "a.txt"), Field::uint("UID", 501),
                 Field::uint("GID", 20), Field::uint("MOD", 0644), Field::uint("FLG", 0), kModified,
                 Field::blob("DAT", 6)}),
       "41413031 4200 545950 31 46  504154 50 0500 612e747874  554944 32 f501  474944 31 14  "
       "4d4f44 32 "
       "a401 464c47 31 00  4d544d 54 00f1536500000000 15cd5b07  444154 41 0600"},
      {"a link",
       headerOf({Field::uint("TYP", 'L'), Field::string("PAT", "l"), Field::string("LNK", "a.txt"),
                 Field::uint("UID", 501), Field::uint("GID", 20), Field::uint("MOD", 0755),
                 Field::uint("FLG", 0), kModified}),
       "41413031 4300 545950 31 4c  504154 50 0100 6c  4c4e4b 50 0500 612e747874  554944 32 f501  "
       "474944 31 14 4d4f44 32 ed01  464c47 31 00  4d544d 54 00f1536500000000 15cd5b07"},
  };
}

TEST(ArchiveHeader, IsWrittenAndReadToTheByte) {
  for (const Example& example : examples()) {
    const Bytes bytes = bytesOfHex(example.hex);
    EXPECT_EQ(hexOf(example.header.encodedData()), hexOf(bytes)) << example.name;
    EXPECT_EQ(ArchiveHeader::headerWithData(bytes), example.header) << example.name;
    EXPECT_EQ(ArchiveHeader::sizeOfStart(bytes), bytes.size()) << example.name;
  }
}

TEST(ArchiveHeader, ReadsARootOfThePlatform) {
  const Bytes bytes = bytesOfHex(
      "41413031 4600 54595031 44 50415450 0000 55494431 00 47494431 50 4d4f4432 ed01 464c4731 00 "
      "4d544d54 bdad616600000000 6376910c 43544d54 a6a4616600000000 d4ba2e03");
  const ArchiveHeader header = ArchiveHeader::headerWithData(bytes);
  EXPECT_EQ(header.uintForKey("TYP"), std::uint64_t{'D'});
  EXPECT_EQ(header.stringForKey("PAT"), "");
  EXPECT_EQ(header.uintForKey("GID"), 0x50U);
  EXPECT_EQ(header.uintForKey("MOD"), 0755U);
  EXPECT_EQ(header.fields().size(), 8U);
  EXPECT_EQ(std::get<ArchiveHeader::Time>(header.fields()[6].value),
            (ArchiveHeader::Time{0x6661adbd, 0x0c917663}));
  EXPECT_EQ(header.encodedData(), bytes);
}

TEST(ArchiveHeader, ReadsTheOlderMagicAlike) {
  Bytes bytes = examples()[0].header.encodedData();
  const std::string_view older = "YAA1";
  std::copy(older.begin(), older.end(), bytes.begin());
  EXPECT_EQ(ArchiveHeader::headerWithData(bytes), examples()[0].header);
}

TEST(ArchiveHeader, TakesTheFewestBytesForEachValue) {
  const std::vector<std::pair<Field, std::string>> rows{
      {Field::flag("YAF"), "594146 2a"},
      {Field::uint("UID", 0), "554944 31 00"},
      {Field::uint("UID", 255), "554944 31 ff"},
      {Field::uint("UID", 256), "554944 32 0001"},
      {Field::uint("UID", 65535), "554944 32 ffff"},
      {Field::uint("UID", 65536), "554944 34 00000100"},
      {Field::uint("UID", UINT32_MAX), "554944 34 ffffffff"},
      {Field::uint("UID", std::uint64_t{1} << 32), "554944 38 0000000001000000"},
      {Field::blob("DAT", 65535), "444154 41 ffff"},
      {Field::blob("DAT", 146348), "444154 42 ac3b0200"},
      {Field::blob("DAT", std::uint64_t{1} << 32), "444154 43 0000000001000000"},
      {Field::time("MTM", {-1, std::nullopt}), "4d544d 53 ffffffffffffffff"},
      {Field::hash("CKS", {1, 2, 3, 4}), "434b53 46 01020304"},
  };
  for (const auto& [field, hex] : rows) {
    const Bytes bytes = headerOf({field}).encodedData();
    EXPECT_EQ(hexOf(std::span(bytes).subspan(6)), hexOf(bytesOfHex(hex)));
    EXPECT_EQ(ArchiveHeader::headerWithData(bytes), headerOf({field}));
  }
  for (const std::size_t length : {4U, 20U, 32U, 48U, 64U}) {
    const ArchiveHeader header = headerOf({Field::hash("SH2", Bytes(length, 9))});
    EXPECT_EQ(ArchiveHeader::headerWithData(header.encodedData()), header);
    EXPECT_EQ(header.encodedData()[9], length == 4    ? 'F'
                                       : length == 20 ? 'G'
                                       : length == 32 ? 'H'
                                       : length == 48 ? 'I'
                                                      : 'J');
  }
}

TEST(ArchiveHeader, GivesTheFirstFieldOfAKey) {
  const ArchiveHeader header =
      headerOf({Field::uint("UID", 1), Field::uint("UID", 2), Field::string("GID", "x")});
  EXPECT_EQ(header.uintForKey("UID"), 1U);
  EXPECT_EQ(header.uintForKey("GID"), std::nullopt);
  EXPECT_EQ(header.uintForKey("MOD"), std::nullopt);
  EXPECT_EQ(header.blobSizeForKey("UID"), std::nullopt);
  EXPECT_TRUE(header.hasKey("GID"));
  EXPECT_FALSE(header.hasKey("MOD"));
}

TEST(ArchiveHeader, RefusesWhatIsCutOffOrUnknown) {
  for (const Example& example : examples()) {
    const Bytes bytes = example.header.encodedData();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(ArchiveHeader::headerWithData(cut)); }),
                ArchiveErrorDamaged);
      if (length < 6) continue;
      cut[4] = static_cast<std::uint8_t>(length);
      // What is left may be whole fields, and then it is a header.
      try {
        EXPECT_EQ(ArchiveHeader::headerWithData(cut).encodedData(), cut);
      } catch (const ArchiveError& failure) {
        EXPECT_TRUE(failure.is(ArchiveErrorDamaged));
      }
    }
  }
  for (const char* hex : {"41413031 0500", "41413032 0600", "41413031 0a00 545950 7a",
                          "41413031 0b00 545950 33 00", "41413031 0b00 743950 31 00"})
    EXPECT_EQ(
        archiveErrorOf([&] { static_cast<void>(ArchiveHeader::headerWithData(bytesOfHex(hex))); }),
        ArchiveErrorDamaged)
        << hex;
}

TEST(ArchiveHeader, RefusesNamesThatDoNotFit) {
  EXPECT_EQ(headerOf({Field::string("PAT", std::string(65535 - 12, 'x'))}).encodedData().size(),
            65535U);
  for (const std::size_t length : {65535U - 11, 65535U, 65536U, 100000U})
    EXPECT_EQ(archiveErrorOf([&] {
                static_cast<void>(
                    headerOf({Field::string("PAT", std::string(length, 'x'))}).encodedData());
              }),
              ArchiveErrorTooLarge)
        << length;
  EXPECT_EQ(archiveErrorOf(
                [] { static_cast<void>(headerOf({Field::hash("SH2", Bytes(5))}).encodedData()); }),
            ArchiveErrorUnsupported);
}

TEST(FieldKeySet, HoldsTheKeysOfItsText) {
  const ArchiveHeader::FieldKeySet keys("TYP,PAT,DAT,UID,GID,MOD");
  for (const char* key : {"TYP", "PAT", "DAT", "UID", "GID", "MOD"})
    EXPECT_TRUE(keys.contains(key)) << key;
  EXPECT_FALSE(keys.contains("LNK"));
  for (const char* text : {"", "TYP,", ",TYP", "TYP, PAT", "typ", "TYPE", "TY"})
    EXPECT_THROW(ArchiveHeader::FieldKeySet{text}, NSException) << text;
}

}  // namespace
}  // namespace ORLFoundation
