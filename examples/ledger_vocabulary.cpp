// Accounts with their transactions, built from XML by a vocabulary of a program's own.
#include <ORLFoundation/ORLFoundation.h>

#include <iostream>

using namespace ORLFoundation;

/// Properties that may also be amounts, and transactions.
class LedgerProperty : public ORLFXMLParserPropertyBuilder {
  const ORLFXMLPropertyVocabulary& vocabulary() const override {
    using Builder = ORLFXMLParserPropertyBuilder;
    static const auto words = ORLFXMLParserPropertyBuilder::vocabulary().extendedBy(
        {.basicTypes = {{"Amount",
                         [](Builder&, const std::optional<std::string>& text) {
                           return id(ORLFXMLParser::decimalValueForString(text));
                         }}},
         .objects = {{"Transaction",
                      [](Builder&) { return id(std::make_shared<NSMutableDictionary>()); }}}});
    return words;
  }
};

class AccountBuilder : public ORLFXMLParserObjectBuilder {
  id makeBuiltObjectForElement(std::string_view, const std::shared_ptr<NSDictionary>&) override {
    return std::make_shared<NSMutableDictionary>();
  }
  bool finalizeBuiltObject(const id& account, std::string_view) override {
    std::cout << account.valueForKey("name").description() << ": "
              << account.valueForKeyPath("transactions.@sum.amount").description() << '\n';
    return true;
  }
};

class LedgerParser : public ORLFXMLParser {
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "ledger") return std::make_shared<ORLFXMLParserFragmentHandlerBase>();
    if (name == "account") return std::make_shared<AccountBuilder>();
    if (name == "property") return std::make_shared<LedgerProperty>();
    return nullptr;
  }
};

int main() {
  constexpr std::string_view ledger = R"(<ledger><account><property key="name" string="Cash"/>
    <property key="transactions" collection="array">
      <property key="element" object="transaction"><property key="amount" amount="20.25"/></property>
      <property key="element" object="transaction"><property key="amount" amount="-4.75"/></property>
    </property></account></ledger>)";
  std::shared_ptr<const NSError> error;
  if (std::make_shared<LedgerParser>()->parseData(NSData(ledger), &error)) return 0;
  std::cerr << error->localizedDescription() << '\n';
  return 1;
}
