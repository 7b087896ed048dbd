#include "core/editors/category_editors.h"

#include "core/model/number_text.h"
#include "core/text/cp1251.h"

namespace finora {

std::vector<CategoryListRow> categoryListRows(const CFinoraDoc& doc)
{
    static const std::string kNone = cp1251::fromUtf8OrThrow("няма");
    const auto& categories = doc.ledger().categories;
    std::vector<CategoryListRow> rows;
    rows.reserve(categories.size());
    for (auto it = categories.rbegin(); it != categories.rend(); ++it) {
        rows.push_back({idText(it->id()), it->name(),
                        it->parentId() == 0 ? kNone : doc.categoryName(it->parentId())});
    }
    return rows;
}

bool deleteCategoryAsked(CFinoraDoc& doc, Prompter& prompter, std::optional<std::int32_t> selected)
{
    if (!selected) {
        prompter.show({"", kNoCategorySelectedText, MessageIcon::None, MessageButtons::Ok});
        return false;
    }
    if (*selected <= 0) {
        prompter.error(kCategoryUnknownErrorText, "Грешка");
        return false;
    }
    if (prompter.askYesNo(kCategoryDeleteQuestion, "Потвърдете!", MessageIcon::Question) !=
        Answer::Yes) {
        return false;
    }
    if (!doc.deleteCategory(*selected)) {
        prompter.error(kCategoryInUseText, "Отказ");
        return false;
    }
    return true;
}

CategoryEditor::CategoryEditor(CFinoraDoc& doc, Prompter& prompter, Mode mode, std::int32_t id)
    : m_doc(doc), m_prompter(prompter), m_mode(mode), m_id(id)
{
    if (mode == Mode::Change) {
        m_name = doc.categoryName(id);
        m_parentId = doc.categoryParent(id);
        m_isSubcategory = m_parentId != 0;
    }
    chooseParent(m_parentId);
}

std::string CategoryEditor::title() const
{
    return m_mode == Mode::Change ? kChangeTitle : kNewTitle;
}

void CategoryEditor::setSubcategory(bool on)
{
    m_isSubcategory = on;
    if (!on) {
        chooseParent(0);
    }
}

void CategoryEditor::chooseParent(std::int32_t id)
{
    static const std::string kNoParent = cp1251::fromUtf8OrThrow(kNoParentText);
    m_parentId = id;
    m_parentText = id == 0 ? kNoParent : m_doc.categoryName(id);
}

void CategoryEditor::refuse(const char* text)
{
    m_prompter.show({"", text, MessageIcon::None, MessageButtons::Ok});
}

bool CategoryEditor::isAncestorOf(std::int32_t category, std::int32_t from) const
{
    // A hand-made cycle that misses `category` would loop for ever: no walk is longer than the
    // number of categories.
    std::size_t steps = m_doc.ledger().categories.size();
    std::int32_t id = from;
    while (steps-- > 0) {
        if (!m_doc.ledger().categories.find(id)) {
            return false;
        }
        id = m_doc.categoryParent(id);
        if (id == category) {
            return true;
        }
        if (id == 0) {
            return false;
        }
    }
    return false;
}

bool CategoryEditor::save()
{
    const bool change = m_mode == Mode::Change;
    if (m_name.empty()) {
        refuse(change ? kNoNameChangeText : kNoNameNewText);
        return false;
    }
    if (m_isSubcategory && m_parentId < 1) {
        refuse(kParentMissingText);
        return false;
    }
    if (change) {
        if (m_parentId == m_id) {
            refuse(kOwnParentText);
            return false;
        }
        if (m_parentId != 0 && isAncestorOf(m_id, m_parentId)) {
            refuse(kDescendantParentText);
            return false;
        }
    }
    const bool done = change ? m_doc.changeCategory(m_id, m_name, m_parentId)
                             : m_doc.addCategory(m_name, m_parentId);
    if (!done) {
        refuse(kDuplicateText);
    }
    return done;
}

CategoryChooser::CategoryChooser(const CFinoraDoc& doc, std::int32_t current) : m_doc(doc)
{
    if (current > 0) {
        choose(current);
    }
}

std::string CategoryChooser::chosenText() const
{
    return m_id > 0 ? m_name : cp1251::fromUtf8OrThrow(kNothingChosenText);
}

void CategoryChooser::choose(std::int32_t id)
{
    m_id = id;
    m_name = m_doc.categoryName(id);
}

} // namespace finora
