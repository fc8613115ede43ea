// Tables of securities, prices, categories and taxes turned into records by the tool.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include <tests/tool/RecordFiles.h>

namespace {

using orlftest::kStatement;
using orlftest::ToolRun;

class RecordKinds : public orlftest::RecordFiles {};

TEST_F(RecordKinds, WritesInvestments) {
  const ToolRun ran = run("qif",
                          "date,action,security,price,quantity,amount,commission,transfer,"
                          "transfer amount\n"
                          "2023-01-31,buyx,Acme,12.5,100,1259.95,9.95,Checking,1259.95\n"
                          "2023-02-01,StkSplit,Acme,,20,,,,\n2023-02-02,Div,Acme,,,3,,,\n",
                          {"--account", "Broker", "--kind", "investments"});
  EXPECT_EQ(ran.exitCode, 0) << ran.err;
  EXPECT_EQ(written(),
            "!Account\nNBroker\nTInvst\n^\n!Type:Invst\n"
            "D01/31/2023\nNBuyX\nYAcme\nI12.50\nQ100.00\nT1259.95\nO9.95\nL[Checking]\n$1259.95\n"
            "^\nD02/01/2023\nNStkSplit\nYAcme\nQ20.00\n^\nD02/02/2023\nNDiv\nYAcme\nT3.00\n^\n");
  EXPECT_EQ(
      run("qif", "date,action\n2023-01-31,Borrow\n", {"--account", "B", "--kind", "investments"})
          .exitCode,
      1);
}

TEST_F(RecordKinds, TellsWhatAStockSplitHasNoPlaceFor) {
  const ToolRun ran = run("qif",
                          "date,action,security,price,quantity,amount,commission,payee,transfer,"
                          "transfer amount,memo\n"
                          "2023-02-01,StkSplit,Acme,5,20,6,7,Floor,Checking,8,why\n"
                          "2023-02-02,stksplit,Acme,5,20,,,,,,\n",
                          {"--account", "Broker", "--kind", "investments"});
  EXPECT_EQ(ran.exitCode, 0) << ran.err;
  EXPECT_TRUE(
      written().ends_with("D02/01/2023\nNStkSplit\nYAcme\nQ20.00\nMwhy\n^\n"
                          "D02/02/2023\nNStkSplit\nYAcme\nQ20.00\n^\n"))
      << written();
  EXPECT_NE(
      ran.err.find("in.csv:2 and in 1 more: price is left out: a stock split has no place for "
                   "it\n"),
      std::string::npos)
      << ran.err;
  for (const char* field : {"amount", "commission", "payee", "transfer", "transfer-amount"})
    EXPECT_NE(ran.err.find("in.csv:2: " + std::string(field) + " is left out: a stock split has"),
              std::string::npos)
        << field << ran.err;
  EXPECT_EQ(ran.err.find("quantity"), std::string::npos);
  EXPECT_EQ(ran.err.find("memo"), std::string::npos);
}

TEST_F(RecordKinds, LosesNoAmountOfATransfer) {
  EXPECT_EQ(fault(run("qif", "date,action,transfer,transfer amount\n2023-01-31,BuyX,,12\n",
                      {"--account", "B", "--kind", "investments"})),
            "orlf qif: in.csv:2: transfer: expected the account of the transfer, got ''");
}

TEST_F(RecordKinds, WritesSecuritiesPricesAndCategories) {
  EXPECT_EQ(run("qif", "name,symbol,type,risk\nAcme,ACM,stock,growth\nBonds,,,\n",
                {"--kind", "securities"})
                .exitCode,
            0);
  EXPECT_EQ(written(), "!Type:Security\nNAcme\nSACM\nTStock\nGGrowth\n^\nNBonds\nS\nT\nG\n^\n^\n");
  EXPECT_EQ(
      run("qif", "symbol,price,date\nACM,\"1,234.5\",2023-01-31\n", {"--kind", "prices"}).exitCode,
      0);
  EXPECT_EQ(written(), "!Type:Prices\n\"ACM\",1234.50,\"01/31/2023\"\n^\n");
  EXPECT_EQ(run("qif", "name,type,description,tax,tax code\nPay,income,Work,yes,460\nFood,,,,\n",
                {"--kind", "categories"})
                .exitCode,
            0);
  EXPECT_EQ(written(), "!Type:Cat\nNPay\nI\nDWork\nT\nR460\n^\nNFood\nE\n^\n");
}

TEST_F(RecordKinds, WritesAllKindsOfAccounts) {
  const std::pair<const char*, const char*> types[] = {{"bank", "Bank\n^\n!Type:Bank"},
                                                       {"cash", "Cash\n^\n!Type:Cash"},
                                                       {"card", "CCard\n^\n!Type:CCard"},
                                                       {"asset", "Oth A\n^\n!Type:Oth A"},
                                                       {"Oth L", "Oth L\n^\n!Type:Oth L"}};
  for (const auto& [type, lines] : types) {
    EXPECT_EQ(qif(kStatement, {"--type", type}).exitCode, 0) << type;
    EXPECT_TRUE(written().starts_with("!Account\nNMain\nT" + std::string(lines))) << type;
  }
}

std::string header(const std::string& text) { return text.substr(0, text.find("^\n") + 2); }

TEST_F(RecordKinds, TurnsSalesIntoTxf) {
  const ToolRun ran = run("txf",
                          "security,shares,bought,sold,cost,proceeds,copy,line\n"
                          "Acme,1000.5,2023-01-15,2024-01-15,\"1,000\",1250.255,,\n"
                          "Acme,1,2023-01-15,2024-01-16,1,2,2,3\n"
                          "Leap,1,2020-02-29,2021-02-28,1,2,,\n"
                          "Leap,1,2020-02-29,2021-03-01,1,2,,\n",
                          {"--export-date", "2024-12-31"});
  EXPECT_EQ(ran.exitCode, 0) << ran.err;
  const std::string text = written();
  EXPECT_TRUE(header(text).starts_with("V042\nAorlf ")) << text;
  EXPECT_TRUE(header(text).ends_with("\nD12/31/2024\n^\n")) << text;
  EXPECT_EQ(text.substr(header(text).size()),
            "TD\nN321\nC1\nL1\nP1000.5 Acme\nD01/15/2023\nD01/15/2024\n$1000.00\n$1250.255\n^\n"
            "TD\nN323\nC2\nL3\nP1 Acme\nD01/15/2023\nD01/16/2024\n$1.00\n$2.00\n^\n"
            "TD\nN321\nC1\nL1\nP1 Leap\nD02/29/2020\nD02/28/2021\n$1.00\n$2.00\n^\n"
            "TD\nN323\nC1\nL1\nP1 Leap\nD02/29/2020\nD03/01/2021\n$1.00\n$2.00\n^\n");
}

TEST_F(RecordKinds, TurnsAmountsIntoTxf) {
  EXPECT_EQ(
      run("txf", "reference,amount,copy,line\n287,-12.5,1,2\n", {"--kind", "summary"}).exitCode, 0);
  EXPECT_EQ(written().substr(header(written()).size()), "TS\nN287\nC1\nL2\n$-12.50\n^\n");
  EXPECT_EQ(run("txf", "reference,amount,date,account,check,payee\n287,1,2024-01-31,Main,12,Shop\n",
                {"--kind", "detail"})
                .exitCode,
            0);
  EXPECT_EQ(written().substr(header(written()).size()),
            "TD\nN287\nC1\nL1\n$1.00\nX01/31/2024 Main 12     Shop" +
                std::string(36 + 1 + 40 + 1 + 15, ' ') + "\n^\n");
}

TEST_F(RecordKinds, NamesBadRowsOfTaxTables) {
  const std::string head = "security,shares,bought,sold,cost,proceeds,copy\n";
  EXPECT_EQ(fault(run("txf", head + "Acme,1,2023-01-15,2024-01-15,1,2,0\n", {})),
            "orlf txf: in.csv:2: copy: expected a whole number from 1 on, got '0'");
  EXPECT_EQ(fault(run("txf", head + "Acme,,2023-01-15,2024-01-15,1,2,1\n", {})),
            "orlf txf: in.csv:2: shares: expected an amount such as -1,250.75, (12.50), $5 or 5 "
            "EUR, got ''");
  EXPECT_EQ(fault(run("txf", "reference,amount\nabc,1\n", {"--kind", "summary"})),
            "orlf txf: in.csv:2: reference: expected the number of a tax line such as 287, got "
            "'abc'");
}

}  // namespace
