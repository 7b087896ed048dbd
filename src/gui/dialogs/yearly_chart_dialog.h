#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/reports/yearly_summary.h"
#include "render/chart.h"

#include <QDialog>
#include <QPixmap>
#include <memory>

class QLineEdit;

namespace finora {

// "Диаграма на приходите и разходите по месеци ...": two bars a month, income and expense in
// BGL, for the year in the field, from every operation of the ledger.
class YearlyChartDialog final : public QDialog {
    Q_OBJECT

public:
    enum class DrawMode { First = 0, YearChanged = 1, Refresh = 2 };

    // `money`: the sums are drawn in leva or in euro.
    YearlyChartDialog(const CFinoraDoc& doc, int year, Prompter& prompter, MainMoney money,
                      QWidget* parent = nullptr);
    ~YearlyChartDialog() override;

    int year() const { return m_year; }
    const YearlySummary& summary() const { return m_summary; }
    const Chart& chart() const { return *m_chart; }
    // The chart as last drawn.
    const QPixmap& picture() const;
    void draw(DrawMode mode);
    void stepYear(int step);
    // Writes the chart as PNG; a failure is said.
    bool savePicture(const QString& path) const;

    static constexpr int kSpinMinimum = 2000;
    static constexpr int kSpinMaximum = 2020;
    static constexpr const char* kRepaintText =
        QT_TR_NOOP("кликнете бутона \"обнови\" за опресняване на графиката...");

protected:
    void showEvent(QShowEvent* event) override;

private:
    class Frame;

    const CFinoraDoc& m_doc;
    Prompter& m_prompter;
    MainMoney m_money;
    int m_year;
    YearlySummary m_summary;
    std::unique_ptr<Chart> m_chart;
    bool m_drawn = false;
    Frame* m_frame;
    QLineEdit* m_yearEdit;
};

} // namespace finora
