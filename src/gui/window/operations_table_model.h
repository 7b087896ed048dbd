#pragma once

#include "core/query/operations_list.h"

#include <QAbstractTableModel>

namespace finora {

// The main list as Qt sees it: a view of the core's OperationsList, so a million rows cost no
// widget items and their texts are made only for the rows on screen.
class OperationsTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit OperationsTableModel(OperationsList& list, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    // Call around anything that changes the list's rows.
    void beginChange() { beginResetModel(); }
    void endChange() { endResetModel(); }

private:
    OperationsList& m_list;
};

} // namespace finora
