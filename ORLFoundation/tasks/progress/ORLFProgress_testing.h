/// An indicator that writes down what reaches it, and scripts of steps on items.
#pragma once

#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <tests/support/VectorFile.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace orlftest {

/// In nanoseconds.
inline constexpr std::int64_t kMillisecond = 1'000'000;

/// Calls a block at the start of each of the four observation operations, before it acts on it.
class RecordingIndicator final : public ORLFoundation::ORLFProgressIndicator {
 public:
  using Record = std::function<void(RecordingIndicator& self, const char* operation, const Item&)>;
  explicit RecordingIndicator(Record record) : record_(std::move(record)) {}

  void progressValuesWillChangeForItem(const Item& item) override {
    record_(*this, "progressValuesWillChangeForItem:", item);
    ORLFProgressIndicator::progressValuesWillChangeForItem(item);
  }
  void progressValuesDidChangeForItem(const Item& item) override {
    record_(*this, "progressValuesDidChangeForItem:", item);
    ORLFProgressIndicator::progressValuesDidChangeForItem(item);
  }
  void currentProgressDidChangeForItem(const Item& item) override {
    record_(*this, "currentProgressDidChangeForItem:", item);
    ORLFProgressIndicator::currentProgressDidChangeForItem(item);
  }
  void currentProgressWillChangeForItem(const Item& item) override {
    record_(*this, "currentProgressWillChangeForItem:", item);
    ORLFProgressIndicator::currentProgressWillChangeForItem(item);
  }

 private:
  const Record record_;
};

/// A double of a script, "nan", "inf" and "-inf" included.
[[nodiscard]] inline double realOfScript(const Json& value) {
  if (!value.is_string()) return value.get<double>();
  return std::stod(value.get<std::string>());
}

/// The same the other way round.
[[nodiscard]] inline Json scriptOfReal(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  return value;
}

/// Takes a step of a script that is an operation of an item with numbers, texts and flags alone,
/// `[operation, item, arguments...]`; answers false for any other.
[[nodiscard]] inline bool takeItemStep(ORLFoundation::ORLFProgressItem& item, const Json& step) {
  const auto operation = step.at(0).get<std::string>();
  const auto real = [&](std::size_t index) { return realOfScript(step.at(index)); };
  if (operation == "updateValue:max:")
    item.updateValue(real(2), real(3));
  else if (operation == "updateValue:")
    item.updateValue(real(2));
  else if (operation == "updateValueByIncrement:")
    item.updateValueByIncrement(real(2));
  else if (operation == "setValue:")
    item.setValue(real(2));
  else if (operation == "setMinValue:")
    item.setMinValue(real(2));
  else if (operation == "setMaxValue:")
    item.setMaxValue(real(2));
  else if (operation == "setMessage:")
    item.setMessage(textOrNil(step.at(2)));
  else if (operation == "setIndeterminate:")
    item.setIndeterminate(step.at(2).get<bool>());
  else if (operation == "addToIndicator")
    item.addToIndicator();
  else if (operation == "removeFromIndicator")
    item.removeFromIndicator();
  else if (operation == "progressValuesWillChange")
    item.progressValuesWillChange();
  else if (operation == "progressValuesDidChange")
    item.progressValuesDidChange();
  else if (operation == "currentProgressWillChange")
    item.currentProgressWillChange();
  else if (operation == "currentProgressDidChange")
    item.currentProgressDidChange();
  else
    return false;
  return true;
}

/// Takes one that names another item, by what `named` finds for its name, nil for null; answers
/// false for any other. Scripts have no outside progress but nil.
template <class Named>
[[nodiscard]] bool takeStepOfTwoItems(ORLFoundation::ORLFProgressItem& item, const Json& step,
                                      const Named& named) {
  using Item = ORLFoundation::ORLFProgressItem;
  using Operation = void (Item::*)(const std::shared_ptr<Item>&);
  static const std::map<std::string, Operation> kOperations{
      {"makeChildCurrent:", &Item::makeChildCurrent},
      {"progressValuesWillChangeForItem:", &Item::progressValuesWillChangeForItem},
      {"progressValuesDidChangeForItem:", &Item::progressValuesDidChangeForItem},
      {"currentProgressWillChangeForItem:", &Item::currentProgressWillChangeForItem},
      {"currentProgressDidChangeForItem:", &Item::currentProgressDidChangeForItem}};
  const auto name = step.at(0).get<std::string>();
  const auto found = kOperations.find(name);
  if (found != kOperations.end()) {
    (item.*found->second)(named(step.at(2)));
  } else if (name == "bindToProgress:" && step.at(2).is_null()) {
    item.bindToProgress(nullptr);
  } else if (name == "unbindFromProgress:" && step.at(2).is_null()) {
    item.unbindFromProgress(nullptr);
  } else {
    return false;
  }
  return true;
}

}  // namespace orlftest
