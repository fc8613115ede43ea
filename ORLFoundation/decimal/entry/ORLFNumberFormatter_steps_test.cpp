
// The steps of an evaluation, called one by one, beside a plain transcription of each.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using Operator = ORLFNumberFormatterOperator;
using OperatorPointer = std::shared_ptr<Operator>;
using Values = ORLFNumberFormatter::Values;
using Operators = ORLFNumberFormatter::Operators;

OperatorPointer operatorOf(std::int32_t code) {
  return std::make_shared<Operator>(static_cast<ORLFNumberFormatterOperatorType>(code));
}

Values valuesOf(const std::vector<int>& numbers) { return Values(numbers.begin(), numbers.end()); }

Operators operatorsOf(const std::vector<std::int32_t>& codes) {
  Operators operators;
  for (const std::int32_t code : codes) operators.push_back(operatorOf(code));
  return operators;
}

std::string told(bool answer, const Values& values, const Operators& operators) {
  std::string text = answer ? "true [" : "false [";
  for (const NSNumber& value : values) text += " " + value.stringValue();
  text += " ] [";
  for (const auto& each : operators) text += " " + std::to_string(each->type());
  return text + " ]";
}

struct StepCase {
  const char* name;
  std::int32_t next;  // -1 for none
  std::vector<int> values;
  std::vector<std::int32_t> operators;
  const char* expected;
};
const StepCase kSteps[] = {
    {"NoOperatorYet", 0, {2}, {}, "true [ 2 ] [ 0 ]"},
    {"NoValueYet", 4, {}, {4}, "true [ ] [ 4 4 ]"},
    {"NothingAtAll", -1, {}, {}, "true [ ] [ ]"},
    {"TighterOperatorWaits", 2, {2, 3}, {0}, "true [ 2 3 ] [ 0 2 ]"},
    {"LooserOperatorWorksOut", 0, {2, 3}, {2}, "true [ 6 ] [ 0 ]"},
    {"EqualOperatorWorksOut", 1, {10, 4}, {1}, "true [ 6 ] [ 1 ]"},
    {"AllThatBindsTighter", 0, {1, 2, 3}, {0, 2}, "true [ 7 ] [ 0 ]"},
    {"TimesWaitsForDivide", 3, {8, 4}, {2}, "true [ 8 4 ] [ 2 3 ]"},
    {"StopsAtTheGroup", 0, {1, 2, 3}, {0, 4, 2}, "true [ 1 6 ] [ 0 4 0 ]"},
    {"AGroupAlwaysWaits", 4, {2, 3}, {3}, "true [ 2 3 ] [ 3 4 ]"},
    {"TheLastStepWorksOutGroupsToo", -1, {1, 2, 3}, {0, 4, 2}, "true [ 7 ] [ ]"},
    {"ALoneOperandFailsAndIsGone", -1, {5}, {0}, "false [ ] [ 0 ]"},
    {"AFailurePushesTheOperator", 1, {5, 0}, {3}, "false [ ] [ 3 1 ]"},
    {"ValuesRunOut", -1, {2, 3}, {0, 0, 0}, "false [ ] [ 0 0 ]"},
};

TEST(ORLFNumberFormatter, WorksOutWhatBindsTight) {
  ORLFNumberFormatter formatter;
  for (const StepCase& row : kSteps) {
    Values values = valuesOf(row.values);
    Operators operators = operatorsOf(row.operators);
    const auto next = row.next < 0 ? nullptr : operatorOf(row.next);
    const bool answer = formatter.proccessOperator(next, values, operators);
    EXPECT_EQ(told(answer, values, operators), row.expected) << row.name;
  }
}

const StepCase kGroups[] = {
    {"DownToTheStart", -1, {1, 2, 3}, {0, 4, 2}, "true [ 1 6 ] [ 0 ]"},
    {"NestedOnlyTheInner", -1, {1, 2}, {4, 4, 0}, "true [ 3 ] [ 4 ]"},
    {"NoStart", -1, {2, 3}, {0}, "true [ 5 ] [ ]"},
    {"NothingAtAll", -1, {}, {}, "true [ ] [ ]"},
    {"EmptyGroup", -1, {}, {0, 4}, "true [ ] [ 0 ]"},
    {"NoValuesBeforeTheStart", -1, {}, {4, 0}, "true [ ] [ 4 0 ]"},
    {"FailureKeepsTheStart", -1, {1, 0}, {4, 3}, "false [ ] [ 4 3 ]"},
};

TEST(ORLFNumberFormatter, EndsAGroup) {
  ORLFNumberFormatter formatter;
  for (const StepCase& row : kGroups) {
    Values values = valuesOf(row.values);
    Operators operators = operatorsOf(row.operators);
    const bool answer = formatter.proccessEndGroupWithValues(values, operators);
    EXPECT_EQ(told(answer, values, operators), row.expected) << row.name;
  }
}

TEST(ORLFNumberFormatter, PushesLeftDefaults) {
  ORLFNumberFormatter formatter;
  for (const bool decimals : {false, true}) {
    formatter.setGeneratesDecimalNumbers(decimals);
    const auto kind = decimals ? NSNumber::Kind::Decimal : NSNumber::Kind::Double;
    for (std::int32_t code = 0; code <= 5; ++code) {
      Values values;
      const bool answer = formatter.pushLeftDefaultOperandForOpperator(*operatorOf(code), values);
      EXPECT_EQ(answer, code < 3 || code == 4) << code;
      ASSERT_EQ(values.size(), code < 3 ? 1U : 0U) << code;
      if (code >= 3) continue;
      EXPECT_EQ(values[0], NSNumber(code == 2 ? 1 : 0)) << code;
      EXPECT_EQ(values[0].kind(), kind) << code;
    }
  }
}

TEST(ORLFNumberFormatter, StepsTellTheErrorOfTheException) {
  ORLFNumberFormatter formatter;
  Values values{NSDecimal::parse("1e120"), NSDecimal::parse("1e120")};
  Operators operators = operatorsOf({2});
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(formatter.proccessOperator(nullptr, values, operators, &error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), 2048);
  error.reset();
  values = {NSDecimal::parse("1e120"), NSDecimal::parse("1e120")};
  operators = operatorsOf({4, 2});
  EXPECT_FALSE(formatter.proccessEndGroupWithValues(values, operators, &error));
  EXPECT_NE(error, nullptr);
}

// The loop of both steps, as it is told, for the operator that comes (null for none).
bool transcribedLoop(const Operator* next, bool endsAtGroup, Values& values, Operators& operators) {
  const Operator* top = operators.empty() ? nullptr : operators.back().get();
  while (!values.empty() && top != nullptr) {
    if (endsAtGroup && top->type() == 4) break;
    if (next && (top->type() == 4 || next->type() == 4 || top->type() < next->type())) break;
    const NSNumber right = values.back();
    values.pop_back();
    std::optional<NSNumber> left;
    if (top->numberOfOpperands() >= 2 && !values.empty()) {
      left = values.back();
      values.pop_back();
    }
    const auto result = top->numberByPerformingOperation(left, right, nullptr);
    if (!result) return false;
    values.push_back(*result);
    operators.pop_back();
    top = operators.empty() ? nullptr : operators.back().get();
  }
  return true;
}

TEST(ORLFNumberFormatter, StepsAgreeWithATranscriptionOnRandomStacks) {
  ORLFNumberFormatter formatter;
  std::mt19937 random(3);
  for (int i = 0; i < 20000; ++i) {
    Values values;
    Operators operators;
    for (auto count = random() % 6; count > 0; --count)
      values.emplace_back(static_cast<int>(random() % 4) - 1);
    for (auto count = random() % 6; count > 0; --count)
      operators.push_back(operatorOf(static_cast<std::int32_t>(random() % 7) - 1));
    const auto code = static_cast<std::int32_t>(random() % 8) - 2;
    const auto next = code == -2 ? nullptr : operatorOf(code);
    Values expectedValues = values;
    Operators expectedOperators = operators;
    bool expected = true;
    if (random() % 2 == 0) {
      expected = transcribedLoop(nullptr, true, expectedValues, expectedOperators);
      if (expected && !expectedOperators.empty() && expectedOperators.back()->type() == 4)
        expectedOperators.pop_back();
      const bool answer = formatter.proccessEndGroupWithValues(values, operators);
      EXPECT_EQ(told(answer, values, operators), told(expected, expectedValues, expectedOperators));
    } else {
      expected = transcribedLoop(next.get(), false, expectedValues, expectedOperators);
      if (next) expectedOperators.push_back(next);
      const bool answer = formatter.proccessOperator(next, values, operators);
      EXPECT_EQ(told(answer, values, operators), told(expected, expectedValues, expectedOperators));
    }
  }
}

// The evaluation of a text of ASCII characters, step by step as it is told; "false" or the value.
class Transcription {
 public:
  Transcription(ORLFNumberFormatter& formatter, std::string text)
      : formatter_(formatter), text_(std::move(text)) {}

  std::string answer() {
    while (true) {
      std::size_t next = cursor_;
      while (next < text_.size() && (text_[next] == ' ' || text_[next] == '\t')) ++next;
      if (next == text_.size()) return finish();
      cursor_ = next;
      const std::size_t code = std::string_view("+-*/[").find(text_[cursor_]);
      if (code != std::string_view::npos) {
        takeOperator(static_cast<std::int32_t>(code));
      } else if (text_[cursor_] == ']') {
        endGroup();
      } else if (lastWasValue_ || !takeNumber()) {
        return "false";
      }
    }
  }

 private:
  void takeOperator(std::int32_t code) {
    ++cursor_;
    const auto next = operatorOf(code);
    if (!lastWasValue_ && next->numberOfOpperands() >= 2) {
      const auto value = next->defaultOpperand(true);
      if (!value) return;
      values_.push_back(*value);
    }
    transcribedLoop(next.get(), false, values_, operators_);
    operators_.push_back(next);
    lastWasValue_ = false;
  }
  void endGroup() {
    if (transcribedLoop(nullptr, true, values_, operators_) && !operators_.empty() &&
        operators_.back()->type() == 4)
      operators_.pop_back();
    lastWasValue_ = true;
    ++cursor_;
  }
  bool takeNumber() {
    NSRange range{cursor_, text_.size() - cursor_};
    std::optional<NSNumber> value;
    if (!formatter_.getObjectValueBase(&value, text_, &range)) return false;
    values_.push_back(*value);
    cursor_ += range.length;
    return lastWasValue_ = true;
  }
  std::string finish() {
    if (!lastWasValue_ && !operators_.empty()) operators_.pop_back();
    if (!transcribedLoop(nullptr, false, values_, operators_)) return "false";
    return (values_.empty() ? "nil" : values_.back().stringValue()) + " of " +
           std::to_string(cursor_);
  }

  ORLFNumberFormatter& formatter_;
  const std::string text_;
  Values values_;
  Operators operators_;
  std::size_t cursor_ = 0;
  bool lastWasValue_ = false;
};

TEST(ORLFNumberFormatter, EvaluationAgreesWithATranscriptionOnRandomTexts) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter.setGeneratesDecimalNumbers(true);
  constexpr std::string_view kCharacters = "+-*/[]+-*/[]0123456789999111222.., \tx";
  std::mt19937 random(5);
  int numbers = 0;
  for (int i = 0; i < 30000; ++i) {
    std::string text;
    for (auto count = random() % 12; count > 0; --count)
      text += kCharacters[random() % kCharacters.size()];
    const std::string expected = Transcription(formatter, text).answer();
    std::optional<NSNumber> value;
    NSRange range{0, text.size()};
    std::string answer = "false";
    if (formatter.getObjectValue(&value, text, &range))
      answer = (value ? value->stringValue() : "nil") + " of " + std::to_string(range.length);
    EXPECT_EQ(answer, expected) << text;
    if (answer != "false") ++numbers;
  }
  EXPECT_GT(numbers, 5000);
}

}  // namespace
}  // namespace ORLFoundation
