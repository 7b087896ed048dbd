#pragma once

#include "core/model/prompter.h"

#include <QCoreApplication>

class QWidget;

namespace finora {

// Shows the core's messages as message boxes owned by the main window.
class QtPrompter final : public Prompter {
    Q_DECLARE_TR_FUNCTIONS(finora::QtPrompter)

public:
    explicit QtPrompter(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    Answer show(const Message& message) override;

private:
    QWidget* m_parent;
};

} // namespace finora
