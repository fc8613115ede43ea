/// Reads a process definition, and makes the tree of steps that it tells of.
///
///   <process rootstep="loan">
///    <step id="loan" firststep="income">
///    <step id="income"><transition value="next" stepid="check"/></step>
///    <stepref id="check"><transition value="fail" end="rejected"/></stepref>
///    </step>
///    <step id="check"><representedobject type="page"/></step>
///   </process>
///
/// A delegate makes the objects that the steps represent:
///
///     ORLFProcessStepBuilder builder;
///     builder.setDelegate(pages);
///     std::shared_ptr<const NSError> error;
///     if (const auto root = builder.readStepFromURL(url, &error)) ORLFProcess(root).run();
///
/// A step of the top of the file can be used in several groups by `<stepref>`: each gets a copy of
/// its own, over which the reference lays its transitions and, if it names a type, its object.
/// Other elements and attributes are passed over, and so is text. A broken rule of the file is
/// logged as a failed condition, and reading goes on. What cannot be taken down raises
/// `NSInvalidArgumentException`: a transition without "value", or with neither "stepid" nor "end";
/// a property without "key"; a step without "id" inside of another; a reference to no step.
///
/// A builder is meant for one file: a second one is merged into the first, and steps that were
/// made are not made anew. A delegate may let go of the builder, change its records and ask it for
/// other steps. One thread at a time.
///
/// ORLFProcessDefinitionCheck.h finds what is wrong in a definition, with the places.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/platform/xml/NSXMLParserDelegate.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSDictionary;
class ORLFProcessStep;
class ORLFProcessStepBuilderDelegate;
class ORLFProcessStepBuilderStepData;

class ORLFProcessStepBuilder : public NSObject, public NSXMLParserDelegate {
 public:
  using Step = std::shared_ptr<ORLFProcessStep>;
  using StepData = std::shared_ptr<ORLFProcessStepBuilderStepData>;
  using StepDataMap = std::map<std::string, StepData, std::less<>>;

  /// `readStepFromURL:error:`  The step that "rootstep" names; null, and no error, where there is
  /// no such step. Null and an error where the file cannot be read or is no XML; the error of XML
  /// knows line and column. What the delegate throws comes out of this call.
  [[nodiscard]] Step readStepFromURL(const NSURL& url, NSErrorSlot error = nullptr);
  /// `rootStepInstanceWithIdentifier:`  The tree of a step of the top, made at its first use and
  /// shared by all who ask. For any other name a step without anything. References that lead back
  /// to where they stand, and ones that multiply beyond `stepLimit`, raise `NSGenericException`,
  /// which names the chain, before any step is made.
  Step rootStepInstanceWithIdentifier(const std::string& identifier);
  /// How many steps this builder makes at most, 1,000,000 unless set.
  [[nodiscard]] NSUInteger stepLimit() const noexcept { return stepLimit_; }
  void setStepLimit(NSUInteger value) noexcept { stepLimit_ = value; }

  /// The records of the top of the file by their identifiers, the last of each name.
  [[nodiscard]] StepDataMap& rootStepDatas() noexcept { return rootStepDatas_; }
  /// The trees that were made of them.
  [[nodiscard]] const std::map<std::string, Step, std::less<>>& rootStepInstances() const noexcept {
    return rootStepInstances_;
  }
  /// The "rootstep" of the file.
  [[nodiscard]] const std::optional<std::string>& rootStepId() const noexcept {
    return rootStepId_;
  }
  void setRootStepId(std::optional<std::string> value) { rootStepId_ = std::move(value); }
  /// The innermost open record while a file is read, null outside of all.
  [[nodiscard]] const StepData& currentStepData() const noexcept { return currentStepData_; }
  void setCurrentStepData(StepData value) { currentStepData_ = std::move(value); }
  /// Held weakly. Without one, steps represent nothing.
  [[nodiscard]] std::shared_ptr<ORLFProcessStepBuilderDelegate> delegate() const {
    return delegate_.lock();
  }
  void setDelegate(const std::shared_ptr<ORLFProcessStepBuilderDelegate>& value) {
    delegate_ = value;
  }

  /// `fillStep:withData:`  Gives the step what the record tells of it, and the children that stand
  /// in the record. Raises `NSInvalidArgumentException` without a step.
  void fillStepWithData(const Step& step, const StepData& data);
  /// `fillStep:withTransitionsFromData:`  Transitions, responses and the represented object; the
  /// last stays as it is for a reference that names no type.
  virtual void fillStepWithTransitionsFromData(const Step& step, const StepData& data);
  /// `readPropertyValueFromAttributes:`  The value of a `<property>`: "bool" where it says yes or
  /// no, else the first of "real", "int", "bool" and "decimal" as a number of the current locale,
  /// else, and where that is no number, "string".
  [[nodiscard]] virtual id readPropertyValueFromAttributes(const NSDictionary& attributes);

  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override;
  void parserDidEndElement(NSXMLParser& parser, std::string_view didEndElement,
                           std::optional<std::string_view> namespaceURI,
                           std::optional<std::string_view> qualifiedName) override;
  void parserDidEndDocument(NSXMLParser& parser) override;

  [[nodiscard]] std::string className() const override { return "ORLFProcessStepBuilder"; }

 protected:
  /// A rule of the file that does not hold. Logs "Condition Failed: " with both.
  virtual void ruleIsBroken(NSXMLParser& parser, std::string_view condition,
                            std::string_view message);
  /// The steps that the records and their references come to. Raises where they lead back to
  /// themselves or are more than this builder may still make.
  [[nodiscard]] NSUInteger countOfSteps(const std::vector<StepData>& records) const;

 private:
  void startProcess(NSXMLParser& parser, const NSDictionary& attributes);
  void startStep(NSXMLParser& parser, const NSDictionary& attributes);
  void startStepReference(NSXMLParser& parser, const NSDictionary& attributes);
  void startTransition(NSXMLParser& parser, const NSDictionary& attributes);
  void startRepresentedObject(NSXMLParser& parser, const NSDictionary& attributes);
  void startProperty(NSXMLParser& parser, const NSDictionary& attributes);
  void test(NSXMLParser& parser, bool holds, std::string_view condition, std::string_view message);
  void openRecord(const StepData& record);
  [[nodiscard]] StepData targetOf(const StepData& record) const;
  [[nodiscard]] Step newStep(const std::string& identifier);
  void makeSteps(const Step& step, const StepData& data);

  std::map<std::string, Step, std::less<>> rootStepInstances_;
  StepDataMap rootStepDatas_;
  std::optional<std::string> rootStepId_;
  StepData currentStepData_;
  std::weak_ptr<ORLFProcessStepBuilderDelegate> delegate_;
  NSUInteger stepLimit_ = 1'000'000;
  NSUInteger stepCount_ = 0;
};

}  // namespace ORLFoundation
