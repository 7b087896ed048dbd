#include "core/editors/search_editor.h"
#include "core/lock/lock_commands.h"
#include "core/model/recording_prompter.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;

TEST(SearchEditor, StartsFromTheLastTextAndCaseOnly)
{
    RecordingPrompter prompter;
    SearchEditor e(prompter, "пазар", true);
    EXPECT_EQ(e.request().text, "пазар");
    EXPECT_TRUE(e.request().caseSensitive);
    EXPECT_EQ(e.request().mode, SearchRequest::And);
    EXPECT_FALSE(e.request().exactPhrase);
    EXPECT_FALSE(e.request().inDescription || e.request().inNotes || e.request().inCurrency);
    EXPECT_FALSE(e.request().showOnlyMatching);
}

TEST(SearchEditor, OrAndTheExactPhraseExcludeEachOther)
{
    RecordingPrompter prompter;
    SearchEditor e(prompter, "", false);
    e.chooseMode(SearchRequest::Not);
    e.setExactPhrase(true);
    prompter.queue(Answer::No);
    e.chooseMode(SearchRequest::Or);
    EXPECT_EQ(e.request().mode, SearchRequest::Not); // the previous mode stays
    EXPECT_TRUE(e.request().exactPhrase);
    EXPECT_EQ(
        prompter.messages().back(),
        (Message{"Изберете",
                 "В режим на търсене OR, опцията \"търси същата фраза\" е неприложима. Желаете "
                 "ли да бъде деактивирана?",
                 MessageIcon::Question, MessageButtons::YesNo}));
    prompter.queue(Answer::Yes);
    e.chooseMode(SearchRequest::Or);
    EXPECT_EQ(e.request().mode, SearchRequest::Or);
    EXPECT_FALSE(e.request().exactPhrase);

    e.setExactPhrase(true);
    EXPECT_FALSE(e.request().exactPhrase);
    EXPECT_EQ(prompter.messages().back(),
              (Message{"Невалиден избор", "Съчетанието на тази опция с операция OR е несъвместимо!",
                       MessageIcon::Error, MessageButtons::Ok}));
}

TEST(SearchEditor, AtLeastOneFieldIsRequiredAndAnEmptyTextIsFine)
{
    RecordingPrompter prompter;
    SearchEditor e(prompter, "", false);
    EXPECT_FALSE(e.accept());
    EXPECT_EQ(prompter.messages().back().caption, "Липсва избор");
    e.setFields(false, false, true);
    EXPECT_TRUE(e.accept());
}

TEST(PasswordDialog, LockModeWantsTheSamePasswordTwice)
{
    RecordingPrompter prompter;
    EXPECT_FALSE(acceptPassword(true, "abc", "abd", prompter));
    EXPECT_EQ(prompter.messages().back(), (Message{"Грешка", "Двете пароли не съвпадат",
                                                   MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_TRUE(acceptPassword(true, "", "", prompter));
    EXPECT_TRUE(acceptPassword(false, "abc", "ignored", prompter));
}

TEST(LockCommands, SetUnlockAndRemoveTheProtection)
{
    FixedClock clock(DateTime::fromParts(2025, 1, 1));
    CFinoraDoc doc(clock);
    RecordingPrompter prompter;
    std::optional<std::string> typed;
    bool askedLockMode = false;
    const PasswordAsker ask = [&](bool lockMode) {
        askedLockMode = lockMode;
        return typed;
    };
    EXPECT_EQ(permanentProtectionMenuText(doc), "Задаване на постоянна защита");
    EXPECT_FALSE(permanentProtectionCommand(doc, prompter, ask)); // cancelled
    EXPECT_TRUE(prompter.messages().empty());

    typed = "тайна";
    EXPECT_TRUE(permanentProtectionCommand(doc, prompter, ask));
    EXPECT_TRUE(askedLockMode);
    EXPECT_TRUE(doc.isLocked());
    EXPECT_TRUE(doc.isModified()); // a change like any other: saved, or asked about on closing
    EXPECT_EQ(prompter.messages().back().caption, "Успех");
    EXPECT_EQ(temporaryUnlockMenuText(doc), "Временно откл&ючване\tF12");
    EXPECT_EQ(permanentProtectionMenuText(doc), "Премахване на постоянната защита");

    typed = "грешна";
    EXPECT_FALSE(temporaryUnlockCommand(doc, prompter, ask));
    EXPECT_EQ(prompter.messages().back(),
              (Message{"Грешна парола", "Указаната парола не е валидна за този документ!",
                       MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_TRUE(doc.isLocked());
    typed = "тайна";
    EXPECT_TRUE(temporaryUnlockCommand(doc, prompter, ask));
    EXPECT_FALSE(askedLockMode);
    EXPECT_FALSE(doc.isLocked());
    EXPECT_EQ(prompter.messages().back().caption, "Временно достъпен!");

    // Removing works from the unlocked state and marks the ledger changed.
    EXPECT_TRUE(permanentProtectionCommand(doc, prompter, ask));
    EXPECT_EQ(doc.lockText(), "");
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(prompter.messages().back().caption, "Постоянно достъпен!");
}

TEST(AmountFilterDialog, NumbersWithAPointOrACommaAndNothingElse)
{
    RecordingPrompter prompter;
    AmountFilterRequest r;
    ASSERT_TRUE(readAmountFilter(" 97,79 ", "0.5", true, prompter, r));
    EXPECT_EQ(r.amount, 97.79);
    EXPECT_EQ(r.tolerance, 0.5);
    EXPECT_TRUE(r.alsoBgl);
    ASSERT_TRUE(
        readAmountFilter("-3", "-1", false, prompter, r)); // a negative tolerance is allowed
    EXPECT_EQ(r.tolerance, -1.0);
    EXPECT_TRUE(prompter.messages().empty());

    r = AmountFilterRequest{1, 2, false};
    for (const auto& [amount, tolerance] :
         {std::pair{"", "0"}, std::pair{"12a", "0"}, std::pair{"1.2.3", "0"}, std::pair{"inf", "0"},
          std::pair{"5", "x"}}) {
        EXPECT_FALSE(readAmountFilter(amount, tolerance, false, prompter, r))
            << amount << tolerance;
        EXPECT_EQ(r.amount, 1.0); // nothing taken
    }
    EXPECT_NE(prompter.messages().back().text.find("толеранс"), std::string::npos);
}

TEST(TypedText, IsRefusedWithTheCharactersNamed)
{
    RecordingPrompter prompter;
    EXPECT_EQ(typedText("Пазар", prompter), cp1251::fromUtf8OrThrow("Пазар"));
    EXPECT_FALSE(typedText("кафе ☕", prompter));
    EXPECT_EQ(prompter.messages().back().caption, "Невалиден текст");
    EXPECT_NE(prompter.messages().back().text.find("☕"), std::string::npos);
}
