#pragma once

#include "core/statements/csv_layout.h"

#include <QGroupBox>
#include <array>
#include <string>
#include <vector>

class QComboBox;
class QSpinBox;

namespace finora {

// How a CSV statement is laid out, as the user corrects it: the encoding, separator, decimal
// mark, date format, header line and which column holds what. Every change is reported at once
// so the preview can follow it.
class CsvLayoutPanel final : public QGroupBox {
    Q_OBJECT

public:
    explicit CsvLayoutPanel(QWidget* parent = nullptr);

    // Shows a layout with every key set (a guessed one) over the file's header fields; its keys
    // the panel has no field for are kept as they are.
    void present(const CsvLayout& layout, const std::vector<std::string>& header);
    // The file's header fields under the shown layout: the columns' choices. A column chosen
    // before keeps its place.
    void setHeader(const std::vector<std::string>& fields);
    CsvLayout layout() const;

Q_SIGNALS:
    void changed();

private:
    // The columns in the order their combo boxes show.
    enum Column { Date, Payee, Description, Notes, Currency, Amount, Debit, Credit, Count };
    static std::optional<CsvColumn> CsvLayout::*member(Column column);
    void buildFields();
    void connectFields();
    void fillColumn(QComboBox* combo, int chosen);
    int numberOf(const std::optional<CsvColumn>& column) const;

    CsvLayout m_base;
    std::vector<std::string> m_header;
    bool m_showing = false;
    QComboBox* m_encoding = nullptr;
    QComboBox* m_separator = nullptr;
    QComboBox* m_decimalMark = nullptr;
    QComboBox* m_dateFormat = nullptr;
    QSpinBox* m_headerLine = nullptr;
    std::array<QComboBox*, Count> m_columns{};
};

} // namespace finora
