
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>

#include <ORLFoundation/platform/archive/internal/KeyedArchive.h>
#include <ORLFoundation/platform/archive/internal/StandardCoding.h>
#include <ORLFoundation/platform/plist/PropertyListBuilder.h>
#include <ORLFoundation/platform/plist/PropertyListBytes.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cstddef>
#include <unordered_map>
#include <utility>

namespace ORLFoundation {

using namespace internal::archive;
using internal::plist::PropertyListBuilder;
using internal::plist::PropertyListFault;
using internal::plist::PropertyListTable;

class NSKeyedArchiver::Writer {
 public:
  using Index = PropertyListBuilder::Index;

  explicit Writer(NSCoder& coder, bool requiringSecureCoding)
      : coder_(coder), secure_(requiringSecureCoding) {
    objects_.push_back(builder_.string(kNull));
  }

  PropertyListBuilder& builder() noexcept { return builder_; }

  void put(std::string_view key, Index value) {
    if (isOwnKey(key)) return putRaw(escapedKey(key), value);
    putRaw(key, value);
  }

  Index referenceNode(const id& value) { return builder_.uid(reference(value)); }

  std::vector<Index> referenceNodes(const std::vector<id>& values) {
    std::vector<Index> nodes;
    nodes.reserve(values.size());
    for (const id& value : values) nodes.push_back(referenceNode(value));
    return nodes;
  }

  NSData encodedData() {
    const Index keys[] = {builder_.string(kVersionKey), builder_.string(kArchiverKey),
                          builder_.string(kTopKey), builder_.string(kObjectsKey)};
    const Index values[] = {builder_.integer(kVersion), builder_.string(kArchiver),
                            builder_.dictionary(keys_, values_), builder_.array(objects_)};
    builder_.setTop(builder_.dictionary(keys, values));
    return internal::plist::writePropertyList(builder_.table(), format);
  }

  NSPropertyListFormat format = NSPropertyListBinaryFormat_v1_0;

 private:
  struct Known {
    Index uid;
    bool isBusy;
  };
  // The fields of one object; dropped as a whole when writing it raises.
  class Frame {
   public:
    explicit Frame(Writer& writer) : writer_(writer), first_(writer.keys_.size()) {
      if (writer_.depth_ >= kDeepestNesting) raise("The objects are nested too deep.");
      ++writer_.depth_;
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() {
      --writer_.depth_;
      writer_.keys_.resize(first_);
      writer_.values_.resize(first_);
    }
    Index node() {
      const PropertyListTable::Indexes keys(writer_.keys_);
      const PropertyListTable::Indexes values(writer_.values_);
      return writer_.builder_.dictionary(keys.subspan(first_), values.subspan(first_));
    }

   private:
    Writer& writer_;
    std::size_t first_;
  };

  void putRaw(std::string_view key, Index value) {
    keys_.push_back(builder_.string(key));
    values_.push_back(value);
  }

  Index append(Index node) {
    objects_.push_back(node);
    return static_cast<Index>(objects_.size() - 1);
  }

  Index reference(const id& value) {
    if (value.isNil()) return 0;
    if (const auto* text = value.get<std::string>()) return referenceToText(*text);
    if (const auto* data = value.get<NSData>()) return referenceToNode(builder_.data(data->text()));
    if (const auto* number = value.get<NSNumber>();
        number != nullptr && number->kind() != NSNumber::Kind::Decimal)
      return referenceToNode(builder_.number(*number));
    if (const auto object = value.object()) return referenceToObject(value, *object);
    return referenceToPlainValue(value);
  }

  Index referenceToText(const std::string& text) {
    // As a direct entry this text would mean nil.
    if (text != kNull) return referenceToNode(builder_.string(text));
    if (nullText_ == 0) {
      nullText_ = append(0);
      Frame frame(*this);
      put("NS.string", builder_.string(text));
      finish(frame, nullText_, mutableStringClass());
    }
    return nullText_;
  }

  Index referenceToNode(Index node) {
    const auto [place, isNew] = nodes_.try_emplace(node, 0);
    if (isNew) place->second = append(node);
    return place->second;
  }

  Index referenceToPlainValue(const id& value) {
    if (const auto known = plainValues_.find(value); known != plainValues_.end())
      return known->second;
    const NSCodingClass* record = standardClassOf(value);
    if (record == nullptr) raiseForClass(value.className());
    const Index uid = append(0);
    Frame frame(*this);
    encodeStandard(value, coder_);
    finish(frame, uid, *record);
    plainValues_.emplace(value, uid);
    return uid;
  }

  // The object keeps its place before its members are written, so that they can refer to it.
  Index referenceToObject(const id& value, const NSObject& object) {
    const auto* collection = dynamic_cast<const NSCollection*>(&object);
    if (const auto known = identities_.find(&object); known != identities_.end()) {
      if (known->second.isBusy && collection != nullptr) raise("A collection holds itself.");
      return known->second.uid;
    }
    const auto* coding = dynamic_cast<const NSSecureCoding*>(&object);
    const NSCodingClass* record = collection != nullptr ? standardClassOf(value)
                                  : coding != nullptr   ? &coding->classForCoder()
                                                        : nullptr;
    if (record == nullptr) raiseForClass(object.className());
    if (secure_ && !record->supportsSecureCoding())
      raise(record->name() + " does not support secure coding.");
    const Index uid = append(0);
    identities_.emplace(&object, Known{uid, true});
    kept_.push_back(value);
    Frame frame(*this);
    if (collection != nullptr) {
      encodeStandard(value, coder_);
    } else {
      coding->encodeWithCoder(coder_);
    }
    finish(frame, uid, *record);
    identities_[&object].isBusy = false;
    return uid;
  }

  void finish(Frame& frame, Index uid, const NSCodingClass& record) {
    putRaw(kClassKey, builder_.uid(referenceToClass(record)));
    objects_[uid] = frame.node();
  }

  Index referenceToClass(const NSCodingClass& record) {
    const auto [place, isNew] = classes_.try_emplace(&record, 0);
    if (!isNew) return place->second;
    std::vector<Index> chain;
    for (const NSCodingClass* each = &record; each != nullptr; each = each->superclass())
      chain.push_back(builder_.string(each->name()));
    chain.push_back(builder_.string(kRootClass));
    const Index keys[] = {builder_.string(kClassNameKey), builder_.string(kClassesKey)};
    const Index values[] = {builder_.string(record.name()), builder_.array(chain)};
    return place->second = append(builder_.dictionary(keys, values));
  }

  [[noreturn]] static void raise(const std::string& what) {
    throw NSException(NSInvalidArgumentException, what);
  }
  [[noreturn]] static void raiseForClass(const std::string& name) {
    raise("An object of class " + name + " cannot be archived.");
  }

  NSCoder& coder_;
  bool secure_;
  PropertyListBuilder builder_;
  std::vector<Index> objects_;
  std::vector<Index> keys_;  // of the objects being written, outermost first
  std::vector<Index> values_;
  std::size_t depth_ = 0;
  std::unordered_map<Index, Index> nodes_;  // direct entries
  std::unordered_map<id, Index> plainValues_;
  std::unordered_map<const NSObject*, Known> identities_;
  std::unordered_map<const NSCodingClass*, Index> classes_;
  std::vector<id> kept_;  // so that no address is used again
  Index nullText_ = 0;
};

namespace {

// Faults of the property list under an archive become the archiver's exceptions.
template <class Step>
auto raising(Step&& step) {
  try {
    return step();
  } catch (const PropertyListFault& fault) {
    throw NSException(NSInvalidArgumentException, fault.what());
  }
}

}  // namespace

std::optional<NSData> NSKeyedArchiver::archivedDataWithRootObject(const id& rootObject,
                                                                  bool requiringSecureCoding,
                                                                  NSErrorSlot error) {
  try {
    NSKeyedArchiver archiver(requiringSecureCoding);
    archiver.encodeObject(rootObject, NSKeyedArchiveRootObjectKey);
    return archiver.encodedData();
  } catch (const NSException& exception) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSCoderInvalidValueError, exception.what());
    return std::nullopt;
  }
}

NSKeyedArchiver::NSKeyedArchiver(bool requiringSecureCoding)
    : writer_(std::make_unique<Writer>(*this, requiringSecureCoding)) {}
NSKeyedArchiver::~NSKeyedArchiver() = default;

NSPropertyListFormat NSKeyedArchiver::outputFormat() const noexcept { return writer_->format; }
void NSKeyedArchiver::setOutputFormat(NSPropertyListFormat format) noexcept {
  writer_->format = format;
}

void NSKeyedArchiver::encodeObject(const id& object, std::string_view forKey) {
  raising([&] { writer_->put(forKey, writer_->referenceNode(object)); });
}
void NSKeyedArchiver::encodeInt64(std::int64_t value, std::string_view forKey) {
  raising([&] { writer_->put(forKey, writer_->builder().integer(value)); });
}
void NSKeyedArchiver::encodeBool(bool value, std::string_view forKey) {
  raising([&] { writer_->put(forKey, writer_->builder().boolean(value)); });
}
void NSKeyedArchiver::encodeDouble(double value, std::string_view forKey) {
  raising([&] { writer_->put(forKey, writer_->builder().real(value)); });
}
void NSKeyedArchiver::encodeBytes(const NSData& bytes, std::string_view forKey) {
  raising([&] { writer_->put(forKey, writer_->builder().data(bytes.text())); });
}
void NSKeyedArchiver::encodeObjects(const std::vector<id>& objects, std::string_view forKey) {
  raising([&] {
    const auto nodes = writer_->referenceNodes(objects);
    writer_->put(forKey, writer_->builder().array(nodes));
  });
}

NSData NSKeyedArchiver::encodedData() {
  return raising([&] { return writer_->encodedData(); });
}

}  // namespace ORLFoundation
