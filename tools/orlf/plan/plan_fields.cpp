#include "plan/plan_fields.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "cli/message_text.h"

namespace orlftool {
namespace {

std::string_view lastLineOf(std::string_view token);

/// How far the JSON reader has come. It reads one character past a number.
struct Position {
  std::size_t line = 1;
  bool atLineStart = false;
};

/// Walks a text and keeps count of its lines; copies share the count.
class LineCountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  LineCountingIterator(const char* at, Position* position) : at_(at), position_(position) {}
  reference operator*() const { return *at_; }
  LineCountingIterator& operator++() {
    position_->atLineStart = *at_ == '\n';
    if (position_->atLineStart) ++position_->line;
    ++at_;
    return *this;
  }
  LineCountingIterator operator++(int) {
    LineCountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const LineCountingIterator& other) const { return at_ == other.at_; }
  bool operator!=(const LineCountingIterator& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  Position* position_;
};

/// Receives the pieces of the JSON text one by one and sorts them into fields. It holds no more
/// than one level of lists and two of objects, so the depth of what it is given does not matter.
class PlanFieldsReader {
 public:
  PlanFieldsReader(const std::string& name, const Position& position)
      : name_(name), position_(position) {}

  PlanFields take() { return std::move(fields_); }

  // The interface of the JSON reader's events. All throw instead of answering false.
  bool null() {
    checkScalarPlace("null", position_.line);
    endValue();
    return true;
  }
  bool boolean(bool value) { fail(expected(), value ? "true" : "false"); }
  bool number_integer(std::int64_t value) { return number(std::to_string(value)); }
  bool number_unsigned(std::uint64_t value) { return number(std::to_string(value)); }
  bool number_float(double, const std::string& text) { return number(text); }
  bool string(std::string& text) { return store(text, true, position_.line); }
  bool binary(nlohmann::json::binary_t&) { fail(expected(), "bytes"); }
  bool start_object(std::size_t);
  bool key(std::string& name);
  bool end_object();
  bool start_array(std::size_t);
  bool end_array();
  bool parse_error(std::size_t, const std::string& token, const nlohmann::detail::exception&);

 private:
  [[noreturn]] void fail(std::string_view expectedText, std::string_view got) const {
    failAtField(name_, position_.line, path(), expectedText, got);
  }
  [[nodiscard]] std::string path() const;
  [[nodiscard]] std::string_view expected() const;
  [[nodiscard]] PlanObject& object();
  bool number(const std::string& text) {
    return store(text, false, position_.line - (position_.atLineStart ? 1 : 0));
  }
  bool store(const std::string& text, bool quoted, std::size_t line);
  void checkScalarPlace(std::string_view got, std::size_t line) const;
  void endValue() { field_ = nullptr; }
  void begin(PlanPlace place, std::string path);

  const std::string& name_;
  const Position& position_;
  PlanFields fields_;
  PlanPlace place_ = PlanPlace::kOutside;
  bool hasEnded_ = false;
  const PlanField* field_ = nullptr;            // the field whose value comes next
  std::set<std::string, std::less<>> seen_[2];  // names met in the root, in the object inside it
};

std::string PlanFieldsReader::path() const {
  std::string object;
  if (place_ == PlanPlace::kRounding) object = "rounding";
  if (place_ == PlanPlace::kSegment)
    object = "segments[" + std::to_string(fields_.segments.size() - 1) + "]";
  if (place_ == PlanPlace::kSegmentList)
    object = "segments[" + std::to_string(fields_.segments.size()) + "]";
  return field_ != nullptr ? planFieldPath(object, field_->name) : object;
}

std::string_view PlanFieldsReader::expected() const {
  if (field_ != nullptr) return field_->expected;
  if (place_ == PlanPlace::kSegmentList) return "an object, one segment";
  return hasEnded_ ? "the end of the file" : "an object, the plan";
}

PlanObject& PlanFieldsReader::object() {
  if (place_ == PlanPlace::kRounding) return fields_.rounding;
  return place_ == PlanPlace::kSegment ? fields_.segments.back() : fields_.root;
}

void PlanFieldsReader::checkScalarPlace(std::string_view got, std::size_t line) const {
  const bool takesScalar = field_ != nullptr && field_->form != PlanFieldForm::kRounding &&
                           field_->form != PlanFieldForm::kSegmentList;
  const bool mayBeNull = field_ != nullptr && !field_->required && got == "null";
  if (!takesScalar && !mayBeNull) failAtField(name_, line, path(), expected(), got);
}

bool PlanFieldsReader::store(const std::string& text, bool quoted, std::size_t line) {
  const std::string shown = quoted ? quotedForMessage(text) : text;
  checkScalarPlace(shown, line);
  const bool wantsText = field_->form == PlanFieldForm::kText;
  const bool wantsNumber = field_->form == PlanFieldForm::kInteger;
  if ((wantsText && !quoted) || (wantsNumber && quoted))
    failAtField(name_, line, path(), field_->expected, shown);
  object().values.emplace(field_->name, PlanValue{text, quoted, line});
  endValue();
  return true;
}

void PlanFieldsReader::begin(PlanPlace place, std::string path) {
  place_ = place;
  object().path = std::move(path);
  object().line = position_.line;
  seen_[place != PlanPlace::kRoot].clear();
  endValue();
}

bool PlanFieldsReader::start_object(std::size_t) {
  if (place_ == PlanPlace::kOutside) {
    begin(PlanPlace::kRoot, "");
  } else if (place_ == PlanPlace::kSegmentList) {
    fields_.segments.emplace_back();
    begin(PlanPlace::kSegment, "segments[" + std::to_string(fields_.segments.size() - 1) + "]");
  } else if (field_ != nullptr && field_->form == PlanFieldForm::kRounding) {
    fields_.hasRounding = true;
    begin(PlanPlace::kRounding, "rounding");
  } else {
    fail(expected(), "an object");
  }
  return true;
}

bool PlanFieldsReader::key(std::string& name) {
  const PlanField* found = findPlanField(place_, name);
  const std::string shown = quotedForMessage(name);
  if (found == nullptr) fail(planFieldNames(place_), "an unknown field " + shown);
  field_ = found;
  if (!seen_[place_ != PlanPlace::kRoot].insert(name).second)
    fail("the field once", "it a second time");
  return true;
}

bool PlanFieldsReader::end_object() {
  const std::set<std::string, std::less<>>& seen = seen_[place_ != PlanPlace::kRoot];
  for (const PlanField& field : kPlanFields) {
    if (field.place != place_ || !field.required || seen.contains(field.name)) continue;
    failAtField(name_, object().line, planFieldPath(object().path, field.name), field.expected,
                "nothing");
  }
  hasEnded_ = place_ == PlanPlace::kRoot;
  place_ = place_ == PlanPlace::kSegment    ? PlanPlace::kSegmentList
           : place_ == PlanPlace::kRounding ? PlanPlace::kRoot
                                            : PlanPlace::kOutside;
  return true;
}

bool PlanFieldsReader::start_array(std::size_t) {
  if (field_ == nullptr || field_->form != PlanFieldForm::kSegmentList) fail(expected(), "a list");
  place_ = PlanPlace::kSegmentList;
  endValue();
  return true;
}

bool PlanFieldsReader::end_array() {
  place_ = PlanPlace::kRoot;
  if (!fields_.segments.empty()) return true;
  field_ = findPlanField(PlanPlace::kRoot, "segments");
  fail(expected(), "an empty list");
}

bool PlanFieldsReader::parse_error(std::size_t, const std::string& token,
                                   const nlohmann::detail::exception& error) {
  constexpr int kNumberOutOfRange = 406;
  if (error.id == kNumberOutOfRange)
    fail(expected(), "a number out of range, " + quotedForMessage(token));
  const std::size_t line = position_.line - (position_.atLineStart ? 1 : 0);
  const bool ended =
      std::string_view(error.what()).find("unexpected end of input") != std::string_view::npos;
  const bool valueIsNext = field_ != nullptr || place_ == PlanPlace::kOutside;
  const std::string got = ended ? "the end of the file" : quotedForMessage(lastLineOf(token));
  failAtField(name_, ended ? position_.line : line, path(),
              valueIsNext ? expected() : "JSON, with its commas and brackets", got);
}

/// The JSON reader gives what it read since the last good piece, with its line ends written out.
std::string_view lastLineOf(std::string_view token) {
  constexpr std::string_view kLineEnd = "<U+000A>";
  if (token.ends_with(kLineEnd)) token.remove_suffix(kLineEnd.size());
  const std::size_t end = token.rfind(kLineEnd);
  if (end != std::string_view::npos) token.remove_prefix(end + kLineEnd.size());
  token.remove_prefix(std::min(token.find_first_not_of(' '), token.size()));
  return token;
}

}  // namespace

const PlanField* findPlanField(PlanPlace place, std::string_view name) {
  const auto* found = std::find_if(kPlanFields.begin(), kPlanFields.end(), [&](const PlanField& f) {
    return f.place == place && f.name == name;
  });
  return found == kPlanFields.end() ? nullptr : found;
}

std::string planFieldNames(PlanPlace place) {
  std::string names;
  for (const PlanField& field : kPlanFields) {
    if (field.place != place) continue;
    names += names.empty() ? "one of " : ", ";
    names += field.name;
  }
  return names;
}

std::string planFieldPath(const std::string& object, std::string_view field) {
  return object.empty() ? std::string(field) : object + "." + std::string(field);
}

PlanFields readPlanFields(std::string_view text, const std::string& name) {
  Position position;
  PlanFieldsReader reader(name, position);
  const char* begin = text.data();
  nlohmann::json::sax_parse(LineCountingIterator(begin, &position),
                            LineCountingIterator(begin + text.size(), &position), &reader);
  return reader.take();
}

}  // namespace orlftool
