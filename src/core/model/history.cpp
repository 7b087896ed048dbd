#include "core/model/history.h"

namespace finora {
namespace {

const std::string kNoLabel;

} // namespace

std::string recordsText(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " запис" : " записа");
}

void History::setLimit(std::size_t steps)
{
    m_limit = steps;
    while (m_undo.size() > m_limit) {
        m_undo.pop_front();
    }
    if (m_limit == 0) {
        m_redo.clear();
    }
}

void History::record(HistoryStep step)
{
    if (m_limit == 0) {
        return;
    }
    m_redo.clear();
    step.serial = ++m_lastSerial;
    if (step.label.empty()) {
        step.label = "промяна";
    }
    m_undo.push_back(std::move(step));
    if (m_undo.size() > m_limit) {
        m_undo.pop_front();
    }
}

const std::string& History::undoLabel() const
{
    return m_undo.empty() ? kNoLabel : m_undo.back().label;
}

const std::string& History::redoLabel() const
{
    return m_redo.empty() ? kNoLabel : m_redo.back().label;
}

HistoryStep History::takeUndo()
{
    HistoryStep step = std::move(m_undo.back());
    m_undo.pop_back();
    return step;
}

HistoryStep History::takeRedo()
{
    HistoryStep step = std::move(m_redo.back());
    m_redo.pop_back();
    return step;
}

void History::clear()
{
    m_undo.clear();
    m_redo.clear();
}

} // namespace finora
