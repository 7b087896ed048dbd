#pragma once

#include "core/model/finora_doc.h"

#include <QObject>
#include <QString>

namespace finora {

// What undo and redo offer and the modified mark, as signals: the document tells of every
// change, undo and save, and only what differs from before is sent on.
class UndoState final : public QObject {
    Q_OBJECT

public:
    UndoState(CFinoraDoc& doc, QObject* parent);
    ~UndoState() override;
    UndoState(const UndoState&) = delete;
    UndoState& operator=(const UndoState&) = delete;

    // Sends every signal with the state as it stands, for those connected after the start.
    void announce();

Q_SIGNALS:
    void canUndoChanged(bool can);
    void canRedoChanged(bool can);
    void undoTextChanged(const QString& text);
    void redoTextChanged(const QString& text);
    void modifiedChanged(bool modified);

private:
    void update(bool always);

    CFinoraDoc& m_doc;
    bool m_canUndo = false;
    bool m_canRedo = false;
    QString m_undoText;
    QString m_redoText;
    bool m_modified = false;
};

} // namespace finora
