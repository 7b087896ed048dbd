#pragma once

#include "core/model/prompter.h"

#include <deque>
#include <vector>

namespace finora {

// Keeps every message it is shown and answers from a queue, falling back to a fixed answer for
// questions (and Ok for plain messages). Tests script dialogues with it.
class RecordingPrompter final : public Prompter {
public:
    explicit RecordingPrompter(Answer defaultAnswer = Answer::Yes) : m_default(defaultAnswer) {}

    Answer show(const Message& message) override
    {
        m_messages.push_back(message);
        if (message.buttons == MessageButtons::Ok) {
            return Answer::Ok;
        }
        if (m_answers.empty()) {
            return m_default;
        }
        const Answer a = m_answers.front();
        m_answers.pop_front();
        return a;
    }

    void queue(Answer answer) { m_answers.push_back(answer); }
    const std::vector<Message>& messages() const { return m_messages; }
    void clear() { m_messages.clear(); }

private:
    Answer m_default;
    std::deque<Answer> m_answers;
    std::vector<Message> m_messages;
};

} // namespace finora
