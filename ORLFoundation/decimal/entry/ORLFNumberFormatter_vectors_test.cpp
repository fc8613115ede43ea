
#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/decimal/entry/ORLFNumberFormattingLocale.h>
#include <ORLFoundation/decimal/entry/ORLFPercentNumberFormatter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <sstream>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::TsvRow;

using Optional = std::optional<NSNumber>;
using Text = std::optional<std::string>;

Optional decimalFrom(const Text& text) {
  if (!text) return std::nullopt;
  return NSDecimal::parse(*text);
}

Text textFrom(const Json& value) {
  return value.is_null() ? Text() : Text(value.get<std::string>());
}

std::string told(const Optional& number) { return number ? number->stringValue() : "nil"; }

/// Decimals digit by digit, doubles to the last bit but one.
std::string numberDisagreement(const Text& expected, const Optional& actual, bool decimals) {
  if (!expected || !actual || decimals)
    return orlftest::disagreement(told(decimalFrom(expected)), told(actual));
  return orlftest::realDisagreement(std::stod(*expected), actual->doubleValue(), 1e-15);
}

std::string withLabel(const char* label, const std::string& disagreement) {
  return disagreement.empty() ? "" : std::string(label) + ": " + disagreement;
}

/// The error as rows tell it: "parser" stands for the platform's own, whose code is open.
std::string errorDisagreement(const Text& expected, const std::shared_ptr<const NSError>& error) {
  if (!expected) return error ? "an error is set: " + error->description() : "";
  if (!error) return "no error is set";
  if (error->domain() != NSCocoaErrorDomain) return "domain " + error->domain();
  return *expected == "parser" ? ""
                               : orlftest::disagreement(*expected, std::to_string(error->code()));
}

std::string infoText(const NSError& error) {
  const auto& info = *error.userInfo();
  if (!info.objectForKey(NSLocalizedDescriptionKey).isNil()) return "NSLocalizedDescriptionKey";
  std::string text;
  for (const char* key : {"NSInvalidValue", "NSMinimumValidValue", "NSMaximumValidValue"}) {
    const auto value = info.objectForKey(key).as<NSNumber>();
    if (value) text += (text.empty() ? "" : " ") + std::string(key) + "=" + value->stringValue();
  }
  return text.empty() ? "nil" : text;
}

std::optional<NSRange> rangeFrom(const TsvRow& row) {
  if (!row["range_start"]) return std::nullopt;
  return NSRange{row.unsignedInteger("range_start"), row.unsignedInteger("range_length")};
}

std::string checkExpression(const TsvRow& row) {
  ORLFNumberFormatter formatter;
  const bool decimals = row.boolean("decimals");
  formatter.setLocale(std::make_shared<NSLocale>(row.text("locale")));
  formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(row.unsignedInteger("style")));
  formatter.setGeneratesDecimalNumbers(decimals);
  formatter.setAllowExpressions(row.boolean("expressions"));
  formatter.setMinimum(decimalFrom(row["minimum"]));
  formatter.setMaximum(decimalFrom(row["maximum"]));
  const NSRange asked = rangeFrom(row).value_or(NSNumberText(row.text("text")).range());
  NSRange range = asked;
  Optional value;
  std::shared_ptr<const NSError> error;
  const bool ok = formatter.getObjectValue(&value, row.text("text"), &range, &error);
  if (ok != row.boolean("ok")) return orlftest::disagreement(row.boolean("ok"), ok);
  std::string fault = withLabel("value", numberDisagreement(row["value"], value, decimals));
  if (fault.empty()) fault = withLabel("error", errorDisagreement(row["error"], error));
  if (fault.empty() && row["info"])
    fault = withLabel("info", orlftest::disagreement(row.text("info"), infoText(*error)));
  if (fault.empty() && row["consumed"])
    fault = withLabel("consumed",
                      orlftest::disagreement(row.unsignedInteger("consumed"), range.length));
  if (fault.empty() && ok)
    fault = withLabel("start", orlftest::disagreement(asked.location, range.location));
  return fault;
}

TEST(ORLFNumberFormatter, AgreesWithVectorsOfExpressions) {
  orlftest::runTsvVectors("entry_expression", checkExpression);
}

/// One step of a sequence; "" when it agrees.
std::string takeStep(ORLFNumberFormatter& formatter, const Json& step, const Json& out) {
  const std::string name = step.begin().key();
  const Json& argument = step.begin().value();
  if (name == "expressions") {
    formatter.setAllowExpressions(argument.get<bool>());
  } else if (name == "minimum") {
    formatter.setMinimum(decimalFrom(textFrom(argument)));
  } else if (name == "maximum") {
    formatter.setMaximum(decimalFrom(textFrom(argument)));
  } else if (name == "locale") {
    formatter.setLocale(std::make_shared<NSLocale>(argument.get<std::string>()));
  } else if (name == "decimals") {
    formatter.setGeneratesDecimalNumbers(argument.get<bool>());
  } else if (name == "lenient") {
    formatter.setLenient(argument.get<bool>());
  } else if (name == "style") {
    formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(argument.get<NSUInteger>()));
  } else if (name == "read") {
    Optional value;
    std::shared_ptr<const NSError> error;
    const bool ok = formatter.getObjectValue(&value, argument.get<std::string>(), nullptr, &error);
    if (ok != out.at("ok").get<bool>()) return "ok is " + std::to_string(static_cast<int>(ok));
    const std::string fault = numberDisagreement(textFrom(out.at("value")), value, true);
    return fault.empty() ? errorDisagreement(textFrom(out.at("error")), error) : fault;
  } else {
    return "unknown step " + name;
  }
  return "";
}

TEST(ORLFNumberFormatter, AgreesWithVectorsOfSequences) {
  orlftest::runJsonVectors("entry_number_sequence",
                           {{"sequence", [](const Json& in, const Json& out) {
                               ORLFNumberFormatter formatter;
                               formatter.setLocale(std::make_shared<NSLocale>("en_US"));
                               formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
                               formatter.setGeneratesDecimalNumbers(true);
                               const Json& steps = in.at("steps");
                               for (std::size_t i = 0; i < steps.size(); ++i) {
                                 const std::string fault =
                                     takeStep(formatter, steps.at(i), out.at(i));
                                 if (!fault.empty())
                                   return "step " + std::to_string(i) + ": " + fault;
                               }
                               return std::string();
                             }}});
}

std::string checkTypedExpression(const Json& in, const Json& out) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>(in.at("locale").get<std::string>()));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter.setGeneratesDecimalNumbers(true);
  formatter.setMinimum(decimalFrom(textFrom(in.at("minimum"))));
  formatter.setMaximum(decimalFrom(textFrom(in.at("maximum"))));
  Optional value;
  std::shared_ptr<const NSError> error;
  const bool ok =
      formatter.getObjectValue(&value, in.at("text").get<std::string>(), nullptr, &error);
  if (ok != out.at("ok").get<bool>()) return "ok is " + std::to_string(static_cast<int>(ok));
  const std::string fault = numberDisagreement(textFrom(out.at("value")), value, true);
  if (!fault.empty() || out.at("code").is_null()) return fault;
  return orlftest::disagreement(out.at("code").get<NSInteger>(), error ? error->code() : 0);
}

std::string checkTypedOperation(const Json& in, const Json& out) {
  const ORLFNumberFormatterOperator operation(
      static_cast<ORLFNumberFormatterOperatorType>(in.at("type").get<std::int32_t>()));
  const Optional result = operation.numberByPerformingOperation(
      decimalFrom(textFrom(in.at("left"))), decimalFrom(textFrom(in.at("right"))), nullptr);
  return numberDisagreement(textFrom(out), result, true);
}

TEST(ORLFNumberFormatter, AgreesWithVectorsOfTypedTexts) {
  orlftest::runJsonVectors("typed_expression",
                           {{"getObjectValue", checkTypedExpression},
                            {"numberByPerformingOperation", checkTypedOperation}});
}

Optional operandFrom(const Text& kind, const Text& text) {
  if (!kind || *kind == "nil") return std::nullopt;
  if (*kind == "decimal") return decimalFrom(text);
  if (*kind == "double") return NSNumber(std::stod(text.value()));
  throw std::invalid_argument("unknown kind " + *kind);
}

std::string kindOf(const Optional& number) {
  if (!number) return "nil";
  return number->kind() == NSNumber::Kind::Decimal ? "decimal" : "double";
}

std::string checkOperator(const TsvRow& row) {
  const ORLFNumberFormatterOperator operation(
      static_cast<ORLFNumberFormatterOperatorType>(row.integer("code")));
  const std::string& op = row.text("op");
  if (op == "numberOfOpperands")
    return orlftest::disagreement(row.unsignedInteger("result"), operation.numberOfOpperands());
  Optional result;
  std::shared_ptr<const NSError> error;
  if (op == "defaultOpperand") {
    result = operation.defaultOpperand(row.boolean("decimals"));
  } else if (op == "numberByPerformingOperation") {
    result =
        operation.numberByPerformingOperation(operandFrom(row["left_kind"], row["left"]),
                                              operandFrom(row["right_kind"], row["right"]), &error);
  } else {
    return "unknown operation " + op;
  }
  const std::string kind = orlftest::disagreement(row.text("result_kind"), kindOf(result));
  if (!kind.empty()) return kind;
  const std::string value = numberDisagreement(row["result"], result, kindOf(result) == "decimal");
  return value.empty() ? errorDisagreement(row["error"], error) : value;
}

TEST(ORLFNumberFormatterOperator, AgreesWithVectors) {
  orlftest::runTsvVectors("entry_operator", checkOperator);
}

/// Over a base class that says yes under some styles, and that writes down what it was asked.
class ScriptedFormatter : public ORLFNumberFormatter {
 public:
  std::string accepted, asked;

 protected:
  bool isPartialStringValidOfBaseClass(const NSPartialStringEdit&) override {
    const std::string style = std::to_string(numberStyle());
    asked += (asked.empty() ? "" : " ") + style;
    std::istringstream words(accepted);
    for (std::string word; words >> word;)
      if (word == style) return true;
    return false;
  }
};

TEST(ORLFNumberFormatter, AgreesWithVectorsOfPartialTexts) {
  orlftest::runTsvVectors("entry_number_text", [](const TsvRow& row) {
    ScriptedFormatter formatter;
    formatter.accepted = row["accepted_styles"].value_or("");
    formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(row.unsignedInteger("style")));
    const bool answer = formatter.isPartialStringValidBase({.partialString = "5"});
    if (answer != row.boolean("answer")) return std::string("wrong answer");
    const std::string asked =
        orlftest::disagreement(row["asked_styles"].value_or(""), formatter.asked);
    if (!asked.empty()) return asked;
    return orlftest::disagreement(row.unsignedInteger("style_after"),
                                  NSUInteger{formatter.numberStyle()});
  });
}

/// Writes down what the second attempt reads.
class WatchedPercentFormatter : public ORLFPercentNumberFormatter {
 public:
  int attempts = 0;
  std::u16string secondText;
  NSRange secondRange;

 protected:
  bool getObjectValueOfBaseClass(std::optional<NSNumber>* value, NSNumberText& forString,
                                 NSRange* range, NSErrorSlot error) override {
    if (++attempts == 2) {
      secondText = forString.units();
      secondRange = range ? *range : forString.range();
    }
    return ORLFPercentNumberFormatter::getObjectValueOfBaseClass(value, forString, range, error);
  }
};

std::string checkPercent(const TsvRow& row) {
  WatchedPercentFormatter formatter;
  const bool decimals = row.boolean("decimals");
  formatter.setLocale(std::make_shared<NSLocale>(row.text("locale")));
  formatter.setGeneratesDecimalNumbers(decimals);
  std::optional<NSRange> range = rangeFrom(row);
  Optional value;
  const bool ok = formatter.getObjectValue(&value, row.text("text"), range ? &*range : nullptr);
  if (ok != row["value"].has_value()) return "ok is " + std::to_string(static_cast<int>(ok));
  const std::string fault = numberDisagreement(row["value"], value, decimals);
  if (!fault.empty()) return fault;
  if (!row["second_text"]) return orlftest::disagreement(1, formatter.attempts);
  if (formatter.attempts != 2) return "no second attempt";
  if (formatter.secondText != NSNumberText(row.text("second_text")).units())
    return "the second attempt reads another text";
  const NSRange expected{row.unsignedInteger("second_start"), row.unsignedInteger("second_length")};
  return formatter.secondRange == expected ? "" : "the second attempt reads another range";
}

TEST(ORLFPercentNumberFormatter, AgreesWithVectors) {
  orlftest::runTsvVectors("entry_percent", checkPercent);
}

TEST(ORLFNumberFormattingLocale, AgreesWithVectors) {
  orlftest::runTsvVectors("entry_locale_choice", [](const TsvRow& row) {
    const Replaced defaults(NSUserDefaults::setStandardUserDefaults,
                            std::make_shared<NSUserDefaults>());
    setOrlfUsePerferredLanguageForNumberFormatting(*NSUserDefaults::standardUserDefaults(),
                                                   row.boolean("default_on"));
    std::vector<std::string> languages;
    std::istringstream words(row["languages"].value_or(""));
    for (std::string word; words >> word;) languages.push_back(word);
    // An empty list would stand for the environment's.
    if (languages.empty()) languages.emplace_back();
    const Replaced preferred(NSLocale::setPreferredLanguages, languages);
    const auto locale = orlfPerferredLocalForNumberFormatting();
    return orlftest::disagreement(row["identifier"],
                                  locale ? Text(locale->localeIdentifier()) : std::nullopt);
  });
}

}  // namespace
}  // namespace ORLFoundation
