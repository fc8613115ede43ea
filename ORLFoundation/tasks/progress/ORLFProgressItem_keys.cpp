#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>

namespace ORLFoundation {

ORLFProgressItem::KeyNames ORLFProgressItem::keyPathsForValuesAffectingCurrentMessage() {
  return {"message", "currentChild"};
}

ORLFProgressItem::KeyNames ORLFProgressItem::keyPathsForValuesAffectingCurrentIndeterminate() {
  return {"indeterminate", "currentChild"};
}

ORLFProgressItem::KeyNames ORLFProgressItem::keyPathsForValuesAffectingValue() {
  return {"value", "currentChild"};
}

ORLFProgressItem::KeyNames ORLFProgressItem::keyPathsForValuesAffectingMinValue() {
  return {"minValue", "currentChild"};
}

ORLFProgressItem::KeyNames ORLFProgressItem::keyPathsForValuesAffectingMaxValue() {
  return {"maxValue", "currentChild"};
}

// What affects a key leaves the key itself out: it tells of itself.
const NSKeyTable& ORLFProgressItem::keyTable() const {
  using Self = ORLFProgressItem;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readOnly<&Self::currentValue>("currentValue"),
          NSKey::readOnly<&Self::currentMinValue>("currentMinValue"),
          NSKey::readOnly<&Self::currentMaxValue>("currentMaxValue"),
          NSKey::readOnly<&Self::currentMessage>("currentMessage", {"message", "currentChild"}),
          NSKey::readOnly<&Self::currentIndeterminate>("currentIndeterminate",
                                                       {"indeterminate", "currentChild"}),
          NSKey::readWrite<&Self::value, &Self::setValue>("value", {"currentChild"}),
          NSKey::readWrite<&Self::minValue, &Self::setMinValue>("minValue", {"currentChild"}),
          NSKey::readWrite<&Self::maxValue, &Self::setMaxValue>("maxValue", {"currentChild"}),
          NSKey::readWrite<&Self::message, &Self::setMessage>("message"),
          NSKey::readWrite<&Self::isIndeterminate, &Self::setIndeterminate>("indeterminate"),
          NSKey::readWrite<&Self::currentIndicator, &Self::setCurrentIndicator>("currentIndicator"),
          NSKey::readOnly<&Self::children>("children"),
          NSKey::readOnly<&Self::parent>("parent"),
          NSKey::readOnly<&Self::currentChild>("currentChild"),
          NSKey::readOnly<&Self::observerProgress>("observerProgress"),
          NSKey::readOnly<&Self::boundProgress>("boundProgress"),
      });
  return table;
}

}  // namespace ORLFoundation
