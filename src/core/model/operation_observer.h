#pragma once

#include "core/model/operation.h"

namespace finora {

// Hears of every change to the document's operation records, one record at a time, whatever
// made it (an editor, a delete, an import, undo or redo). Indexes kept beside the ledger follow
// the ledger through it instead of being built again after each change.
class OperationObserver {
public:
    virtual ~OperationObserver() = default;
    virtual void operationAdded(const Operation& op) = 0;
    virtual void operationRemoved(const Operation& op) = 0;
    virtual void operationChanged(const Operation& before, const Operation& after)
    {
        operationRemoved(before);
        operationAdded(after);
    }
    // The whole list was replaced (a file was read, the document cleared, every operation
    // deleted or put back): look at the ledger again.
    virtual void operationsReset() = 0;
};

} // namespace finora
