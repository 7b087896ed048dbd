#pragma once

#include <optional>
#include <string>

namespace finora {

// Program: the program's own icon, as an about box shows it.
enum class MessageIcon { None, Information, Warning, Error, Question, Program };
enum class MessageButtons { Ok, YesNo, YesNoCancel };
enum class Answer { Ok, Yes, No, Cancel };

// One modal message: everything a test needs to assert and a window needs to show.
// Texts are UTF-8.
struct Message {
    std::string caption;
    std::string text;
    MessageIcon icon = MessageIcon::None;
    MessageButtons buttons = MessageButtons::Ok;
    // The button Enter presses; without one, the first (Yes or OK).
    std::optional<Answer> defaultButton = std::nullopt;

    bool operator==(const Message&) const = default;
};

// The caption of messages that name none of their own.
inline constexpr const char* kAppCaption = "Finora";

// Core logic never opens a window: it asks through this, and the desktop program answers with
// message boxes while tests answer from a script.
class Prompter {
public:
    virtual ~Prompter() = default;
    virtual Answer show(const Message& message) = 0;

    void inform(std::string text, std::string caption = kAppCaption)
    {
        show({std::move(caption), std::move(text), MessageIcon::Information, MessageButtons::Ok});
    }
    void warn(std::string text, std::string caption = kAppCaption)
    {
        show({std::move(caption), std::move(text), MessageIcon::Warning, MessageButtons::Ok});
    }
    void error(std::string text, std::string caption = kAppCaption)
    {
        show({std::move(caption), std::move(text), MessageIcon::Error, MessageButtons::Ok});
    }
    Answer askYesNo(std::string text, std::string caption = kAppCaption,
                    MessageIcon icon = MessageIcon::Question)
    {
        return show({std::move(caption), std::move(text), icon, MessageButtons::YesNo});
    }
    Answer askYesNoCancel(std::string text, std::string caption = kAppCaption,
                          MessageIcon icon = MessageIcon::Question)
    {
        return show({std::move(caption), std::move(text), icon, MessageButtons::YesNoCancel});
    }
};

} // namespace finora
