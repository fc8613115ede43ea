#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <map>
#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::jsonOrNull;
using orlftest::RecordingIndicator;
using orlftest::scriptOfReal;
using orlftest::VirtualMainLoop;

/// Items and indicators by name, and what reached the indicators.
class TreeScript {
 public:
  ~TreeScript() {
    for (const auto& [name, item] : items_) item->setCurrentIndicator(nullptr);
    loop_.advance(2'000'000'000);
  }

  Json take(const Json& step) {
    events_ = Json::array();
    const auto operation = step.at(0).get<std::string>();
    const auto name = step.at(1).get<std::string>();
    if (operation == "item") {
      items_[name] = std::make_shared<ORLFProgressItem>();
    } else if (operation == "indicator") {
      indicators_[name] = std::make_shared<RecordingIndicator>(
          [this, name](RecordingIndicator&, const char* called, const auto& item) {
            events_.push_back({name, called, nameOf(item)});
          });
    } else if (operation == "child") {
      items_[step.at(2).get<std::string>()] =
          items_.at(name)->childProgressItemWithTotalCount(orlftest::realOfScript(step.at(3)));
    } else if (operation == "display") {
      indicators_.at(name)->displayProgressItem(itemNamed(step.at(2)));
    } else if (operation == "remove") {
      indicators_.at(name)->removeProgressItem(itemNamed(step.at(2)));
    } else if (operation == "setCurrentIndicator:") {
      const Json& indicator = step.at(2);
      items_.at(name)->setCurrentIndicator(indicator.is_null() ? nullptr
                                                               : indicators_.at(indicator));
    } else if (!takeOtherStep(*items_.at(name), step)) {
      throw std::runtime_error("unknown step " + operation);
    }
    return events_;
  }

  Json indicators() const {
    Json all = Json::object();
    for (const auto& [name, indicator] : indicators_)
      all[name] = namesOf(indicator->progressItems().value_or(ORLFProgressIndicator::Items()));
    return all;
  }

  /// `fractionCompleted` apart, which is compared within a tolerance.
  Json items() const {
    Json all = Json::object();
    for (const auto& [name, item] : items_) {
      const auto indicator = item->currentIndicator();
      all[name] = {
          {"children", namesOf(item->children())},
          {"completedUnitCount", item->observerProgress()->completedUnitCount()},
          {"currentChild", nameOf(item->currentChild())},
          {"currentIndeterminate", item->currentIndeterminate()},
          {"currentIndicator", nullptr},
          {"currentMaxValue", scriptOfReal(item->currentMaxValue())},
          {"currentMessage", jsonOrNull(item->currentMessage())},
          {"currentMinValue", scriptOfReal(item->currentMinValue())},
          {"currentValue", scriptOfReal(item->currentValue())},
          {"indeterminate", item->isIndeterminate()},
          {"maxValue", scriptOfReal(item->maxValue())},
          {"message", jsonOrNull(item->message())},
          {"minValue", scriptOfReal(item->minValue())},
          {"totalUnitCount", item->observerProgress()->totalUnitCount()},
          {"value", scriptOfReal(item->value())},
      };
      for (const auto& [indicatorName, each] : indicators_)
        if (each == indicator) all[name]["currentIndicator"] = indicatorName;
    }
    return all;
  }

  double fractionOf(const std::string& name) const {
    return items_.at(name)->observerProgress()->fractionCompleted();
  }

 private:
  using Item = std::shared_ptr<ORLFProgressItem>;

  [[nodiscard]] bool takeOtherStep(ORLFProgressItem& item, const Json& step) const {
    const auto named = [this](const Json& other) { return itemNamed(other); };
    return orlftest::takeItemStep(item, step) || orlftest::takeStepOfTwoItems(item, step, named);
  }

  Item itemNamed(const Json& name) const {
    return name.is_null() ? nullptr : items_.at(name.get<std::string>());
  }

  Json nameOf(const Item& item) const {
    for (const auto& [name, each] : items_)
      if (item && each == item) return name;
    return nullptr;
  }

  Json namesOf(const std::vector<Item>& items) const {
    Json names = Json::array();
    for (const Item& item : items) names.push_back(nameOf(item));
    return names;
  }

  VirtualMainLoop loop_;
  std::map<std::string, Item> items_;
  std::map<std::string, std::shared_ptr<ORLFProgressIndicator>> indicators_;
  Json events_;
};

std::string runTree(const Json& in, const Json& out) {
  TreeScript script;
  Json events = Json::array();
  for (const Json& step : in) events.push_back(script.take(step));
  if (auto text = disagreement(out.at("events"), events); !text.empty()) return "events: " + text;
  if (auto text = disagreement(out.at("indicators"), script.indicators()); !text.empty())
    return "indicators: " + text;
  Json items = out.at("items");
  for (auto& [name, item] : items.items()) {
    const auto fraction = item.at("fractionCompleted").get<double>();
    if (!(std::abs(fraction - script.fractionOf(name)) <= 1e-12))
      return name + ": " + disagreement(fraction, script.fractionOf(name));
    item.erase("fractionCompleted");
  }
  return disagreement(items, script.items());
}

TEST(ORLFProgressItem, AgreesWithVectorsOfTrees) {
  orlftest::runJsonVectors("progress_tree", {{"tree", runTree}});
}

}  // namespace
}  // namespace ORLFoundation
