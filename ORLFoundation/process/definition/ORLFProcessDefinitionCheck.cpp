#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>

#include <ORLFoundation/platform/files/NSDataReading.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/internal/ORLFCheckingStepBuilder.h>

#include <algorithm>
#include <memory>

namespace ORLFoundation {

using internal::definition::CheckingStepBuilder;

namespace {

ORLFProcessDefinitionFinding findingOfXML(const NSError& error) {
  const auto number = [&](std::string_view key) {
    return error.userInfo()->objectForKey(key).as<NSInteger>().value_or(0);
  };
  return {ORLFProcessDefinitionFindingNotWellFormed,
          {number(NSXMLParserErrorLineNumberKey), number(NSXMLParserErrorColumnKey)},
          error.userInfo()->objectForKey(NSXMLParserErrorMessageKey).description()};
}

}  // namespace

std::optional<std::vector<ORLFProcessDefinitionFinding>> ORLFProcessDefinitionCheck::findingsOfURL(
    const NSURL& url, NSErrorSlot error) {
  const auto data = dataWithContentsOfURL(url, NSDataReadingMappedIfSafe, error);
  if (!data) return std::nullopt;
  return findingsOfData(*data);
}

std::vector<ORLFProcessDefinitionFinding> ORLFProcessDefinitionCheck::findingsOfData(
    const NSData& data, NSUInteger stepLimit) {
  const auto builder = std::make_shared<CheckingStepBuilder>();
  builder->setStepLimit(stepLimit);
  NSXMLParser parser(data);
  parser.setDelegate(builder);
  const bool isRead = parser.parse();
  auto findings = isRead ? builder->findingsOfRecords() : builder->findings();
  if (!isRead) findings.push_back(findingOfXML(*parser.parserError()));
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& left, const auto& right) { return left.place < right.place; });
  return findings;
}

}  // namespace ORLFoundation
