
#include <ORLFoundation/platform/language/NSDataDetector.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using Links = std::vector<std::string>;

/// "location+length address" of each link.
Links linksOf(std::string_view text) {
  Links links;
  const auto detector = NSDataDetector::dataDetectorWithTypes(NSTextCheckingTypeLink);
  for (const NSTextCheckingResult& match : detector->matchesInString(text))
    links.push_back(std::to_string(match.range.location) + "+" +
                    std::to_string(match.range.length) + " " + match.URL.absoluteString());
  return links;
}

struct LinkCase {
  std::string_view name, text;
  Links links;
};
const LinkCase kLinkCases[] = {
    {"None", "nothing here, and/or there. 1.5 e.g. x", {}},
    {"Mail", "write to a@example.com today", {"9+13 mailto:a@example.com"}},
    {"TwoOfMail", "a@b.de,c@d.de", {"0+6 mailto:a@b.de", "7+6 mailto:c@d.de"}},
    {"MailInBrackets", "<a@b.de> (c@d.de)", {"1+6 mailto:a@b.de", "10+6 mailto:c@d.de"}},
    {"MailAtTheEndOfASentence", "Ask a@b.de.", {"4+6 mailto:a@b.de"}},
    {"MailBehindPoints", "...a@b.de", {"3+6 mailto:a@b.de"}},
    {"MailWithScheme", "mailto:a@b.de?subject=x", {"0+13 mailto:a@b.de"}},
    {"MailWithSignsThatAreEscaped", "a^b%c@d.de", {"0+10 mailto:a%5Eb%25c@d.de"}},
    {"MailOfOtherScripts", "😀 müller@bücher.de", {"3+16 mailto:m%C3%BCller@b%C3%BCcher.de"}},
    {"MailWithSchemeInAnyCase", "MailTo:a@b.de", {"0+13 MailTo:a@b.de"}},
    {"MailUnderADomainOfOneLetter", "a@b.\u00E9 a@b.e\u0301 a@b.\U00020000 a@b.x", {}},
    {"MailUnderADomainOfTwoLetters", "a@b.\u00E9\u00E8", {"0+6 mailto:a@b.%C3%A9%C3%A8"}},
    {"HostUnderADomainOfOneLetter", "www.b.\u00E9", {}},
    {"Address", "see https://example.com/a?b=c#d.", {"4+27 https://example.com/a?b=c#d"}},
    {"AddressInAnyCase", "HTTP://EXAMPLE.COM", {"0+18 HTTP://EXAMPLE.COM"}},
    {"AddressWithoutAHost", "http://", {}},
    {"AddressWithBrackets", "(http://a.org/b_(c))", {"1+18 http://a.org/b_(c)"}},
    {"AddressInQuotationMarks", "\"http://a.org\"", {"1+12 http://a.org"}},
    {"AddressEndsAtSpace", "http://a.org/\u00E4\u3000b", {"0+14 http://a.org/%C3%A4"}},
    {"AddressWithAPortThatIsNone", "http://a.org:x/", {}},
    {"OtherSchemes", "ftp://a.org javascript:x tel:1", {"0+11 ftp://a.org"}},
    {"HostOfTheWeb", "www.example.museum!", {"0+18 http://www.example.museum"}},
    {"HostWithAPath", "example.com/a,", {"0+13 http://example.com/a"}},
    {"HostOfACommonDomain", "'example.org'", {"1+11 http://example.org"}},
    {"HostOfNoCommonDomain", "readme.txt file.pdf", {}},
    {"BrokenBytesEndALink",
     "http://a.org/\xFFz a@b.de\xFF",
     {"0+13 http://a.org/", "16+6 mailto:a@b.de"}},
};

TEST(NSDataDetector, FindsLinks) {
  for (const LinkCase& row : kLinkCases) EXPECT_EQ(linksOf(row.text), row.links) << row.name;
}

TEST(NSDataDetector, DetectsLinksOnly) {
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(NSDataDetector::dataDetectorWithTypes(0, &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(NSDataDetector::dataDetectorWithTypes(8), nullptr);
}

TEST(NSDataDetector, StopsWhenToldTo) {
  int matches = 0;
  const auto detector = NSDataDetector::dataDetectorWithTypes(NSTextCheckingTypeLink);
  detector->enumerateMatchesInString("a@b.de c@d.de e@f.de",
                                     [&](const NSTextCheckingResult& match, bool& stop) {
                                       EXPECT_EQ(match.resultType, NSTextCheckingTypeLink);
                                       stop = ++matches == 2;
                                     });
  EXPECT_EQ(matches, 2);
}

TEST(NSDataDetector, CopiesToItselfAndOneOnTheStackToAnother) {
  NSDataDetector detector;
  const auto copy = std::dynamic_pointer_cast<NSDataDetector>(detector.copy());
  ASSERT_TRUE(copy);
  EXPECT_NE(copy.get(), &detector);
  EXPECT_EQ(copy->matchesInString("a@b.de").size(), 1U);
  EXPECT_EQ(copy->copy(), copy);
}

}  // namespace
}  // namespace ORLFoundation
