#include "gui/dialogs/yearly_chart_dialog.h"

#include "gui/common/window_layout.h"
#include "render/yearly_chart.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <utility>

namespace finora {

// The chart frame. A drawing is shown as it is once; every later repaint (something covered
// the frame, a menu closed over it) keeps the picture but writes the request to press "обнови"
// over it, which is how the chart is refreshed. After a resize the picture no longer fits and
// only the request is shown.
class YearlyChartDialog::Frame final : public QWidget {
    Q_OBJECT

public:
    explicit Frame(QWidget* parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("chartFrame"));
        setMinimumSize(480, 240);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    void show(const Chart& chart)
    {
        m_picture = QPixmap(size() * devicePixelRatioF());
        m_picture.setDevicePixelRatio(devicePixelRatioF());
        QPainter painter(&m_picture);
        chart.draw(painter, rect());
        m_fresh = true;
        update();
    }
    const QPixmap& picture() const { return m_picture; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (!m_picture.isNull() && m_picture.deviceIndependentSize().toSize() == size()) {
            painter.drawPixmap(0, 0, m_picture);
            if (std::exchange(m_fresh, false)) {
                return;
            }
        } else {
            painter.fillRect(rect(), palette().window());
        }
        // QPainter's background mode is transparent: the text lies over the picture.
        painter.setPen(palette().windowText().color());
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         YearlyChartDialog::tr(kRepaintText));
    }

private:
    QPixmap m_picture;
    bool m_fresh = false;
};

YearlyChartDialog::YearlyChartDialog(const CFinoraDoc& doc, int year, Prompter& prompter,
                                     MainMoney money, QWidget* parent)
    : QDialog(parent), m_doc(doc), m_prompter(prompter), m_money(money), m_year(year),
      m_chart(std::make_unique<Chart>()), m_frame(new Frame(this)), m_yearEdit(new QSpinBox(this))
{
    setWindowTitle(tr("Диаграма на приходите и разходите по месеци ..."));
    setObjectName(QStringLiteral("yearlyChart"));
    // Any year can be typed; the arrows step it by one and draw at once, a typed year is drawn
    // by "генерирай диаграма" or Enter.
    m_yearEdit->setObjectName(QStringLiteral("year"));
    m_yearEdit->setRange(kFirstYear, kLastYear);
    m_yearEdit->setValue(year);
    m_yearEdit->setKeyboardTracking(false);
    m_yearEdit->setAccessibleName(tr("година"));
    computeYearlySummary(m_doc, m_year, m_summary, m_money);

    auto* generate = new QPushButton(tr("генерирай диаграма"), this);
    auto* refresh = new QPushButton(tr("обнови"), this);
    auto* save = new QPushButton(tr("запиши като PNG ..."), this);
    auto* exit = new QPushButton(tr("изход"), this);
    generate->setDefault(true);

    connect(m_yearEdit, &QSpinBox::valueChanged, this, [this](int shown) {
        if (shown != m_year) {
            m_year = shown;
            draw(DrawMode::YearChanged);
        }
    });
    connect(generate, &QPushButton::clicked, this, [this] {
        m_yearEdit->interpretText();
        m_year = m_yearEdit->value();
        draw(DrawMode::YearChanged);
    });
    connect(refresh, &QPushButton::clicked, this, [this] { draw(DrawMode::Refresh); });
    connect(save, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getSaveFileName(this, tr("Запиши диаграмата"),
                                                          tr("диаграма-%1.png").arg(m_year),
                                                          QStringLiteral("PNG (*.png)"));
        if (!path.isEmpty()) {
            savePicture(path);
        }
    });
    connect(exit, &QPushButton::clicked, this, &QDialog::accept);

    // The frame takes every pixel the dialog grows by; the controls keep to the bottom edge,
    // "изход" to the bottom right corner. Two rows of them, so the dialog fits a small screen at
    // a large scale.
    auto* drawing = new QHBoxLayout;
    auto* caption = new QLabel(tr("Генерирай диаграма за: "), this);
    caption->setBuddy(m_yearEdit);
    drawing->addWidget(caption);
    drawing->addWidget(m_yearEdit);
    drawing->addWidget(generate);
    drawing->addWidget(refresh);
    drawing->addStretch();
    auto* closing = new QHBoxLayout;
    closing->addWidget(save);
    closing->addStretch();
    closing->addWidget(exit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_frame, 1);
    layout->addLayout(drawing);
    layout->addLayout(closing);
    setSizeGripEnabled(true);
    resize(820, 560);
    keepWindowGeometry(this, "yearlyChart");
}

YearlyChartDialog::~YearlyChartDialog() = default;

const QPixmap& YearlyChartDialog::picture() const
{
    return m_frame->picture();
}

void YearlyChartDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!m_drawn) {
        m_drawn = true;
        draw(DrawMode::First);
    }
}

void YearlyChartDialog::stepYear(int step)
{
    m_yearEdit->stepBy(step);
}

void YearlyChartDialog::draw(DrawMode mode)
{
    if (mode != DrawMode::Refresh) {
        computeYearlySummary(m_doc, m_year, m_summary, m_money);
    }
    m_chart = makeYearlyChart(m_summary, m_year);
    m_frame->show(*m_chart);
}

bool YearlyChartDialog::savePicture(const QString& path) const
{
    if (!m_frame->picture().isNull() && m_frame->picture().save(path, "PNG")) {
        return true;
    }
    m_prompter.error(tr("Диаграмата не беше записана във файла „%1“.").arg(path).toStdString());
    return false;
}

} // namespace finora

#include "yearly_chart_dialog.moc"
