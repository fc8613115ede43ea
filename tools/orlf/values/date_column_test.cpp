#include "values/date_column.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "session.h"
#include "values/date_text.h"

namespace {

using orlftool::ColumnText;
using orlftool::DateColumn;
using orlftool::DateOrder;
using testing::ElementsAre;
using testing::IsEmpty;

class Column : public DateColumn {
 public:
  explicit Column(const std::vector<DateOrder>& favoured = {})
      : DateColumn(orlftool::makeCalendar("UTC", "en_US"), favoured, 2026) {}

  Column& with(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) add(text, ++line_);
    return *this;
  }
  /// "3: 13/02/2021", empty for an order that is open.
  [[nodiscard]] std::string excluder(std::string_view word) const {
    const std::optional<ColumnText>& text = excludedBy(*orlftool::dateOrderNamed(word));
    return text ? std::to_string(text->line) + ": " + text->text : std::string();
  }
  /// The ISO date.
  [[nodiscard]] std::string dateText(std::string_view text, std::string_view word) {
    const orlftool::ColumnDate read = DateColumn::read(text, *orlftool::dateOrderNamed(word));
    if (read.isUnknownDay) return read.date ? "both" : "unknown day";
    if (!read.date) return "none";
    return orlftool::shortDateText(*read.date, *orlftool::makeCalendar("UTC", "en_US"));
  }

 private:
  std::uint64_t line_ = 0;
};

TEST(DateColumn, OrdersHaveWords) {
  for (const DateOrder order : orlftool::kDateOrders)
    EXPECT_EQ(orlftool::dateOrderNamed(orlftool::wordOfDateOrder(order)), order);
  EXPECT_EQ(orlftool::wordOfDateOrder(1), "dmy");
  EXPECT_EQ(orlftool::wordOfDateOrder(6), "dym");
  for (const DateOrder order : {DateOrder{0}, DateOrder{7}, DateOrder{-1}, INT64_MAX, INT64_MIN})
    EXPECT_EQ(orlftool::wordOfDateOrder(order), "");
  for (const char* word : {"", "DMY", "dm", "dmyy", "yyy"})
    EXPECT_EQ(orlftool::dateOrderNamed(word), std::nullopt) << word;
}

TEST(DateColumn, NamesTheTextThatExcludedAnOrder) {
  Column column;
  column.with({"Date", "03/04/21", "03/04/2021", "3/13/21", "04/14/21"});
  EXPECT_THAT(column.orders(), ElementsAre(2));
  EXPECT_EQ(column.dateCount(), 4U);
  EXPECT_EQ(column.excluder("mdy"), "");
  EXPECT_EQ(column.excluder("dmy"), "4: 3/13/21");
  EXPECT_EQ(column.excluder("ymd"), "3: 03/04/2021");
  EXPECT_EQ(column.excluder("dym"), "2: 03/04/21");
}

TEST(DateColumn, FavouredOrdersComeFirst) {
  EXPECT_THAT(Column().with({"01/02/03"}).orders(), ElementsAre(1, 2, 3));
  EXPECT_THAT(Column({4, 6}).with({"01/02/03"}).orders(), ElementsAre(4, 6));
  EXPECT_THAT(Column({4, 6}).with({"13/02/2021"}).orders(), ElementsAre(1));
  EXPECT_THAT(Column().with({"13/02/2021", "02/13/2021"}).orders(), IsEmpty());
}

TEST(DateColumn, NothingExcludesBeforeADateDoes) {
  Column column;
  column.with({"", "Date", "20210203"});
  EXPECT_EQ(column.dateCount(), 0U);
  for (const DateOrder order : orlftool::kDateOrders) EXPECT_FALSE(column.excludedBy(order));
}

TEST(DateColumn, ReadsDatesUnderAnOrder) {
  Column column;
  EXPECT_EQ(column.dateText("3/4'21", "dmy"), "2021-04-03");
  EXPECT_EQ(column.dateText("2021-02-13 10:15", "ymd"), "2021-02-13");
  EXPECT_EQ(column.dateText("03/04/27", "mdy"), "2027-03-04");
  EXPECT_EQ(column.dateText("03/04/28", "mdy"), "1928-03-04");
  EXPECT_EQ(column.dateText("29/02/2024", "dmy"), "2024-02-29");
  EXPECT_EQ(column.dateText("", "dmy"), "none");
  EXPECT_EQ(column.dateText("3/4/500", "dmy"), "none");
  EXPECT_EQ(column.dateText("0/4/2021", "dmy"), "none");
}

TEST(DateColumn, ReadsNoDayThatTheCalendarLacks) {
  Column column;
  EXPECT_EQ(column.dateText("31/02/2021", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("29/02/2023", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("03/13/2021", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("1/2/-3", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("1/2/9999999999999999999", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("9999999999999999999/2/2021", "dmy"), "unknown day");
  EXPECT_EQ(column.dateText("1/9223372036854775806/2021", "dmy"), "none");
}

}  // namespace
