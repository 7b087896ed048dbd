// A bank statement brought in as a user does it: Ctrl+B, the file chosen, the preview corrected
// and confirmed, then taken back with Ctrl+Z.
#include "core/model/lock_guard.h"
#include "core/text/cp1251.h"
#include "support/desktop_session.h"

#include <QComboBox>
#include <QTableWidget>
#include <functional>
#include <set>

using namespace finora;
using namespace finora::test;

namespace {

class StatementImportGuiTest : public DesktopSession {
protected:
    // What a Bulgarian bank writes: Windows-1251, lines before the header, ';' and a decimal
    // comma, the payer and the recipient in columns of their own.
    QString writeBankCsv()
    {
        const std::string text =
            "Банка ДСК ЕАД\r\n"
            "Извлечение по сметка BG80BNBG96611020345678\r\n"
            "Период: 01.03.2026 - 31.03.2026\r\n"
            "\r\n"
            "Дата;Наредител;Получател;Основание;Сума;Валута\r\n"
            "03.03.2026;Иван Петров;Мария Иванова;Наем за март;-450,00;BGN\r\n"
            "05.03.2026;Фирма ООД;Иван Петров;Заплата за февруари;1234,56;BGN\r\n"
            "10.03.2026;Иван Петров;Кафе „Слънце“;Закуска;-12,40;BGN\r\n";
        const QString path = m_dir.filePath(QStringLiteral("извлечение.csv"));
        writeFile(path.toStdString(), cp1251::fromUtf8OrThrow(text));
        return path;
    }

    // Ctrl+B, the file chooser answered with `path`, and `inPreview` on the preview that comes.
    void importWithKeys(const QString& path, const std::function<void(QDialog*)>& inPreview)
    {
        m_host.importPaths = {path.toStdString()};
        user::ExpectDialog preview(inPreview);
        user::press(m_frame.get(), Qt::Key_B, Qt::ControlModifier);
        preview.verify();
    }

    // The preview's payer/recipient column set to the recipient's, as the guess took the payer.
    static void takeRecipientAsPayee(QDialog* preview)
    {
        auto* payee = user::child<QComboBox>(preview, "payeeColumn");
        ASSERT_NE(payee, nullptr);
        EXPECT_EQ(payee->currentText(), QStringLiteral("Наредител"));
        user::pickFromList(payee, QStringLiteral("Получател"));
    }

    std::vector<std::int32_t> operationIds() const
    {
        std::vector<std::int32_t> ids;
        for (const Operation& op : m_frame->document().ledger().operations) {
            ids.push_back(op.id());
        }
        return ids;
    }
};

TEST_F(StatementImportGuiTest, CorrectedCsvImportIsOneUndoStepAndNeverAddedTwice)
{
    openGenerated(QStringLiteral("дом.fnr"), 300, 7);
    user::chooseMenu(m_frame.get(), settingsMenu("Автоматичен запис след всяка операция"));
    const std::vector<std::int32_t> before = operationIds();
    const QString csv = writeBankCsv();

    importWithKeys(csv, [](QDialog* preview) {
        takeRecipientAsPayee(preview);
        // The live preview follows the corrected column before anything is added.
        auto* lines = user::child<QTableWidget>(preview, "statementLines");
        ASSERT_NE(lines, nullptr);
        ASSERT_EQ(lines->rowCount(), 3);
        EXPECT_EQ(lines->item(0, 1)->text(), QStringLiteral("Мария Иванова"));
        user::click(user::button(preview, QStringLiteral("Импортирай")));
    });

    const std::vector<std::int32_t> after = operationIds();
    ASSERT_EQ(after.size(), before.size() + 3);
    std::set<std::string> added;
    std::set<std::int32_t> old(before.begin(), before.end());
    for (const Operation& op : m_frame->document().ledger().operations) {
        if (old.count(op.id()) == 0) {
            added.insert(cp1251::toUtf8(op.description()));
        }
    }
    EXPECT_EQ(added, (std::set<std::string>{"Мария Иванова", "Иван Петров", "Кафе „Слънце“"}));
    EXPECT_EQ(ledgerOnDisk().operations.size(), after.size()); // saved by itself

    // The same file again: every line is known, so there is nothing to import.
    importWithKeys(csv, [](QDialog* preview) {
        takeRecipientAsPayee(preview);
        EXPECT_FALSE(user::button(preview, QStringLiteral("Импортирай"))->isEnabled());
        QTest::keyClick(preview, Qt::Key_Escape);
    });
    EXPECT_EQ(operationIds(), after);

    user::press(m_frame.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(operationIds(), before);
    EXPECT_TRUE(m_prompter.messages().empty());
}

TEST_F(StatementImportGuiTest, AFileThatCannotBeReadIsNamedWithWhereItBroke)
{
    openGenerated(QStringLiteral("дом.fnr"), 50, 3);
    const std::vector<std::int32_t> before = operationIds();
    const QString broken = m_dir.filePath(QStringLiteral("camt.xml"));
    writeFile(broken.toStdString(),
              "<?xml version=\"1.0\"?>\n<Document xmlns=\"urn:iso:std:iso:20022:tech:xsd:"
              "camt.053.001.02\"><BkToCstmrStmt><Stmt><Ntry><Amt Ccy=\"EUR\">12.x</Amt>");
    m_host.importPaths = {broken.toStdString()};
    user::press(m_frame.get(), Qt::Key_B, Qt::ControlModifier);

    ASSERT_EQ(m_prompter.messages().size(), 1u);
    const QString text = QString::fromStdString(lastMessage().text);
    EXPECT_TRUE(text.contains(broken)) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("ред")) || text.contains(QStringLiteral("елемент")))
        << text.toStdString();
    EXPECT_EQ(operationIds(), before);
}

TEST_F(StatementImportGuiTest, RefusedWhileTheLedgerIsLocked)
{
    openGenerated(QStringLiteral("дом.fnr"), 50, 3);
    protectWith(QStringLiteral("тайна"));
    ASSERT_TRUE(m_frame->document().isLocked());
    m_prompter.clear();
    m_host.importPaths = {writeBankCsv().toStdString()};
    user::press(m_frame.get(), Qt::Key_B, Qt::ControlModifier);

    ASSERT_EQ(m_prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage().text, kLockedText);
    EXPECT_TRUE(m_host.importRequests.empty());
}

} // namespace
