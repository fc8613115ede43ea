#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::jsonOrNull;
using orlftest::kMillisecond;
using orlftest::RecordingIndicator;
using orlftest::scriptOfReal;

using Item = std::shared_ptr<ORLFProgressItem>;
using Indicator = std::shared_ptr<ORLFProgressIndicator>;

Json shownBy(const ORLFProgressIndicator& indicator) {
  return {indicator.visible(),
          indicator.indeterminate(),
          scriptOfReal(indicator.currentValue()),
          scriptOfReal(indicator.minValue()),
          scriptOfReal(indicator.maxValue()),
          jsonOrNull(indicator.message()),
          scriptOfReal(indicator.normalizedValue())};
}

/// Tells a block.
struct BlockDelegate final : ORLFProgressIndicatorDelegate {
  explicit BlockDelegate(std::function<void(const Indicator&)> told) : block(std::move(told)) {}
  void progressIndicatorDidChange(const Indicator& indicator) override { block(indicator); }
  const std::function<void(const Indicator&)> block;
};

/// The values that an indicator sets, in order, for as long as it lives.
std::vector<std::shared_ptr<NSKeyValueObservation>> observeSets(
    ORLFProgressIndicator& indicator,
    std::function<void(const std::string& key, Json value)> told) {
  constexpr std::array kKeys{"visible",  "indeterminate", "currentValue",
                             "minValue", "maxValue",      "message"};
  const auto json = [](const id& value) -> Json {
    if (value.isNil()) return nullptr;
    if (const auto text = value.as<std::string>()) return *text;
    return scriptOfReal(*value.as<double>());
  };
  std::vector<std::shared_ptr<NSKeyValueObservation>> tokens;
  for (const char* key : kKeys) {
    const bool isFlag =
        std::string_view(key) == "visible" || std::string_view(key) == "indeterminate";
    tokens.push_back(
        indicator.addObserver(key, NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld,
                              [=](const NSKeyValueChange& change) {
                                const Json value = json(change.newValue);
                                if (value == json(change.oldValue)) return;
                                told(key, isFlag ? Json(value != 0) : value);
                              }));
  }
  return tokens;
}

class Player {
 public:
  explicit Player(const Json& script) : acts_(script.value("acts", Json::object())) {
    const bool wantsWrites = script.value("writes", false);
    for (const auto& [name, delegate] : script.at("indicators").items()) {
      const std::string own = name;
      const auto indicator = std::make_shared<RecordingIndicator>(
          [this, own](RecordingIndicator& self, const char* operation, const Item& item) {
            record(own, {operation, at(), nameOf(item), self.isProgressItemVisible(item)});
          });
      indicators_[name] = indicator;
      weak_[name] = indicator;
      if (!delegate.is_null()) indicator->setDelegate(delegateNamed(delegate.get<std::string>()));
      if (wantsWrites)
        tokens_.push_back(observeSets(*indicator, [this, own](const std::string& key, Json value) {
          record(own, {"set", at(), key, std::move(value)});
        }));
    }
    for (const Json& name : script.value("items", Json::array()))
      addItem(name, std::make_shared<ORLFProgressItem>());
    for (const Json& name : script.value("delegates", Json::array()))
      delegateNamed(name.get<std::string>());
  }

  ~Player() {
    delegates_.clear();
    for (const auto& [name, indicator] : weak_)
      if (const auto alive = indicator.lock())
        for (const Item& item : alive->progressItems().value_or(ORLFProgressIndicator::Items()))
          item->setCurrentIndicator(nullptr);
    for (const auto& [name, item] : items_) item->setCurrentIndicator(nullptr);
    isOver_ = true;
    items_.clear();
    loop_.advance(10'000 * kMillisecond);
  }

  /// One entry: all state, and the step's events and result.
  Json play(const Json& step) {
    events_ = Json::object();
    result_ = nullptr;
    take(step);
    Json entry = state();
    if (!events_.empty()) entry["events"] = events_;
    if (!result_.is_null()) entry["result"] = result_;
    return entry;
  }

 private:
  [[nodiscard]] Json state() const {
    Json shown = Json::object();
    for (const auto& [name, weak] : weak_) {
      const Indicator indicator = weak.lock();
      shown[name] = indicator ? stateOf(*indicator) : Json();
    }
    Json on = Json::object();
    for (const auto& [name, item] : items_) on[name] = nameOf(item->currentIndicator());
    return {{"at", at()},
            {"indicators", shown},
            {"timers", milliseconds(loop_.timers())},
            {"waiting", loop_.waiting()},
            {"later", milliseconds(loop_.later())},
            {"on", on}};
  }

  [[nodiscard]] std::int64_t at() const { return loop_.now() / kMillisecond; }

  static Json milliseconds(const std::vector<std::int64_t>& times) {
    Json all = Json::array();
    for (const std::int64_t time : times) all.push_back(time / kMillisecond);
    return all;
  }

  Json stateOf(const ORLFProgressIndicator& indicator) const {
    Json list;
    if (const auto items = indicator.progressItems()) {
      list = Json::array();
      for (const Item& item : *items) list.push_back(nameOf(item));
    }
    return {{"shown", shownBy(indicator)},
            {"counter", indicator.displayTimerCounter()},
            {"timer", dueOf(indicator.displayTimer())},
            {"list", list}};
  }

  /// A timer tells its date by the wall clock.
  Json dueOf(const std::shared_ptr<NSTimer>& timer) const {
    if (!timer) return nullptr;
    const double left = timer->fireDate().timeIntervalSinceDate(NSDate::date());
    return at() + std::llround(left * 1000);
  }

  void record(const std::string& indicator, Json event) {
    if (isOver_) return;
    events_[indicator].push_back(std::move(event));
  }

  void addItem(const std::string& name, const Item& item) {
    items_[name] = item;
    names_[item.get()] = name;
  }

  Json nameOf(const Item& item) const {
    const auto found = names_.find(item.get());
    return found == names_.end() ? Json() : Json(found->second);
  }

  Json nameOf(const Indicator& indicator) const {
    for (const auto& [name, weak] : weak_)
      if (indicator && weak.lock() == indicator) return name;
    return nullptr;
  }

  std::shared_ptr<BlockDelegate> delegateNamed(const std::string& name) {
    auto& delegate = delegates_[name];
    if (!delegate)
      delegate = std::make_shared<BlockDelegate>(
          [this, name](const Indicator& indicator) { tell(name, indicator); });
    return delegate;
  }

  void tell(const std::string& name, const Indicator& indicator) {
    if (isOver_) return;
    record(nameOf(indicator).get<std::string>(),
           {"progressIndicatorDidChange:", at(), name, shownBy(*indicator),
            indicator->displayTimerCounter(), dueOf(indicator->displayTimer())});
    const std::string call = std::to_string(++calls_[name]);
    if (!acts_.contains(name) || !acts_[name].contains(call)) return;
    const Json steps = acts_[name][call];
    for (const Json& step : steps) take(step);
  }

  Indicator indicatorNamed(const std::string& name) const { return weak_.at(name).lock(); }

  Item itemNamed(const Json& name) const {
    return name.is_null() ? nullptr : items_.at(name.get<std::string>());
  }

  void take(const Json& step) {
    const auto operation = step.at(0).get<std::string>();
    if (takeOwnStep(operation, step)) return;
    const auto name = step.at(1).get<std::string>();
    if (weak_.count(name) != 0) return takeIndicatorStep(*indicatorNamed(name), operation, step);
    const Item item = items_.at(name);
    const auto named = [this](const Json& other) { return itemNamed(other); };
    if (!orlftest::takeItemStep(*item, step) && !orlftest::takeStepOfTwoItems(*item, step, named))
      throw std::runtime_error("unknown step " + operation);
  }

  bool takeOwnStep(const std::string& operation, const Json& step) {
    if (operation == "advance") {
      loop_.advance(step.at(1).get<std::int64_t>() * kMillisecond);
    } else if (operation == "busy") {
      loop_.stayBusy(step.at(1).get<std::int64_t>() * kMillisecond);
    } else if (operation == "child") {
      addItem(step.at(2),
              itemNamed(step.at(1))
                  ->childProgressItemWithTotalCount(orlftest::realOfScript(step.at(3))));
    } else if (operation == "drop") {
      const auto name = step.at(1).get<std::string>();
      items_.erase(name);
      indicators_.erase(name);
      delegates_.erase(name);
    } else if (operation == "sharedProgressIndicatorQueue") {
      result_ = dispatch_queue_get_label(ORLFProgressIndicator::sharedProgressIndicatorQueue());
    } else if (operation == "setCurrentIndicator:") {
      const Json& name = step.at(2);
      itemNamed(step.at(1))
          ->setCurrentIndicator(name.is_null() ? nullptr : indicatorNamed(name.get<std::string>()));
    } else {
      return false;
    }
    return true;
  }

  void takeIndicatorStep(ORLFProgressIndicator& indicator, const std::string& operation,
                         const Json& step) {
    using Self = ORLFProgressIndicator;
    static const std::map<std::string, void (Self::*)()> kPlain{
        {"updateDisplayTimer", &Self::updateDisplayTimer},
        {"startDisplayTimer", &Self::startDisplayTimer},
        {"stopDisplayTimer", &Self::stopDisplayTimer},
        {"updateDisplayValues", &Self::updateDisplayValues}};
    static const std::map<std::string, void (Self::*)(const Item&)> kWithItem{
        {"displayProgressItem:", &Self::displayProgressItem},
        {"removeProgressItem:", &Self::removeProgressItem},
        {"updateDisplayValuesWithItem:", &Self::updateDisplayValuesWithItem},
        {"progressValuesWillChangeForItem:", &Self::progressValuesWillChangeForItem},
        {"progressValuesDidChangeForItem:", &Self::progressValuesDidChangeForItem},
        {"currentProgressWillChangeForItem:", &Self::currentProgressWillChangeForItem},
        {"currentProgressDidChangeForItem:", &Self::currentProgressDidChangeForItem}};
    static const std::map<std::string, bool (Self::*)(const Item&) const> kAsking{
        {"isDisplayingProgressItem:", &Self::isDisplayingProgressItem},
        {"isProgressItemVisible:", &Self::isProgressItemVisible}};
    static const std::map<std::string, void (Self::*)(double)> kWithReal{
        {"setMinValue:", &Self::setMinValue},
        {"setMaxValue:", &Self::setMaxValue},
        {"setCurrentValue:", &Self::setCurrentValue}};
    static const std::map<std::string, void (Self::*)(bool)> kWithFlag{
        {"setVisible:", &Self::setVisible}, {"setIndeterminate:", &Self::setIndeterminate}};
    if (const auto plain = kPlain.find(operation); plain != kPlain.end())
      return (indicator.*plain->second)();
    if (const auto with = kWithItem.find(operation); with != kWithItem.end())
      return (indicator.*with->second)(itemNamed(step.at(2)));
    if (const auto with = kWithReal.find(operation); with != kWithReal.end())
      return (indicator.*with->second)(orlftest::realOfScript(step.at(2)));
    if (const auto with = kWithFlag.find(operation); with != kWithFlag.end())
      return (indicator.*with->second)(step.at(2).get<bool>());
    if (const auto asking = kAsking.find(operation); asking != kAsking.end())
      result_ = (indicator.*asking->second)(itemNamed(step.at(2)));
    else if (operation == "setMessage:")
      indicator.setMessage(orlftest::textOrNil(step.at(2)));
    else if (operation == "setDelegate:")
      indicator.setDelegate(step.at(2).is_null() ? nullptr
                                                 : delegateNamed(step.at(2).get<std::string>()));
    else
      throw std::runtime_error("unknown step " + operation);
  }

  orlftest::VirtualMainLoop loop_;
  /// The wall clock stands, so that a timer's date tells exactly when it is due.
  const Replaced<std::function<NSDate()>> wallClock_{NSDate::setClock,
                                                     [] { return NSDate::distantPast(); }};
  const Json acts_;
  std::map<std::string, std::weak_ptr<ORLFProgressIndicator>> weak_;
  std::map<std::string, Indicator> indicators_;
  std::map<std::string, Item> items_;
  std::map<std::string, std::shared_ptr<BlockDelegate>> delegates_;
  std::map<const ORLFProgressItem*, std::string> names_;
  std::map<std::string, int> calls_;
  std::vector<std::vector<std::shared_ptr<NSKeyValueObservation>>> tokens_;
  Json events_ = Json::object();
  Json result_;
  bool isOver_ = false;
};

/// Takes an entry's differences into what is expected to stand.
void follow(Json& expected, const Json& entry) {
  expected.erase("events");
  expected.erase("result");
  for (const auto& [key, value] : entry.items()) {
    if (key == "indicators" || key == "on")
      expected[key].update(value);
    else
      expected[key] = value;
  }
}

/// What is not fixed, or no longer held, is not compared.
Json comparable(Json expected, const Json& got) {
  for (const char* key : {"waiting", "later"})
    if (expected.at(key).is_null()) expected[key] = got.at(key);
  Json held = Json::object();
  for (const auto& [name, on] : got.at("on").items()) held[name] = expected.at("on").at(name);
  expected["on"] = held;
  return expected;
}

std::string playScript(const Json& in, const Json& out) {
  Player player(in);
  Json expected = Json::object();
  expected["indicators"] = Json::object();
  expected["on"] = Json::object();
  const Json& steps = in.at("steps");
  if (steps.size() != out.size()) return "an entry for each step is expected";
  for (std::size_t i = 0; i < out.size(); ++i) {
    follow(expected, out[i]);
    const Json got = player.play(steps[i]);
    const auto text = disagreement(comparable(expected, got), got);
    if (!text.empty()) return "entry " + std::to_string(i) + ": " + text;
  }
  return {};
}

class ORLFProgressIndicatorVectors : public testing::TestWithParam<const char*> {};
TEST_P(ORLFProgressIndicatorVectors, Agree) {
  orlftest::runJsonVectors(GetParam(), {{"play", playScript}});
}
INSTANTIATE_TEST_SUITE_P(Files, ORLFProgressIndicatorVectors,
                         testing::Values("indicator_timers", "indicator_display",
                                         "indicator_lifetime", "indicator_mixed",
                                         "indicator_writes"),
                         [](const auto& stem) { return std::string(stem.param).substr(10); });

TEST(ORLFProgressIndicator, AgreesWithVectorsOfNormalizedValues) {
  orlftest::runTsvVectors("indicator_normalized", [](const orlftest::TsvRow& row) -> std::string {
    ORLFProgressIndicator indicator;
    indicator.setCurrentValue(row.real("currentValue"));
    indicator.setMinValue(row.real("minValue"));
    indicator.setMaxValue(row.real("maxValue"));
    const double expected = row.real("normalizedValue");
    const double got = indicator.normalizedValue();
    if (std::isnan(expected) && std::isnan(got)) return {};
    if (std::signbit(expected) != std::signbit(got)) return "the sign of zero differs";
    return disagreement(expected, got);
  });
}

}  // namespace
}  // namespace ORLFoundation
