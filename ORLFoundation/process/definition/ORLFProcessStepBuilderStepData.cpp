#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <iterator>

namespace ORLFoundation {

// Records nest as deep as the file: those that nobody else holds hand their own up before they go.
ORLFProcessStepBuilderStepData::~ORLFProcessStepBuilderStepData() {
  auto doomed = std::move(childSteps_);
  while (!doomed.empty()) {
    const auto record = std::move(doomed.back());
    doomed.pop_back();
    if (!record || record.use_count() > 1) continue;
    auto& children = record->childSteps_;
    std::move(children.begin(), children.end(), std::back_inserter(doomed));
    children.clear();
  }
}

const std::shared_ptr<NSMutableDictionary>&
ORLFProcessStepBuilderStepData::representedObjectData() {
  if (!representedObjectData_) representedObjectData_ = std::make_shared<NSMutableDictionary>();
  return representedObjectData_;
}

const NSKeyTable& ORLFProcessStepBuilderStepData::keyTable() const {
  using Data = ORLFProcessStepBuilderStepData;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&Data::identifier, &Data::setIdentifier>("identifier"),
       NSKey::readWrite<&Data::group, &Data::setGroup>("group"),
       NSKey::readWrite<&Data::reference, &Data::setReference>("reference"),
       NSKey::readWrite<&Data::firstStep, &Data::setFirstStep>("firstStep"),
       NSKey::readWrite<&Data::representedObjectType, &Data::setRepresentedObjectType>(
           "representedObjectType")});
  return table;
}

}  // namespace ORLFoundation
