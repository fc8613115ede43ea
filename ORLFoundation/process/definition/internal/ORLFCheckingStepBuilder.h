/// A reader of definitions that writes down what is wrong where another one logs or raises, and
/// then looks through the records and the steps that they come to.
#pragma once

#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/definition/internal/ORLFStepOrigins.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::definition {

class CheckingStepBuilder final : public ORLFProcessStepBuilder {
 public:
  /// What the elements alone show.
  [[nodiscard]] const std::vector<ORLFProcessDefinitionFinding>& findings() const noexcept {
    return findings_;
  }
  /// That, and what the records of a file show that was read to its end. Takes out of the records
  /// what no tree can be made of. Once.
  [[nodiscard]] std::vector<ORLFProcessDefinitionFinding> findingsOfRecords();

  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override;
  /// No step is made before the records have been looked through.
  void parserDidEndElement(NSXMLParser& parser, std::string_view didEndElement,
                           std::optional<std::string_view> namespaceURI,
                           std::optional<std::string_view> qualifiedName) override;
  void parserDidEndDocument(NSXMLParser& parser) override;
  void fillStepWithTransitionsFromData(const Step& step, const StepData& data) override;

 protected:
  void ruleIsBroken(NSXMLParser& parser, std::string_view condition,
                    std::string_view message) override;

 private:
  void add(ORLFProcessDefinitionFindingKind kind, ORLFProcessDefinitionPlace place,
           std::string message);
  void checkNames(const NSXMLStartTag& tag);
  void checkRootStep();
  void checkChildren(const StepData& record, std::vector<StepData>& open);
  void checkReferences();
  [[nodiscard]] bool isWithinLimit();
  void checkTrees();

  std::vector<ORLFProcessDefinitionFinding> findings_;
  ORLFProcessDefinitionPlace place_;  // of the tag that is told of
  // Of the last <process>; of the file's first tag where there is none.
  ORLFProcessDefinitionPlace processPlace_;
  bool holdsProcess_ = false;
  std::set<std::string, std::less<>> referred_;
  StepOrigins origins_;
};

}  // namespace ORLFoundation::internal::definition
