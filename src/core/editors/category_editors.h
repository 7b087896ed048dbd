#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace finora {

// --- "категории": the list beside the tree and the delete rules.

// One list row: the id, the name and the parent's name or "няма" (Windows-1251), newest first.
using CategoryListRow = std::array<std::string, 3>;
std::vector<CategoryListRow> categoryListRows(const CFinoraDoc& doc);

// Deletes the selected category (nullopt: nothing selected) after asking; false, after telling
// the user why, when nothing was deleted. Categories with records or subcategories stay.
bool deleteCategoryAsked(CFinoraDoc& doc, Prompter& prompter, std::optional<std::int32_t> selected);

inline constexpr const char* kCategoriesTitle = "категории";
inline constexpr const char* kNoCategorySelectedText = "Не сте избрали категория!";
inline constexpr const char* kCategoryUnknownErrorText =
    "Поради грешка от непознат тип, категорията не може да бъде изтрита.";
inline constexpr const char* kCategoryDeleteQuestion = "Сигурни ли сте?";
inline constexpr const char* kCategoryInUseText =
    "Открити са записи или други категории асоциирани с тази категория.\nМоля, изтрийте първо тях!";

// --- the category dialog: a new category, or a new name and parent for one.
class CategoryEditor {
public:
    enum class Mode { New, Change };

    CategoryEditor(CFinoraDoc& doc, Prompter& prompter, Mode mode, std::int32_t id = -1);

    Mode mode() const { return m_mode; }
    std::string title() const; // UTF-8
    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }
    bool isSubcategory() const { return m_isSubcategory; }
    // Unticking makes the category top-level again.
    void setSubcategory(bool on);
    std::int32_t parentId() const { return m_parentId; }
    // The parent's name, or "не е указана категория" (Windows-1251).
    const std::string& parentText() const { return m_parentText; }
    // A double click in the parent tree.
    void chooseParent(std::int32_t id);
    // "&създай": false, after saying why, leaves the dialog open.
    bool save();

    static constexpr const char* kNoParentText = "не е указана категория";
    static constexpr const char* kChangeTitle = "Промяна на категория";
    static constexpr const char* kNewTitle = "Нова категория";
    static constexpr const char* kNoNameChangeText =
        "Моля, укажете наименование за тази категория!";
    static constexpr const char* kNoNameNewText = "Моля, укажете наименование за новата категория!";
    static constexpr const char* kParentMissingText =
        "Укажете на коя родителска категория, е подкатегория текущата.";
    static constexpr const char* kOwnParentText =
        "Категорията не може да бъде подкатегория на себе си!";
    static constexpr const char* kDescendantParentText =
        "Указали невалидна родителска категория. Тя е дъщерна на текущата!";
    static constexpr const char* kDuplicateText =
        "Вече има категория с такова наименование и родителска категория.";

private:
    void refuse(const char* text);
    // Walks up from `from`'s own parent; a missing id or the top ends the walk.
    bool isAncestorOf(std::int32_t category, std::int32_t from) const;

    CFinoraDoc& m_doc;
    Prompter& m_prompter;
    Mode m_mode;
    std::int32_t m_id;
    std::string m_name;
    bool m_isSubcategory = false;
    std::int32_t m_parentId = 0;
    std::string m_parentText;
};

// --- the category chooser.
class CategoryChooser {
public:
    CategoryChooser(const CFinoraDoc& doc, std::int32_t current);

    std::int32_t chosenId() const { return m_id; }
    // The chosen category's own name; empty while none is chosen (Windows-1251).
    const std::string& chosenName() const { return m_name; }
    // What the static shows: the name, or ":: няма избрана категория ::".
    std::string chosenText() const;
    bool canChoose() const { return m_id != 0; }
    // A double click on a tree item.
    void choose(std::int32_t id);

    static constexpr const char* kNothingChosenText = ":: няма избрана категория ::";

private:
    const CFinoraDoc& m_doc;
    std::int32_t m_id = 0;
    std::string m_name;
};

} // namespace finora
