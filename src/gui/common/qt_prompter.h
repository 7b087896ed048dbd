#pragma once

#include "core/model/prompter.h"

class QWidget;

namespace finora {

// Shows the core's messages as message boxes owned by the main window.
class QtPrompter final : public Prompter {
public:
    explicit QtPrompter(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    Answer show(const Message& message) override;

private:
    QWidget* m_parent;
};

} // namespace finora
