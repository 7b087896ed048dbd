#include "cli/cli_app.h"
#include "cli/cli_fixture.h"
#include "core/demo/ledger_generator.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/document_storage.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "core/text/cp1251.h"
#include "support/ledger_builders.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

TEST_F(CliTest, NewWritesAn37ByteLedgerAndWillNotOverwriteWithoutForce)
{
    const std::string file = path("празен.fnr");
    EXPECT_EQ(run({"new", file}).status, 0);
    EXPECT_EQ(read(file), serializeLedger(Ledger()));
    EXPECT_EQ(read(file).size(), 37u);
    write(file, "precious");
    const CliResult again = run({"new", file});
    EXPECT_EQ(again.status, cli::kNotWritten);
    EXPECT_EQ(read(file), "precious");
    EXPECT_EQ(run({"new", file, "--force"}).status, 0);
    EXPECT_EQ(run({"new", path("missing/x.fnr")}).status, cli::kNotWritten);
}

TEST_F(CliTest, ConvertKeepsACurrentFileByteForByte)
{
    const std::string file = path("g.fnr");
    ASSERT_EQ(run({"generate", file, "--operations", "3000", "--seed", "9"}).status, 0);
    const std::string before = read(file);
    ASSERT_EQ(run({"convert", file, "-o", path("out.fnr")}).status, 0);
    EXPECT_EQ(read(path("out.fnr")), before);
    // A generated ledger is the same for the same seed and differs for another.
    ASSERT_EQ(run({"generate", path("h.fnr"), "--operations", "3000", "--seed", "9"}).status, 0);
    EXPECT_EQ(read(path("h.fnr")), before);
    ASSERT_EQ(run({"generate", path("i.fnr"), "--operations", "3000", "--seed", "10"}).status, 0);
    EXPECT_NE(read(path("i.fnr")), before);
}

TEST_F(CliTest, OlderVersionsAreConvertedWithoutAQuestion)
{
    for (const auto& [version, paid, master] :
         {std::tuple{1.0, true, false}, std::tuple{1.33, false, false},
          std::tuple{10.4, true, false}, std::tuple{1000.0, true, false}}) {
        const std::string file = path("old.fnr");
        write(file, test::legacyBytes(version, test::sampleLedger(), paid, master));
        const CliResult r = run({"convert", file});
        ASSERT_EQ(r.status, 0) << version << r.err;
        const std::string bytes = read(file);
        Ledger l;
        ByteReader reader(bytes);
        ASSERT_EQ(readLedger(reader, l, [](double) { return false; }).status, ReadStatus::Ok);
        EXPECT_EQ(l.operations.size(), 3u);
        EXPECT_EQ(l.counters.nextMasterId, 0);
    }
}

TEST_F(CliTest, VersionIsTheProgramsOwnWhateverElseIsGiven)
{
    const CliResult r = run({"--version"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out.rfind("finora-cli ", 0), 0u);
    EXPECT_EQ(run({"info", path("none.fnr"), "--version"}).out, r.out);
    EXPECT_NE(run({"--help"}).out.find("--version"), std::string::npos);
}

TEST_F(CliTest, EveryFailureHasItsExitStatusAndOneLineNamingTheFile)
{
    const std::string newer = path("newer.fnr");
    write(newer, test::legacyBytes(1.41, test::sampleLedger(), true, true));
    const std::string cut = path("cut.fnr");
    write(cut, serializeLedger(test::sampleLedger()).substr(0, 50));
    const std::string folder = path("папка.fnr");
    fs::create_directories(pathFromUtf8(folder));
    const std::string good = path("good.fnr");
    ASSERT_EQ(run({"new", good}).status, 0);
    const std::string kept = path("kept.fnr"); // refused by its mode, even for root
    write(kept, "precious");
    fs::permissions(pathFromUtf8(kept), fs::perms::owner_read);
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string named; // the file the error line names; "" for none
    };
    const Case cases[] = {
        {{"info", newer}, cli::kNewerFormat, ""},
        {{"dump", cut, "--json"}, cli::kUnreadable, cut},
        {{"convert", cut, "-o", path("out.fnr")}, cli::kUnreadable, cut},
        {{"info", path("none.fnr")}, cli::kUnreadable, path("none.fnr")},
        {{"list", folder}, cli::kUnreadable, folder},
        {{"new", path("missing/x.fnr")}, cli::kNotWritten, path("missing/x.fnr")},
        {{"convert", good, "-o", kept}, cli::kNotWritten, kept},
        {{}, cli::kUsage, ""},
        {{"frobnicate", cut}, cli::kUsage, ""},
        {{"info"}, cli::kUsage, ""},
        {{"info", cut, "--bogus"}, cli::kUsage, ""},
        {{"generate", cut}, cli::kUsage, ""},
        {{"generate", cut, "--operations", "12x"}, cli::kUsage, ""},
        {{"generate", cut, "--operations", "-5"}, cli::kUsage, ""},
        {{"--now", "2024-02-30 10:00:00", "new", path("n.fnr")}, cli::kUsage, ""},
        // Without a renderer (this library alone) the drawing commands are not there.
        {{"chart", cut, "2026", "--png", path("c.png")}, cli::kUsage, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.empty() ? std::string("(nothing)") : c.args.front());
        const CliResult r = run(c.args);
        EXPECT_EQ(r.status, c.status);
        if (c.status != cli::kUsage) {
            EXPECT_EQ(r.err.rfind("finora-cli: ", 0), 0u) << r.err;
            EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        }
        EXPECT_NE(r.err.find(c.named), std::string::npos) << r.err;
    }
    EXPECT_FALSE(fs::exists(pathFromUtf8(path("out.fnr"))));
    EXPECT_FALSE(fs::exists(path("n.fnr")));
    EXPECT_EQ(read(kept), "precious");
    fs::permissions(pathFromUtf8(kept), fs::perms::owner_all);
    EXPECT_NE(run({"--help"}).out.find("generate FILE --operations N"), std::string::npos);
}

TEST_F(CliTest, NamesTheSystemCannotTakeSayWhyAndDashDashEndsTheOptions)
{
    const std::string tooLong = path(std::string(300, 'a') + ".fnr");
    const std::string undecodable = path("\xEF\xBF\xBD.fnr"); // a name that was not UTF-8
    for (const auto& [name, reason] :
         {std::pair{tooLong, FileError::NameTooLong}, std::pair{undecodable, FileError::BadName}}) {
        SCOPED_TRACE(name);
        const CliResult r = run({"info", name});
        EXPECT_EQ(r.status, cli::kUnreadable);
        EXPECT_NE(r.err.find(describe(reason)), std::string::npos) << r.err;
    }
    // "--" ends the options, so a ledger may be named "-x.fnr".
    const fs::path before = fs::current_path();
    fs::current_path(dir);
    const CliResult r = run({"new", "--", "-x.fnr"});
    fs::current_path(before);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::exists(dir / "-x.fnr"));
}

TEST_F(CliTest, ALockedLedgerShowsItsOperationsOnlyForTheRightPassword)
{
    Ledger l = test::sampleLedger();
    l.lockText = "13340520280"; // the digest of "secret"
    const std::string file = path("locked.fnr");
    write(file, serializeLedger(l));
    EXPECT_EQ(run({"dump", file, "--json"}).status, cli::kLocked);
    EXPECT_EQ(run({"dump", file, "--json", "--password", "wrong"}).status, cli::kLocked);
    const CliResult ok = run({"dump", file, "--json", "--password=secret"});
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_NE(ok.out.find("\"lock_text\":\"13340520280\""), std::string::npos);
    // Counts are no secret.
    const CliResult info = run({"info", file, "--json"});
    EXPECT_EQ(info.status, 0);
    EXPECT_NE(info.out.find("\"locked\":true"), std::string::npos);
}

TEST_F(CliTest, DumpPrintsEveryRecordWithTextsInUtf8AndExactNumbers)
{
    Ledger l;
    l.categories.append(Category(1, cp1251::fromUtf8OrThrow("Храна \"вкъщи\""), 0));
    for (std::size_t n : {254u, 255u, 65533u, 65534u, 70000u}) {
        l.operations.append(Operation(static_cast<std::int32_t>(n), DateTime(45000.125, 0),
                                      std::string(n, '\xE4'), kIncome, 1, 0.1, 0,
                                      0.30000000000000004, "", DateTime(1.5, 2), 1, 0));
    }
    const std::string file = path("strings.fnr");
    write(file, serializeLedger(l));
    const CliResult r = run({"dump", file, "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find(R"({"id":1,"name":"Храна \"вкъщи\"","parent":0})"), std::string::npos);
    for (std::size_t n : {254u, 255u, 65533u, 65534u, 70000u}) {
        std::string d;
        for (std::size_t i = 0; i < n; ++i) {
            d += "д";
        }
        EXPECT_NE(r.out.find("\"id\":" + std::to_string(n) +
                             ",\"date\":{\"status\":0,\"days\":45000.125},"
                             "\"description\":\"" +
                             d + "\""),
                  std::string::npos)
            << n;
    }
    EXPECT_NE(r.out.find(R"("amount":0.1,"currency":0,"amount_bgl":0.30000000000000004)"),
              std::string::npos);
    EXPECT_NE(r.out.find(R"("last_modified":{"status":2,"days":1.5})"), std::string::npos);
    // And the strings come back whole through convert.
    ASSERT_EQ(run({"convert", file, "-o", path("copy.fnr")}).status, 0);
    EXPECT_EQ(read(path("copy.fnr")), read(file));
}

TEST_F(CliTest, TheUsersOptionsAreReadButNeverWritten)
{
    settings.writeText("Settings", "BackupDir", pathToUtf8(dir / "nowhere") + "/");
    const std::size_t writes = settings.writeCount();
    const std::string file = path("a.fnr");
    // BackupDir was honoured: the ledger is written, and its backup's failure is said apart.
    const CliResult made = run({"new", file});
    EXPECT_EQ(made.status, cli::kBackupNotWritten);
    EXPECT_NE(made.err.find("nowhere/a.fnr.bak"), std::string::npos) << made.err;
    EXPECT_TRUE(fs::exists(file));
    EXPECT_FALSE(fs::exists(file + ".bak"));
    EXPECT_EQ(run({"info", file}).status, 0);
    EXPECT_EQ(settings.writeCount(), writes);
    EXPECT_FALSE(settings.contains("Settings", "LastFileUsed"));
}

namespace {

// A small ledger with Cyrillic texts, a subcategory, a foreign currency and a comma in a note.
Ledger listLedger()
{
    Ledger l;
    l.currencies.append(Currency(1, "EUR"));
    l.categories.append(Category(1, cp1251::fromUtf8OrThrow("Храна"), 0));
    l.categories.append(Category(2, cp1251::fromUtf8OrThrow("Пазар"), 1));
    l.categories.append(Category(3, cp1251::fromUtf8OrThrow("Заплата"), 0));
    l.operations.append(Operation(1, DateTime::fromParts(2024, 1, 5),
                                  cp1251::fromUtf8OrThrow("Заплата"), kIncome, 3, 2000, 0, 2000, "",
                                  DateTime::fromParts(2024, 1, 5, 9, 7, 2), 1, 0));
    l.operations.append(Operation(2, DateTime::fromParts(2024, 1, 6),
                                  cp1251::fromUtf8OrThrow("Ябълки"), kExpense, 2, 4.5, 0, 4.5,
                                  "kg, red \"gala\"", {}, 0, 0));
    l.operations.append(Operation(3, DateTime::fromParts(2024, 2, 7), "Hotel", kExpense, 1, 50, 1,
                                  97.79, "", {}, 1, 4));
    l.counters = {1, 3, 3, 4};
    return l;
}

} // namespace

TEST_F(CliTest, ListPrintsTheMainWindowsCellsSelectionAndTotals)
{
    const std::string file = path("l.fnr");
    write(file, serializeLedger(listLedger()));
    const CliResult r = run({"--now", "2024-03-01 10:00:00", "list", file, "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(
        r.out,
        R"({"columns":["#","master_op_id","дата","описание","тип","категория","сума","валута","сума в BGL","забележки","последна модификация","изплатено"],"rows":[)"
        R"({"cells":["3","4","07-02-2024","Hotel","Р","Храна","50.00","EUR","97.79","","30-12-1899 0:0:0","да"],"selected":false},)"
        R"({"cells":["2","0","06-01-2024","Ябълки","Р","Храна :: Пазар","4.50","BGL","4.50","kg, red \"gala\"","30-12-1899 0:0:0","не"],"selected":false},)"
        R"({"cells":["1","0","05-01-2024","Заплата","П","Заплата","2000.00","BGL","2000.00","","5-1-2024 9:7:2","да"],"selected":true}],)"
        R"("totals":{"income":"2000.00 BGL","expense":"102.29 BGL","balance":"1897.71 BGL"}})"
        "\n");
}

TEST_F(CliTest, FilterSearchAndAmountOptionsApplyInOrder)
{
    const std::string file = path("l.fnr");
    write(file, serializeLedger(listLedger()));
    const auto ids = [&](std::vector<std::string> args) {
        args.insert(args.begin(), {"list", file});
        const CliResult r = run(args);
        EXPECT_EQ(r.status, 0) << r.err;
        std::vector<std::string> out;
        std::istringstream lines(r.out);
        for (std::string line; std::getline(lines, line);) {
            if (line.find('\t') != std::string::npos) {
                out.push_back(line.substr(0, line.find('\t')));
            }
        }
        return out;
    };
    EXPECT_EQ(ids({"--category", "1"}), std::vector<std::string>{"3"});
    EXPECT_EQ(ids({"--category", "1", "--subcategories"}), (std::vector<std::string>{"3", "2"}));
    EXPECT_EQ(ids({"--type", "1"}), std::vector<std::string>{"1"});
    EXPECT_EQ(ids({"--paid", "2"}), std::vector<std::string>{"2"});
    EXPECT_EQ(ids({"--currency", "EUR"}), std::vector<std::string>{"3"});
    EXPECT_EQ(ids({"--from", "6-1-2024", "--to", "6-1-2024"}), std::vector<std::string>{"2"});
    EXPECT_EQ(ids({"--search", "ябълки gala", "--in", "description,notes", "--only-matching"}),
              std::vector<std::string>{"2"});
    EXPECT_EQ(ids({"--search", "hotel", "--mode", "not", "--only-matching", "--amount", "2000"}),
              std::vector<std::string>{"1"});
    EXPECT_EQ(ids({"--amount", "97.79", "--also-bgl"}), std::vector<std::string>{"3"});
    EXPECT_EQ(run({"list", file, "--type", "3"}).status, cli::kUsage);
    EXPECT_EQ(run({"list", file, "--mode", "xor", "--search", "a"}).status, cli::kUsage);
    EXPECT_EQ(run({"list", file, "--amount", "12,5"}).status, cli::kUsage);
    EXPECT_EQ(run({"list", file, "--from", "32-1-2024"}).status, cli::kUsage);

    // A saved filter gives its criteria; options beside it win.
    const std::string filter = path("f.ffl");
    ASSERT_EQ(run({"--now", "2024-03-01 10:00:00", "save-filter", filter, "--category", "1",
                   "--subcategories", "--paid", "2"})
                  .status,
              0);
    EXPECT_EQ(ids({"--filter", filter, "--from", "1-1-2024", "--to", "31-12-2024"}),
              std::vector<std::string>{"2"});
    EXPECT_EQ(ids({"--filter", filter, "--from", "1-1-2024", "--to", "31-12-2024", "--paid", "0"}),
              (std::vector<std::string>{"3", "2"}));
    const CliResult shown = run({"show-filter", filter, "--json"});
    EXPECT_EQ(
        shown.out,
        R"({"from":"1-3-2024","to":"1-3-2024","type":0,"categories":[1],"subcategories":true,"currency":":: ВСИЧКИ ВАЛУТИ В BGL ::","paid":2})"
        "\n");
    write(path("bad.ffl"), "nonsense");
    EXPECT_EQ(run({"show-filter", path("bad.ffl"), "--json"}).status, cli::kUnreadable);
}

TEST_F(CliTest, ExportWritesRfc4180Csv)
{
    const std::string file = path("l.fnr");
    write(file, serializeLedger(listLedger()));
    const CliResult r = run({"export", file, "--csv", "--paid", "2"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "#,master_op_id,дата,описание,тип,категория,сума,валута,сума в BGL,забележки,"
                     "последна модификация,изплатено\r\n"
                     "2,0,06-01-2024,Ябълки,Р,Храна :: Пазар,4.50,BGL,4.50,\"kg, red "
                     "\"\"gala\"\"\",30-12-1899 0:0:0,не\r\n");
    EXPECT_EQ(run({"export", file}).status, cli::kUsage);
}

TEST_F(CliTest, CashYearImportAndLock)
{
    const std::string file = path("l.fnr");
    write(file, serializeLedger(listLedger()));
    const CliResult cash = run({"cash", file, "--json"});
    EXPECT_EQ(
        cash.out,
        R"({"columns":["","валута","в наличност","ср. стойност в BGL","сред. курс","бр. операции","приход","разход"],"rows":[)"
        R"({"cells":["0","BGL","2000.00","2000.00","1.000000","2","2000.00","0.00"]},)"
        R"({"cells":["1","EUR","-50.00","-97.79","1.955830","1","0.00","50.00"]}]})"
        "\n");
    const CliResult year = run({"year", file, "2024"});
    EXPECT_EQ(
        year.out,
        R"({"year":2024,"has_data":true,"maximum":2000,"income":[2000,0,0,0,0,0,0,0,0,0,0,0],)"
        R"("expense":[4.5,97.79,0,0,0,0,0,0,0,0,0,0],"year_income":2000,"year_expense":102.29})"
        "\n");

    const CliResult imported =
        run({"--now", "2004-03-05 09:07:02", "import", file, file, "-o", path("m.fnr"), "--json"});
    EXPECT_EQ(
        imported.out,
        R"({"added":0,"skipped":3,"import_category":null,"message":"Данните бяха импортирани успешно. Бяха пропуснати 3 повтарящи се записа."})"
        "\n");
    EXPECT_EQ(read(file), serializeLedger(listLedger())); // written to -o only

    ASSERT_EQ(run({"lock", file, "--new-password", "тайна"}).status, 0);
    for (const char* command : {"list", "cash", "dump"}) {
        EXPECT_EQ(run({command, file, "--json"}).status, cli::kLocked) << command;
    }
    EXPECT_EQ(run({"year", file, "2024"}).status, cli::kLocked);
    EXPECT_EQ(run({"import", file, path("m.fnr")}).status, cli::kLocked);
    EXPECT_EQ(run({"lock", file, "--new-password", "друга"}).status, cli::kLocked);
    EXPECT_EQ(run({"list", file, "--password", "тайна"}).status, 0);
    EXPECT_EQ(run({"unlock", file, "--password", "грешна"}).status, cli::kLocked);
    ASSERT_EQ(run({"unlock", file, "--password", "тайна"}).status, 0);
    EXPECT_EQ(read(file), serializeLedger(listLedger()));
}
