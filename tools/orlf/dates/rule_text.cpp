#include "dates/rule_text.h"

#include <algorithm>
#include <array>

#include "cli/failure.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

constexpr std::string_view kPrefix = "RRULE:";

/// A key that dates heed, and what its numbers may be. Those from -n to n may not be 0.
struct HeededKey {
  std::string_view key;
  bool hasNumbers;
  std::int64_t least, most;
};

constexpr std::array kHeededKeys{
    HeededKey{"FREQ", false, 0, 0},          HeededKey{"INTERVAL", true, 1, 100000},
    HeededKey{"BYDAY", false, 0, 0},         HeededKey{"BYMONTH", true, 1, 12},
    HeededKey{"BYMONTHDAY", true, -31, 31},  HeededKey{"BYWEEKNO", true, -53, 53},
    HeededKey{"BYYEARDAY", true, -366, 366}, HeededKey{"COUNT", true, 1, 1000000},
    HeededKey{"UNTIL", false, 0, 0},
};

constexpr std::int64_t kFarthestWeekday = 366;

std::vector<std::string_view> split(std::string_view text, char mark) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = std::min(text.find(mark), text.size());
    parts.push_back(text.substr(0, end));
    if (end == text.size()) return parts;
    text.remove_prefix(end + 1);
  }
}

struct Part {
  std::string_view key, value;
};

/// The parts of a rule's line: "FREQ=DAILY", "COUNT=3".
std::vector<Part> partsOf(std::string_view line) {
  std::vector<Part> parts;
  for (const std::string_view part : split(line.substr(kPrefix.size()), ';')) {
    const std::size_t mark = std::min(part.find('='), part.size());
    parts.push_back({part.substr(0, mark), part.substr(std::min(mark + 1, part.size()))});
  }
  return parts;
}

void addOnce(std::vector<std::string>& list, std::string_view word) {
  if (std::find(list.begin(), list.end(), word) == list.end()) list.emplace_back(word);
}

class RuleTextReader {
 public:
  explicit RuleTextReader(std::string name) : name_(std::move(name)) {}

  RuleText read(const std::string& text) {
    found_.line = ruleLine(text);
    const std::size_t begin = text.find(kPrefix);
    if (text.find_first_not_of(" \t\r\n") < begin)
      addOnce(found_.passedOver, "the text before RRULE:");
    for (const Part& part : partsOf(found_.line)) takePart(part.key, part.value);
    return std::move(found_);
  }

 private:
  void takePart(std::string_view key, std::string_view value) {
    const auto* heeded = std::find_if(kHeededKeys.begin(), kHeededKeys.end(),
                                      [&](const HeededKey& row) { return row.key == key; });
    if (heeded == kHeededKeys.end()) return addOnce(found_.passedOver, key);
    if (key == "UNTIL") {
      refuseSecond(key, found_.until, value);
      found_.until = std::string(value);
    }
    if (key == "COUNT") {
      refuseSecond(key, countText_, value);
      countText_ = std::string(value);
      found_.count = number(*heeded, value);
    }
    if (key == "BYDAY") checkWeekdays(value);
    if (!heeded->hasNumbers) return;
    for (const std::string_view item : split(value, ',')) (void)number(*heeded, item);
  }

  [[nodiscard]] std::int64_t number(const HeededKey& key, std::string_view text) const {
    return readWholeArgument(name_ + ": " + std::string(key.key), text, key.least, key.most);
  }

  /// Of two ends neither is the one that was meant.
  void refuseSecond(std::string_view key, const std::optional<std::string>& first,
                    std::string_view second) const {
    if (first)
      throw UsageFailure(name_ + ": " + std::string(key) + ": expected one value, got '" + *first +
                         "' and '" + std::string(second) + "'");
  }

  /// Places before weekdays: "-1FR".
  void checkWeekdays(std::string_view value) const {
    constexpr std::size_t kLettersOfWeekday = 2;
    for (const std::string_view item : split(value, ',')) {
      if (item.size() <= kLettersOfWeekday) continue;
      (void)readWholeArgument(name_ + ": BYDAY", item.substr(0, item.size() - kLettersOfWeekday),
                              -kFarthestWeekday, kFarthestWeekday);
    }
  }

  std::string name_;
  RuleText found_;
  std::optional<std::string> countText_;
};

}  // namespace

std::string ruleLine(const std::string& text) {
  const std::size_t begin = text.find(kPrefix);
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_first_of("\r\n", begin) - begin);
}

std::vector<std::string> keysWithoutWords(const std::string& text) {
  constexpr std::array<std::string_view, 5> kTold{"FREQ", "INTERVAL", "BYDAY", "BYMONTHDAY",
                                                  "BYMONTH"};
  std::vector<std::string> keys;
  const std::string line = ruleLine(text);
  for (const Part& part : partsOf(line))
    if (std::find(kTold.begin(), kTold.end(), part.key) == kTold.end()) addOnce(keys, part.key);
  return keys;
}

RuleText readRuleText(const std::string& text, const std::string& name) {
  return RuleTextReader(name).read(text);
}

}  // namespace orlftool
