#include "gui/window/undo_state.h"

#include "core/model/undo_commands.h"

namespace finora {

UndoState::UndoState(CFinoraDoc& doc, QObject* parent) : QObject(parent), m_doc(doc)
{
    m_doc.setStateHandler([this] { update(false); });
}

UndoState::~UndoState()
{
    m_doc.setStateHandler({});
}

void UndoState::announce()
{
    update(true);
}

void UndoState::update(bool always)
{
    const auto send = [always](auto& kept, auto now, auto signal) {
        if (always || kept != now) {
            kept = now;
            signal(now);
        }
    };
    send(m_canUndo, m_doc.history().canUndo(), [this](bool on) { Q_EMIT canUndoChanged(on); });
    send(m_canRedo, m_doc.history().canRedo(), [this](bool on) { Q_EMIT canRedoChanged(on); });
    send(m_undoText, QString::fromStdString(undoMenuText(m_doc)),
         [this](const QString& text) { Q_EMIT undoTextChanged(text); });
    send(m_redoText, QString::fromStdString(redoMenuText(m_doc)),
         [this](const QString& text) { Q_EMIT redoTextChanged(text); });
    send(m_modified, m_doc.isModified(), [this](bool on) { Q_EMIT modifiedChanged(on); });
}

} // namespace finora
