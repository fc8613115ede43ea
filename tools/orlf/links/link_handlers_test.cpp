#include "links/link_handlers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/failure.h"

namespace {

using orlftool::LinkHandler;
using orlftool::parseLinkHandlers;

/// "+/a" for a handler that accepts, "-/a" for one that declines.
std::vector<std::string> read(std::string_view text) {
  std::vector<std::string> handlers;
  for (const LinkHandler& handler : parseLinkHandlers(text, "h"))
    handlers.push_back((handler.accepts ? "+" : "-") + handler.prefix);
  return handlers;
}

struct LinesCase {
  const char* name;
  std::string_view text;
  std::vector<std::string> handlers;
};
const LinesCase kLines[] = {
    {"Both", "accept /a\ndecline /b\n", {"+/a", "-/b"}},
    {"Nothing", "", {}},
    {"RemarksAndEmptyLines", "# accept /a\n\n  \n  # b\naccept /c", {"+/c"}},
    {"BlanksAround", "  accept \t /a  \r\n", {"+/a"}},
    {"BlanksInside", "accept /a b\n", {"+/a b"}},
    {"WithoutSlash", "decline a\n", {"-a"}},
    {"Twice", "accept /a\naccept /a\n", {"+/a", "+/a"}},
    {"NoEndOfLine", "accept /a", {"+/a"}},
};

TEST(LinkHandlers, AreReadFromLines) {
  for (const LinesCase& row : kLines) EXPECT_EQ(read(row.text), row.handlers) << row.name;
}

struct FaultCase {
  const char* name;
  std::string_view text;
  std::string message;
};
const FaultCase kFaults[] = {
    {"OtherWord", "accept /a\n\nallow /b\n",
     "h:3: expected 'accept PREFIX' or 'decline PREFIX', "
     "got 'allow /b'"},
    {"NoPrefix", "accept\n", "h:1: expected 'accept PREFIX' or 'decline PREFIX', got 'accept'"},
    {"BlankPrefix", "decline  \n",
     "h:1: expected 'accept PREFIX' or 'decline PREFIX', got "
     "'decline'"},
    {"Capitals", "Accept /a\n",
     "h:1: expected 'accept PREFIX' or 'decline PREFIX', got "
     "'Accept /a'"},
    {"BrokenBytes", "\xFF\n", "h:1: expected 'accept PREFIX' or 'decline PREFIX', got '?'"},
};

TEST(LinkHandlers, FaultsNameTheLine) {
  for (const FaultCase& row : kFaults) {
    std::string message;
    try {
      static_cast<void>(parseLinkHandlers(row.text, "h"));
    } catch (const orlftool::JobFailure& failure) {
      message = failure.what();
    }
    EXPECT_EQ(message, row.message) << row.name;
  }
}

}  // namespace
