#include <ORLFoundation/platform/xml/internal/TagAttributes.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace ORLFoundation::internal::xml {
namespace {

constexpr std::string_view kXmlns = "xmlns";

const std::shared_ptr<NSDictionary>& noAttributes() {
  static const std::shared_ptr<NSDictionary> none = std::make_shared<AttributeDictionary>();
  return none;
}
const std::shared_ptr<NSDictionary>& noDictionary() {
  static const std::shared_ptr<NSDictionary> null;
  return null;
}

}  // namespace

const std::shared_ptr<NSDictionary>& TagAttributes::dictionary(Texts namespaces, Texts attributes) {
  if (namespaces.empty() && attributes.empty() && emptyPrefixes_.empty()) return noAttributes();
  renew();
  for (std::size_t at = 0; at < namespaces.size(); at += kTextsOfANamespace) {
    const bool isDefault = namespaces[at] == nullptr;
    fields_->add(isDefault ? std::string_view() : kXmlns,
                 isDefault ? kXmlns : viewOf(namespaces[at]), viewOf(namespaces[at + 1]));
  }
  for (const std::string& prefix : emptyPrefixes_) {
    if (fields_->has(kXmlns, prefix)) return noDictionary();
    fields_->add(kXmlns, prefix, {});
  }
  emptyPrefixes_.clear();
  for (std::size_t at = 0; at < attributes.size(); at += kTextsOfAnAttribute)
    fields_->add(viewOf(attributes[at + 1]), viewOf(attributes[at]),
                 valueOf(attributes, at / kTextsOfAnAttribute));
  return dictionary_;
}

std::size_t TagAttributes::longestValue(Texts attributes) noexcept {
  std::size_t longest = 0;
  for (std::size_t i = 0; i < attributes.size() / kTextsOfAnAttribute; ++i)
    longest = std::max(longest, valueOf(attributes, i).size());
  return longest;
}

DefaultAttributes TagAttributes::defaultsOf(Texts attributes, std::size_t count) noexcept {
  DefaultAttributes defaults{.count = count};
  const std::size_t all = attributes.size() / kTextsOfAnAttribute;
  for (std::size_t i = all - count; i < all; ++i) defaults.length += valueOf(attributes, i).size();
  return defaults;
}

/// Takes the dictionary of the tag before, unless somebody kept it.
void TagAttributes::renew() {
  if (dictionary_ == nullptr || dictionary_.use_count() > 1) {
    auto fresh = std::make_shared<AttributeDictionary>();
    fields_ = fresh.get();
    dictionary_ = std::move(fresh);
  }
  // Whoever let go of it last, on another thread perhaps, is done with it.
  std::atomic_thread_fence(std::memory_order_acquire);
  fields_->clear();
}

}  // namespace ORLFoundation::internal::xml
