#include "core/model/undo_commands.h"

#include "core/model/lock_guard.h"

namespace finora {
namespace {

std::string menuText(const char* command, const std::string& label)
{
    std::string text = command;
    if (label.empty()) {
        return text;
    }
    text += ": ";
    for (const char c : label) {
        text += c;
        if (c == '&') {
            text += '&';
        }
    }
    return text;
}

} // namespace

bool undoCommand(CFinoraDoc& doc, Prompter& prompter)
{
    return !refuseWhenLocked(doc, prompter) && doc.undo();
}

bool redoCommand(CFinoraDoc& doc, Prompter& prompter)
{
    return !refuseWhenLocked(doc, prompter) && doc.redo();
}

std::string undoMenuText(const CFinoraDoc& doc)
{
    return menuText("&Отмени", doc.history().undoLabel());
}

std::string redoMenuText(const CFinoraDoc& doc)
{
    return menuText("&Възстанови", doc.history().redoLabel());
}

} // namespace finora
