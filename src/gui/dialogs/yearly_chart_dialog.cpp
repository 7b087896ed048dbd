#include "gui/dialogs/yearly_chart_dialog.h"

#include "gui/common/window_layout.h"
#include "render/yearly_chart.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
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
        setMinimumSize(480, 300);
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
      m_chart(std::make_unique<Chart>()), m_frame(new Frame(this)),
      m_yearEdit(new QLineEdit(QString::number(year), this))
{
    setWindowTitle(tr("Диаграма на приходите и разходите по месеци ..."));
    setObjectName(QStringLiteral("yearlyChart"));
    m_yearEdit->setObjectName(QStringLiteral("year"));
    m_yearEdit->setValidator(new QIntValidator(m_yearEdit));
    m_yearEdit->setMaximumWidth(
        m_yearEdit->fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 12);
    computeYearlySummary(m_doc, m_year, m_summary, m_money);

    // The spin arrows step the year by one whatever it is; their own range is 2000 to 2020.
    auto* up = new QToolButton(this);
    auto* down = new QToolButton(this);
    up->setArrowType(Qt::UpArrow);
    down->setArrowType(Qt::DownArrow);
    up->setObjectName(QStringLiteral("yearUp"));
    down->setObjectName(QStringLiteral("yearDown"));
    for (QToolButton* b : {up, down}) {
        b->setAutoRepeat(true);
        b->setFixedSize(18, 12);
    }
    auto* spin = new QVBoxLayout;
    spin->setSpacing(0);
    spin->addWidget(up);
    spin->addWidget(down);
    auto* generate = new QPushButton(tr("генерирай диаграма"), this);
    auto* refresh = new QPushButton(tr("обнови"), this);
    auto* save = new QPushButton(tr("запиши като PNG ..."), this);
    auto* exit = new QPushButton(tr("изход"), this);
    generate->setDefault(true);

    connect(up, &QToolButton::clicked, this, [this] { stepYear(1); });
    connect(down, &QToolButton::clicked, this, [this] { stepYear(-1); });
    connect(generate, &QPushButton::clicked, this, [this] {
        m_year = m_yearEdit->text().toInt();
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
    // "изход" to the bottom right corner.
    auto* controls = new QHBoxLayout;
    controls->addWidget(new QLabel(tr("Генерирай диаграма за: "), this));
    controls->addWidget(m_yearEdit);
    controls->addLayout(spin);
    controls->addWidget(generate);
    controls->addWidget(refresh);
    controls->addWidget(save);
    controls->addStretch();
    controls->addWidget(exit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_frame, 1);
    layout->addLayout(controls);
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
    m_year += step;
    m_yearEdit->setText(QString::number(m_year));
    draw(DrawMode::YearChanged);
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
