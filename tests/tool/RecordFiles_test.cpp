// Tables turned into QIF and TXF files by the tool.
#include <tests/tool/RecordFiles.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace {

using orlftest::kStatement;
using orlftest::RecordFiles;
using orlftest::runTool;
using orlftest::ToolRun;
using orlftest::Words;

TEST_F(RecordFiles, TurnsAStatementIntoQif) {
  const ToolRun ran = qif(kStatement);
  EXPECT_EQ(ran.exitCode, 0);
  EXPECT_EQ(ran.out, path("out") + ": 2 records\n");
  EXPECT_EQ(ran.err, "orlf qif: dates are read as mdy: line 2, '12/24/2023', decides\n");
  EXPECT_EQ(written(),
            "!Account\nNMain\nTBank\n^\n!Type:Bank\n"
            "D12/24/2023\nT-1234.50\nPGrocer\nMweekly\nLFood-Out\n^\n"
            "D12/25/2023\nT2000.00\nPEmployer\nLPay:Main\n^\n");
}

TEST_F(RecordFiles, TellsItsCountsAsJson) {
  const ToolRun ran = qif(kStatement, {"--json"});
  EXPECT_EQ(nlohmann::json::parse(ran.out),
            (nlohmann::json{{"file", path("out")}, {"records", 2}, {"skipped", 0}}));
}

TEST_F(RecordFiles, WritesTheSameInEveryLocaleAndZone) {
  const std::string usual = transactions(kStatement);
  for (const char* locale : {"de_DE", "ar_EG", "hi_IN", "fr_CH", "th_TH"})
    EXPECT_EQ(transactions(kStatement, {"--locale", locale}), usual) << locale;
  for (const char* zone : {"Pacific/Kiritimati", "America/Sao_Paulo", "Africa/Cairo"})
    EXPECT_EQ(transactions(kStatement, {"--tz", zone}), usual) << zone;
}

TEST_F(RecordFiles, MapsColumnsByNumberAndByHeading) {
  const std::string_view table = "13.5.2023;a;12,50;b\n14.5.2023;c;-1.000,00;d\n";
  const std::string expected =
      "D05/13/2023\nT12.50\nPb\nMa\n^\nD05/14/2023\nT-1000.00\nPd\nMc\n^\n";
  EXPECT_EQ(transactions(table, {"--map", "date=1,amount=3,payee=4,memo=2"}), expected);
  const std::string headed = "Tag;Grund;Summe;Wer\n" + std::string(table);
  EXPECT_EQ(transactions(headed, {"--map", "date=tag,amount=3,payee=WER,memo=Grund"}), expected);
  EXPECT_EQ(transactions(headed, {"--map", "date=1,amount=3,payee=4,memo=2"}), expected);
}

TEST_F(RecordFiles, TakesDebitsAndCredits) {
  const std::string map = "date=1,debit=2,credit=3";
  EXPECT_EQ(transactions("2023-01-31,5,\n2023-01-31,,6\n2023-01-31,0,0\n2023-01-31,7.5,0.00\n",
                         {"--map", map}),
            "D01/31/2023\nT-5.00\n^\nD01/31/2023\nT6.00\n^\nD01/31/2023\nT0.00\n^\n"
            "D01/31/2023\nT-7.50\n^\n");
  EXPECT_EQ(transactions("2023-01-31,-5,\n2023-01-31,,6\n", {"--map", map, "--negate"}),
            "D01/31/2023\nT5.00\n^\nD01/31/2023\nT-6.00\n^\n");
}

TEST_F(RecordFiles, RefusesDebitsAndCreditsThatContradict) {
  const Words map{"--map", "date=1,debit=2,credit=3"};
  EXPECT_EQ(fault(qif("2023-01-31,5,6\n", map)),
            "orlf qif: in.csv:1: debit: expected a debit or a credit, of which one is empty or 0, "
            "got '5'");
  EXPECT_EQ(fault(qif("2023-01-31,5,\n2023-01-31,-5,\n", map)),
            "orlf qif: in.csv:2: debit: expected debits of one sign in the column, got '-5'");
  EXPECT_EQ(fault(qif("2023-01-31,,\n", map)),
            "orlf qif: in.csv:1: amount: expected an amount, got ''");
}

TEST_F(RecordFiles, WritesTransfersNumbersAndClearedStates) {
  EXPECT_EQ(transactions("date,amount,category,transfer,number,cleared\n"
                         "2023-01-31,1,Lost,Savings,17,R\n2023-01-31,2,Kept,,,c\n",
                         {}),
            "D01/31/2023\nT1.00\nCR\nN17\nL[Savings]\n^\nD01/31/2023\nT2.00\nCc\nLKept\n^\n");
}

TEST_F(RecordFiles, TellsOfCategoriesThatATransferTakesThePlaceOf) {
  const std::string_view table =
      "date,amount,category,transfer\n2023-01-31,1,Lost,Savings\n2023-01-31,1,Kept,\n"
      "2023-01-31,1,Too,Savings\n";
  const ToolRun ran = qif(table);
  EXPECT_EQ(ran.exitCode, 0);
  EXPECT_NE(ran.err.find("in.csv:2 and in 1 more: category is left out: a transfer has no place "
                         "for it\n"),
            std::string::npos)
      << ran.err;
}

// Readers take what stands in brackets for an account.
TEST_F(RecordFiles, RefusesCategoriesThatReadAsAccounts) {
  const Words map{"--map", "date=1,amount=2,category=3,transfer=4"};
  EXPECT_EQ(fault(qif("2023-01-31,1,[Savings],\n", map)),
            "orlf qif: in.csv:1: category: expected a category, which does not begin with a "
            "bracket as an account does, got '[Savings]'");
  EXPECT_EQ(fault(qif("2023-01-31,1,,Sav]ings\n", map)),
            "orlf qif: in.csv:1: transfer: expected an account without a closing bracket in its "
            "name, got 'Sav]ings'");
  EXPECT_EQ(fault(run("qif", "name\n[X]\n", {"--kind", "categories"})),
            "orlf qif: in.csv:2: name: expected a category, which does not begin with a bracket as "
            "an account does, got '[X]'");
  EXPECT_EQ(transactions("2023-01-31,1,Food [x],[Sav\n", map), "D01/31/2023\nT1.00\nL[[Sav]\n^\n");
}

TEST_F(RecordFiles, KeepsAFieldToItsLine) {
  EXPECT_EQ(transactions("2023-01-31,1,\"Shop\n^\nD01/01/2000\r\nT-999\u2028x\ty\"\n",
                         {"--map", "date=1,amount=2,payee=3"}),
            "D01/31/2023\nT1.00\nPShop ^ D01/01/2000 T-999 x y\n^\n");
}

TEST_F(RecordFiles, SkipsLinesAtTheBeginning) {
  const std::string_view table = "My bank\r\n\"open\r\n2023-01-31;1,5\r\n2023-01-32;2\r\n";
  const Words options{"--skip-lines", "2", "--map", "date=1,amount=2", "--skip-bad"};
  const ToolRun ran = qif(table, options);
  EXPECT_EQ(ran.exitCode, 0) << ran.err;
  EXPECT_TRUE(written().ends_with("!Type:Bank\nD01/31/2023\nT1.50\n^\n")) << written();
  EXPECT_NE(ran.err.find(":4: date: expected"), std::string::npos) << ran.err;
}

TEST_F(RecordFiles, NamesABadRowAndWritesNothing) {
  const std::string_view table =
      "2023-01-31,1\n2023-02-30,2\nTotal,3\n2023-02-01,x\n2023-02-28,4\n";
  const Words map{"--map", "date=1,amount=2"};
  EXPECT_EQ(fault(qif(table, map)),
            "orlf qif: in.csv:2: date: expected a date of the column's format, got '2023-02-30'");
  const ToolRun ran = qif(table, {"--map", "date=1,amount=2", "--skip-bad"});
  EXPECT_EQ(ran.exitCode, 0);
  EXPECT_EQ(ran.out, path("out") + ": 2 records, 3 rows left out\n");
  for (const char* part : {":2: date: ", ":3: date: ", ":4: amount: "})
    EXPECT_NE(ran.err.find(part), std::string::npos) << part;
  EXPECT_TRUE(written().ends_with("T1.00\n^\nD02/28/2023\nT4.00\n^\n")) << written();
}

TEST_F(RecordFiles, LeavesTheTargetAsItWasWhereTheJobFails) {
  write("out", "old");
  EXPECT_EQ(qif("2023-01-31,1\n2023-01-31,x\n", {"--map", "date=1,amount=2"}).exitCode, 1);
  EXPECT_EQ(written(), "old");
  EXPECT_EQ(names(), (Words{"in.csv", "out"}));
}

TEST_F(RecordFiles, AsksWhereTheOrderOfDatesIsOpen) {
  const std::string_view table = "03/04/2021,1\n05/04/2021,2\n";
  const ToolRun ran = qif(table, {"--map", "date=1,amount=2"});
  EXPECT_EQ(fault(ran),
            "orlf qif: in.csv: the dates fit more than one order: --date-format dmy or mdy tells "
            "which");
  EXPECT_NE(ran.err.find("dmy: 2021-04-03 to 2021-04-05, ascending"), std::string::npos);
  EXPECT_NE(ran.err.find("mdy: 2021-03-04 to 2021-05-04, ascending"), std::string::npos);
  EXPECT_EQ(transactions(table, {"--map", "date=1,amount=2", "--date-format", "dmy"}),
            "D04/03/2021\nT1.00\n^\nD04/05/2021\nT2.00\n^\n");
}

TEST_F(RecordFiles, AsksWhereTheDecimalMarkIsOpen) {
  const std::string_view table = "2021-04-30;1.234\n2021-04-30;5\n";
  const std::string map = "date=1,amount=2";
  EXPECT_EQ(fault(qif(table, {"--map", map})),
            "orlf qif: in.csv: nothing tells whether line 1, '1.234', has a decimal mark or groups "
            "of three: --decimal point or comma does");
  EXPECT_EQ(transactions(table, {"--map", map, "--decimal", "comma"}),
            "D04/30/2021\nT1234.00\n^\nD04/30/2021\nT5.00\n^\n");
  EXPECT_EQ(transactions(table, {"--map", map, "--decimal", "point"}),
            "D04/30/2021\nT1.234\n^\nD04/30/2021\nT5.00\n^\n");
}

TEST_F(RecordFiles, ReadsAndWritesEncodings) {
  const std::string_view latin = "2023-01-31,1,caf\xE9\n";
  const std::string map = "date=1,amount=2,payee=3";
  EXPECT_EQ(transactions(latin, {"--map", map, "--encoding", "latin-1"}),
            "D01/31/2023\nT1.00\nPcafé\n^\n");
  EXPECT_EQ(transactions(latin,
                         {"--map", map, "--encoding", "latin-1", "--output-encoding", "mac-roman"}),
            "D01/31/2023\nT1.00\nPcaf\x8E\n^\n");
}

TEST_F(RecordFiles, NamesARowThatTheEncodingCannotHold) {
  const std::string_view table = "2023-01-31,1,ok\n2023-01-31,2,日本\n";
  const Words options{"--map", "date=1,amount=2,payee=3", "--output-encoding", "latin-1"};
  EXPECT_EQ(fault(qif(table, options)),
            "orlf qif: in.csv:2: record: expected characters of the output's encoding, got others");
}

TEST_F(RecordFiles, RefusesAnAccountThatTheEncodingCannotHold) {
  EXPECT_EQ(fault(run("qif", kStatement, {"--account", "日本", "--output-encoding", "latin-1"}), 2),
            "orlf qif: --account: expected characters of the output's encoding, got '日本'");
  EXPECT_EQ(fault(run("qif", "date,action\n2023-01-31,Div\n",
                      {"--account", "日本", "--kind", "investments", "--output-encoding", "ascii"}),
                  2),
            "orlf qif: --account: expected characters of the output's encoding, got '日本'");
}

TEST_F(RecordFiles, KeepsAnAccountToItsLine) {
  EXPECT_EQ(run("qif", kStatement, {"--account", " A\n^\u2028!\u0085B\t"}).exitCode, 0);
  EXPECT_TRUE(written().starts_with("!Account\nNA ^ ! B\nTBank\n^\n")) << written();
  for (const char* account : {"", " ", "\n", "\u2028"})
    EXPECT_EQ(run("qif", kStatement, {"--account", account}).exitCode, 2) << account;
}

TEST_F(RecordFiles, BeginsUTF16WithOneByteOrderMark) {
  const auto inUTF16 = [](std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char c : text) bytes.append({c, '\0'});
    return bytes;
  };
  EXPECT_EQ(
      qif("2023-01-31,1\n", {"--map", "date=1,amount=2", "--output-encoding", "utf-16"}).exitCode,
      0);
  EXPECT_EQ(written(), inUTF16("!Account\nNMain\nTBank\n^\n!Type:Bank\nD01/31/2023\nT1.00\n^\n"));
  EXPECT_EQ(
      run("txf", "reference,amount\n287,1\n", {"--kind", "summary", "--output-encoding", "utf-16"})
          .exitCode,
      0);
  const std::string text = written();
  EXPECT_TRUE(text.starts_with(inUTF16("V042\nAorlf "))) << text;
  EXPECT_EQ(text.find("\xFF\xFE", 1), std::string::npos);
}

TEST_F(RecordFiles, RefusesLongAmountsAndOpenMarks) {
  const Words map{"--map", "date=1,amount=2"};
  EXPECT_EQ(fault(qif("2023-01-31,1234567890123456.7\n", map)),
            "orlf qif: in.csv:1: amount: expected an amount of at most 15 digits, got "
            "'1234567890123456.7'");
  EXPECT_EQ(fault(qif("2023-01-31,1\n2023-01-31,\"2\n", map)),
            "orlf qif: in.csv:2: expected a closing quotation mark, got the end of the file");
  EXPECT_EQ(fault(qif("\n\n", map)), "orlf qif: in.csv: expected rows, got none");
  EXPECT_EQ(fault(qif("date,amount\n")), "orlf qif: in.csv: expected rows, got headings alone");
  EXPECT_EQ(fault(qif("a,b\n", map)), "orlf qif: in.csv: expected rows, got headings alone");
}

TEST_F(RecordFiles, RefusesWordsThatMakeNoSense) {
  const Words given[] = {{"--kind", "loans"},
                         {"--type", "invst"},
                         {"--type", "wallet"},
                         {"--decimal", "dot"},
                         {"--date-format", "ddmm"},
                         {"--skip-lines", "-1"},
                         {"--encoding", "ebcdic"},
                         {"--separator", "pipe"},
                         {"--map", "colour=1"},
                         {"--map", "date=1,payee=2"},
                         {"--map", "date=1,amount=3,debit=3"}};
  for (const Words& words : given) fault(qif(kStatement, words), 2);
  fault(run("qif", kStatement, {}), 2);
  fault(run("qif", kStatement, {"--account", "A", "--kind", "prices"}), 2);
  EXPECT_EQ(fault(qif(kStatement, {"--kind", "loans"}), 2),
            "orlf qif: --kind: expected transactions, investments, securities, prices or "
            "categories, got 'loans'");
  EXPECT_EQ(fault(qif(kStatement, {"--map", "amount=3"}), 2),
            "orlf qif: --map: expected a column for date, got none");
  const std::string encodings =
      "--output-encoding: expected utf-8, utf-16, utf-16be, utf-16le, ascii, latin-1, windows-1252 "
      "or mac-roman, got 'ebcdic'";
  EXPECT_EQ(fault(qif(kStatement, {"--output-encoding", "ebcdic"}), 2), "orlf qif: " + encodings);
  EXPECT_EQ(fault(run("txf", kStatement, {"--output-encoding", "ebcdic"}), 2),
            "orlf txf: " + encodings);
  fault(run("txf", kStatement, {"--kind", "losses"}), 2);
}

TEST_F(RecordFiles, RefusesStandardInputAndOutput) {
  for (const char* command : {"qif", "txf"}) {
    Words words{command, "-", "-o", path("out")};
    if (words.front() == "qif") words.insert(words.end(), {"--account", "A"});
    const ToolRun ran = runTool(words);
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_EQ(ran.err, "orlf " + words.front() +
                           ": standard input: expected a file that can be read twice\n");
    EXPECT_EQ(names(), Words{});
  }
  write("in.csv", kStatement);
  const ToolRun ran = runTool({"qif", path("in.csv"), "-o", "-", "--account", "A"});
  EXPECT_EQ(fault(ran, 2), "orlf qif: --output: expected the name of a file, got '-'");
}

TEST_F(RecordFiles, RefusesToTakeThePlaceOfTheTable) {
  write("in.csv", kStatement);
  ASSERT_EQ(::symlink(path("in.csv").c_str(), path("link").c_str()), 0);
  for (const char* command : {"qif", "txf"}) {
    for (const std::string& output : {path("in.csv"), path("link"), path("./in.csv")}) {
      Words words{command, path("in.csv"), "-o", output};
      if (words.front() == "qif") words.insert(words.end(), {"--account", "A"});
      const ToolRun ran = runTool(words);
      EXPECT_EQ(ran.exitCode, 2);
      EXPECT_TRUE(ran.err.starts_with("orlf " + words.front() +
                                      ": --output: expected another file than the table, got '"))
          << ran.err;
      EXPECT_EQ(read("in.csv"), kStatement);
    }
  }
}

TEST_F(RecordFiles, RefusesAPipe) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const ToolRun ran = runTool({"qif", path("pipe"), "-o", path("out"), "--account", "A"});
  EXPECT_EQ(ran.exitCode, 1);
  EXPECT_NE(ran.err.find("can be read twice"), std::string::npos) << ran.err;
}

}  // namespace
