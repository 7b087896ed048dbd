// The euro option as a person uses it: chosen from the menu, seen in the list, the totals, the
// cash window and a new operation.
#include "core/model/euro.h"
#include "core/model/number_text.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace finora::test {
namespace {

class EuroViewTest : public DesktopSession {
protected:
    EuroViewTest() { openGenerated(QStringLiteral("евро.fnr"), 300, 5); }

    void chooseMoney(const char* item)
    {
        user::chooseMenu(m_frame.get(),
                         {QStringLiteral("Настройки"), QStringLiteral("Суми в основната валута"),
                          QString::fromUtf8(item)});
    }
    QString header(int column)
    {
        return table()->model()->headerData(column, Qt::Horizontal).toString();
    }
    QString total(const char* name)
    {
        return m_frame->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }
    // The list's own lev total, as the label should show it in euro.
    static QString inEuro(double levs)
    {
        return QString::fromStdString(amountText(levsToEuro(levs))) + QStringLiteral(" EUR");
    }
    void shoot(const char* why)
    {
        if (!qEnvironmentVariableIsEmpty("FINORA_SHOTS_DIR")) {
            user::saveShots(QString::fromLatin1(why));
        }
    }
};

TEST_F(EuroViewTest, TheMenuOptionShowsTheListTotalsCashAndNewEuroPaymentInEuro)
{
    EXPECT_TRUE(header(kColAmountBgl).endsWith(QStringLiteral("BGL")));
    chooseMoney("в евро (EUR), по 1.95583 лв за 1 евро");

    const ListTotals& levs = m_frame->view().list().totals();
    EXPECT_TRUE(header(kColAmountBgl).endsWith(QStringLiteral("EUR")));
    EXPECT_EQ(total("income"), inEuro(levs.income));
    EXPECT_EQ(total("balance"), inEuro(levs.income - levs.expense));
    EXPECT_TRUE(table()->isColumnHidden(kColAmountEuro));
    shoot("list");

    user::ExpectDialog cash([&](QDialog* d) {
        shoot("cash");
        auto* list = d->findChild<QTreeWidget*>(QStringLiteral("cashList"));
        ASSERT_NE(list, nullptr);
        EXPECT_TRUE(list->headerItem()->text(3).endsWith(QStringLiteral("EUR")));
        bool sawEuro = false;
        for (int r = 0; r < list->topLevelItemCount(); ++r) {
            if (list->topLevelItem(r)->text(1) == QStringLiteral("EUR")) {
                sawEuro = true;
                EXPECT_EQ(list->topLevelItem(r)->text(4).toDouble(), kLevsPerEuro);
            }
        }
        EXPECT_TRUE(sawEuro);
        d->reject();
    });
    user::press(m_frame.get(), Qt::Key_F1, Qt::ControlModifier);
    cash.verify();

    user::ExpectDialog editor([&](QDialog* d) {
        EXPECT_EQ(d->findChild<QComboBox*>(QStringLiteral("currency"))->currentText(),
                  QStringLiteral("EUR"));
        auto* amount = d->findChild<QLineEdit*>(QStringLiteral("amount"));
        user::retype(amount, QStringLiteral("10"));
        EXPECT_EQ(d->findChild<QLineEdit*>(QStringLiteral("rate"))->text().toDouble(),
                  kLevsPerEuro);
        EXPECT_EQ(d->findChild<QLineEdit*>(QStringLiteral("value"))->text(),
                  QStringLiteral("19.56"));
        d->reject();
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();

    chooseMoney("в лева и в евро едновременно");
    EXPECT_FALSE(table()->isColumnHidden(kColAmountEuro));
    EXPECT_TRUE(total("income").endsWith(inEuro(levs.income)));
    shoot("dual");

    chooseMoney("в лева (BGL)");
    EXPECT_TRUE(header(kColAmountBgl).endsWith(QStringLiteral("BGL")));
    EXPECT_TRUE(total("income").endsWith(QStringLiteral(" BGL")));
    EXPECT_FALSE(m_frame->document().isModified());
}

} // namespace
} // namespace finora::test
