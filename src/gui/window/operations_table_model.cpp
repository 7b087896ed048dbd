#include "gui/window/operations_table_model.h"

#include "core/text/cp1251.h"

namespace finora {

OperationsTableModel::OperationsTableModel(OperationsList& list, QObject* parent)
    : QAbstractTableModel(parent), m_list(list)
{}

int OperationsTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_list.rowCount());
}

int OperationsTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kListColumnCount;
}

QVariant OperationsTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= kListColumnCount) {
        return {};
    }
    if (role == Qt::DisplayRole) {
        if (!m_list.isCurrent()) {
            return QString(); // the rows wait for their refresh
        }
        return QString::fromStdString(cp1251::toUtf8(
            m_list.shownText(static_cast<std::size_t>(index.row()), index.column())));
    }
    if (role == Qt::TextAlignmentRole) {
        switch (listColumns()[static_cast<std::size_t>(index.column())].alignment) {
        case ColumnAlignment::Right:
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        case ColumnAlignment::Centre:
            return QVariant::fromValue(Qt::AlignHCenter | Qt::AlignVCenter);
        case ColumnAlignment::Left:
            return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
        }
    }
    return {};
}

QVariant OperationsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= kListColumnCount) {
        return {};
    }
    return QString::fromUtf8(listColumnHeader(section, m_list.totals().money.mode()));
}

} // namespace finora
