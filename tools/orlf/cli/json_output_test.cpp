#include "cli/json_output.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using orlftool::Json;
using orlftool::JsonArrayPrinter;

std::string memberByMember(const Json& array) {
  std::ostringstream out;
  JsonArrayPrinter printer(out);
  for (const Json& member : array) printer.add(member);
  printer.finish();
  return out.str();
}

TEST(JsonOutput, PrintsAnArrayMemberByMemberAsItPrintsItWhole) {
  const Json arrays[] = {
      Json::array(),
      {1},
      {"a\nb\r\u0085", nullptr, true},
      {Json::object(), Json::array(), {{"a", {1, {{"b", "c"}}}}, {"d", "\\n"}}},
  };
  for (const Json& array : arrays) {
    std::ostringstream whole;
    orlftool::printJson(whole, array);
    EXPECT_EQ(memberByMember(array), whole.str());
  }
}

TEST(JsonOutput, ReplacesBrokenBytes) {
  EXPECT_EQ(memberByMember({"\xFF"}), "[\n  \"\uFFFD\"\n]\n");
}

}  // namespace
