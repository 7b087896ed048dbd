#pragma once

// Elements of an XML or SGML statement as a plain tree, names without their namespace prefix and
// texts in UTF-8, so CAMT.053 and both kinds of OFX are walked the same way.
#include "core/model/result.h"
#include "core/statements/statement_entry.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace finora::statement_readers {

struct MarkupNode {
    std::string name;
    std::string text; // the element's own text, trimmed
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<MarkupNode> children;
    std::size_t line = 0;

    const MarkupNode* child(std::string_view childName) const;
    // Follows the names one level each; null when a step is missing.
    const MarkupNode* find(std::initializer_list<std::string_view> path) const;
    // The text at the end of the path, empty when there is none.
    std::string textAt(std::initializer_list<std::string_view> path) const;
    std::string attribute(std::string_view attributeName) const;
    std::vector<const MarkupNode*> childrenNamed(std::string_view childName) const;
};

// An XML document through libxml2: no network, no DTD, no entity of the file's own, the parser's
// own limits on depth and sizes. The root element is returned.
Result<MarkupNode, StatementReadError> readXmlTree(std::string_view bytes);

// OFX 1's SGML, already decoded to UTF-8: elements that hold a value need no closing tag. Returns
// a root holding the top-level elements; lines are counted from `firstLine`.
Result<MarkupNode, StatementReadError> readSgmlTree(std::string_view text, std::size_t firstLine);

} // namespace finora::statement_readers
