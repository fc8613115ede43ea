#include <ORLFoundation/platform/container/internal/SealedStreams.h>

#include <ORLFoundation/platform/crypto/CommonCrypto.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ORLFoundation::internal::container {
namespace {

using Checksum = ArchiveEncryptionContext::Checksum;

constexpr std::size_t kMostPadding = ArchiveByteStream::kMostBlockBytes;

void fillRandom(std::span<std::uint8_t> bytes) {
  if (bytes.empty()) return;
  if (SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) == 0) return;
  std::shared_ptr<const NSError> error;
  NSFillErrorSlot(&error, NSPOSIXErrorDomain, errno,
                  std::string("No random bytes: ") + std::strerror(errno));
  throw ArchiveError(std::move(error));
}

Bytes checksumOf(ByteSpan bytes, Checksum checksum) {
  Bytes sum;
  if (checksum == Checksum::murmurHash64) appendLittle(sum, murmurHash64(bytes), 8);
  if (checksum == Checksum::sha256) appendBytes(sum, crypto::sha256(bytes));
  return sum;
}

std::shared_ptr<const ChainKey> clusterKeyOf(const ChainKey& mainKey, std::uint32_t index) {
  auto key = std::make_shared<ChainKey>();
  deriveClusterKey(mainKey, index, *key);
  return key;
}

}  // namespace

SealedWriter::SealedWriter(ArchiveByteStream& to, const ArchiveEncryptionContext& context)
    : to_(to),
      prologue_(context.prologue()),
      place_(prologue_.size()),
      segments_(prologue_.plan.segmentBytes,
                {.prepare = [this](Segment& segment) { number(segment); },
                 .work = [root = prologue_.plan](Segment& segment) { seal(segment, root); },
                 .finish = [this](Segment& segment) { writeSegment(segment); }}) {
  // One salt must not serve one key twice.
  fillRandom(prologue_.salt);
  deriveMainKey(prologue_, mainKey_);
}

void SealedWriter::write(std::span<const std::uint8_t> bytes) {
  prologue_.plan.rawBytes += bytes.size();
  segments_.write(bytes);
}

/// Gives a segment its place in a cluster, whose key it takes.
void SealedWriter::number(Segment& segment) {
  const std::size_t perCluster = prologue_.plan.segmentsPerCluster;
  segment.index = static_cast<std::uint32_t>(begunSegments_ % perCluster);
  if (segment.index == 0)
    clusterKey_ = clusterKeyOf(mainKey_, static_cast<std::uint32_t>(begunSegments_ / perCluster));
  segment.clusterKey = clusterKey_;
  ++begunSegments_;
}

/// On any thread.
void SealedWriter::seal(Segment& segment, const SealedRoot& root) {
  segment.stored.clear();
  if (root.compression == ArchiveCompression::lzfse)
    segment.encoder.append(segment.raw, segment.stored);
  const bool shrinks =
      root.compression == ArchiveCompression::lzfse && segment.stored.size() < segment.raw.size();
  if (!shrinks) segment.stored = segment.raw;
  segment.header.clear();
  appendLittle(segment.header, segment.raw.size(), 4);
  appendLittle(segment.header, segment.stored.size(), 4);
  appendBytes(segment.header, checksumOf(segment.raw, root.checksum));
  segment.tag = Seal::ofSegment(*segment.clusterKey, segment.index).close(segment.stored, {});
}

void SealedWriter::writeSegment(const Segment& segment) {
  if (segment.index == 0) {
    clusters_.push_back({place_, {}, {}});
    place_ += prologue_.plan.clusterHeaderBytes();
  }
  appendBytes(clusters_.back().headers, segment.header);
  appendBytes(clusters_.back().tags, segment.tag);
  to_.writeAt(place_, segment.stored);
  place_ += segment.stored.size();
}

/// From the last cluster to the first, since each one's tag covers the next one's. The tag of the
/// first.
Tag SealedWriter::writeClusterHeaders(const Bytes& padding) {
  const SealedRoot& root = prologue_.plan;
  if (!clusters_.empty()) {
    // What would be there for segments that are not: headers of zeros, tags of anything.
    Cluster& last = clusters_.back();
    last.headers.resize(root.segmentsPerCluster * root.segmentHeaderBytes());
    const std::size_t used = last.tags.size();
    last.tags.resize(root.segmentsPerCluster * kTagBytes);
    fillRandom(std::span(last.tags).subspan(used));
  }
  Tag next{};
  if (padding.empty())
    fillRandom(next);
  else
    next = tagOfPadding(mainKey_, padding);
  for (std::size_t i = clusters_.size(); i-- > 0;) {
    Cluster& cluster = clusters_[i];
    const auto key = clusterKeyOf(mainKey_, static_cast<std::uint32_t>(i));
    const Tag tag = Seal::ofClusterHeader(*key).close(cluster.headers, next, cluster.tags);
    Bytes bytes = std::move(cluster.headers);
    appendBytes(bytes, next);
    appendBytes(bytes, cluster.tags);
    to_.writeAt(cluster.place, bytes);
    next = tag;
  }
  return next;
}

void SealedWriter::writeRoot(const Tag& firstClusterTag) {
  prologue_.firstClusterTag = firstClusterTag;
  prologue_.root = prologue_.plan.encoded();
  prologue_.rootTag =
      Seal::ofRoot(mainKey_).close(prologue_.root, firstClusterTag, prologue_.authData);
  to_.writeAt(0, prologue_.encoded());
}

void SealedWriter::close() {
  segments_.close();
  Bytes padding(prologue_.paddingBytes);
  fillRandom(padding);
  if (!padding.empty()) to_.writeAt(place_, padding);
  prologue_.plan.containerBytes = place_ + padding.size();
  writeRoot(writeClusterHeaders(padding));
}

SealedReader::SealedReader(ArchiveByteStream& from, const ArchiveEncryptionContext& context)
    : from_(from),
      root_(openRoot(context.prologue())),
      readBytes_(context.prologue().size()),
      nextClusterTag_(context.prologue().firstClusterTag),
      segments_(root_.segmentBytes,
                {.fetch = [this](Segment& segment) { return readSegment(segment); },
                 .work = [this](Segment& segment) { open(segment, root_); },
                 .end = [this] { checkEnd(); }}) {}

SealedRoot SealedReader::openRoot(const SealedPrologue& prologue) {
  deriveMainKey(prologue, mainKey_);
  std::array<std::uint8_t, kRootBytes> root = prologue.root;
  if (!Seal::ofRoot(mainKey_).open(root, prologue.rootTag, prologue.firstClusterTag,
                                   prologue.authData))
    throw ArchiveError(ArchiveErrorWrongKey,
                       "The key is another one, or the archive's first bytes were altered.");
  return SealedRoot::rootWithBytes(root);
}

void SealedReader::readExactly(std::span<std::uint8_t> bytes) {
  if (from_.read(bytes) != bytes.size()) throwDamaged("it ends within a segment");
  readBytes_ += bytes.size();
}

void SealedReader::readClusterHeader() {
  headers_.resize(root_.segmentsPerCluster * root_.segmentHeaderBytes());
  tags_.resize(root_.segmentsPerCluster * kTagBytes);
  Tag next{};
  readExactly(headers_);
  readExactly(next);
  readExactly(tags_);
  clusterKey_ = clusterKeyOf(mainKey_, clusterIndex_++);
  if (!Seal::ofClusterHeader(*clusterKey_).open(headers_, nextClusterTag_, next, tags_))
    throwDamaged("the header of a cluster was altered");
  nextClusterTag_ = next;
}

bool SealedReader::readSegment(Segment& segment) {
  if (begunBytes_ == root_.rawBytes) return false;
  if (segmentIndex_ == 0) readClusterHeader();
  const ByteSpan header = ByteSpan(headers_).subspan(segmentIndex_ * root_.segmentHeaderBytes(),
                                                     root_.segmentHeaderBytes());
  const std::uint64_t original = littleAt(header, 0, 4), stored = littleAt(header, 4, 4);
  const std::uint64_t expected =
      std::min<std::uint64_t>(root_.segmentBytes, root_.rawBytes - begunBytes_);
  if (original != expected || stored > original || stored == 0)
    throwDamaged("a segment has impossible sizes");
  segment.raw.resize(original);
  segment.stored.resize(stored);
  readExactly(segment.stored);
  segment.checksum.assign(header.begin() + 8, header.end());
  segment.tag = arrayAt<kTagBytes>(tags_, segmentIndex_ * kTagBytes);
  segment.clusterKey = clusterKey_;
  segment.index = static_cast<std::uint32_t>(segmentIndex_);
  begunBytes_ += original;
  segmentIndex_ = (segmentIndex_ + 1) % root_.segmentsPerCluster;
  return true;
}

/// On any thread.
void SealedReader::open(Segment& segment, const SealedRoot& root) {
  if (!Seal::ofSegment(*segment.clusterKey, segment.index).open(segment.stored, segment.tag, {}))
    throwDamaged("a segment was altered");
  if (segment.stored.size() == segment.raw.size())
    segment.raw.swap(segment.stored);
  else if (root.compression == ArchiveCompression::none ||
           !segment.decoder.decode(segment.stored, segment.raw))
    throwDamaged("a segment does not unpack");
  if (!timingSafeEqual(checksumOf(segment.raw, root.checksum), segment.checksum))
    throwDamaged("a segment does not have its checksum");
}

void SealedReader::checkEnd() {
  if (readBytes_ > root_.containerBytes) throwDamaged("it is longer than it says");
  const std::uint64_t count = root_.containerBytes - readBytes_;
  if (count > kMostPadding)
    throw ArchiveError(ArchiveErrorTooLarge, "More than 64 MiB follow the archive's segments.");
  Bytes padding(count);
  readExactly(padding);
  if (count > 0 && !timingSafeEqual(tagOfPadding(mainKey_, padding), nextClusterTag_))
    throwDamaged("what follows its segments was altered");
  std::array<std::uint8_t, 1> more{};
  if (from_.read(more) != 0) throwDamaged("it is longer than it says");
}

}  // namespace ORLFoundation::internal::container
