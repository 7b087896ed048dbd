#include "core/statements/markup_tree.h"

#include "core/statements/statement_text.h"

#include <cctype>
#include <climits>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <memory>
#include <mutex>

namespace finora::statement_readers {

namespace st = statement_text;

namespace {

// Statements nest a dozen levels; anything much deeper is not a statement.
constexpr std::size_t kMaxDepth = 64;

std::string fromXml(const xmlChar* text)
{
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

MarkupNode fromXmlNode(const xmlNode* element)
{
    MarkupNode node;
    node.name = fromXml(element->name);
    node.line = static_cast<std::size_t>(xmlGetLineNo(element));
    for (const xmlAttr* a = element->properties; a != nullptr; a = a->next) {
        std::string value;
        for (const xmlNode* t = a->children; t != nullptr; t = t->next) {
            if (t->type == XML_TEXT_NODE) {
                value += fromXml(t->content);
            }
        }
        node.attributes.emplace_back(fromXml(a->name), std::move(value));
    }
    std::string text;
    for (const xmlNode* c = element->children; c != nullptr; c = c->next) {
        if (c->type == XML_ELEMENT_NODE) {
            node.children.push_back(fromXmlNode(c));
        } else if (c->type == XML_TEXT_NODE || c->type == XML_CDATA_SECTION_NODE) {
            text += fromXml(c->content);
        }
    }
    node.text = std::string(st::trim(text));
    return node;
}

std::string decodeEntities(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&') {
            static constexpr std::pair<std::string_view, char> kEntities[] = {
                {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
            bool replaced = false;
            for (const auto& [name, c] : kEntities) {
                if (text.substr(i, name.size()) == name) {
                    out += c;
                    i += name.size() - 1;
                    replaced = true;
                    break;
                }
            }
            if (replaced) {
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

bool isNameChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '_' || c == '-' ||
           c == ':';
}

} // namespace

const MarkupNode* MarkupNode::child(std::string_view childName) const
{
    for (const MarkupNode& c : children) {
        if (c.name == childName) {
            return &c;
        }
    }
    return nullptr;
}

const MarkupNode* MarkupNode::find(std::initializer_list<std::string_view> path) const
{
    const MarkupNode* node = this;
    for (const std::string_view step : path) {
        node = node->child(step);
        if (node == nullptr) {
            return nullptr;
        }
    }
    return node;
}

std::string MarkupNode::textAt(std::initializer_list<std::string_view> path) const
{
    const MarkupNode* node = find(path);
    return node == nullptr ? std::string() : node->text;
}

std::string MarkupNode::attribute(std::string_view attributeName) const
{
    for (const auto& [name, value] : attributes) {
        if (name == attributeName) {
            return value;
        }
    }
    return {};
}

std::vector<const MarkupNode*> MarkupNode::childrenNamed(std::string_view childName) const
{
    std::vector<const MarkupNode*> out;
    for (const MarkupNode& c : children) {
        if (c.name == childName) {
            out.push_back(&c);
        }
    }
    return out;
}

Result<MarkupNode, StatementReadError> readXmlTree(std::string_view bytes)
{
    // Statements need no document type: refusing one keeps external and expanding entities out.
    if (bytes.find("<!DOCTYPE") != std::string_view::npos ||
        bytes.find("<!ENTITY") != std::string_view::npos) {
        return StatementReadError{"", "Файлът съдържа описание на тип документ (DOCTYPE), "
                                      "каквото извлечение няма."};
    }
    if (bytes.size() > INT_MAX) {
        return StatementReadError{"", "Файлът е твърде голям."};
    }
    static std::once_flag init;
    std::call_once(init, [] { xmlInitParser(); });
    std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> context(xmlNewParserCtxt(),
                                                                       xmlFreeParserCtxt);
    if (!context) {
        return StatementReadError{"", "Няма памет за четене на XML."};
    }
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                        XML_PARSE_NOCDATA | XML_PARSE_BIG_LINES;
    std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> doc(
        xmlCtxtReadMemory(context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr,
                          nullptr, options),
        xmlFreeDoc);
    if (!doc) {
        const xmlError* error = xmlCtxtGetLastError(context.get());
        const int line = error != nullptr ? error->line : 0;
        return StatementReadError{line > 0 ? "ред " + std::to_string(line) : std::string(),
                                  "XML-ът не е изписан правилно."};
    }
    const xmlNode* root = xmlDocGetRootElement(doc.get());
    if (root == nullptr) {
        return StatementReadError{"", "XML-ът няма елементи."};
    }
    return fromXmlNode(root);
}

Result<MarkupNode, StatementReadError> readSgmlTree(std::string_view text, std::size_t firstLine)
{
    MarkupNode root;
    std::vector<MarkupNode*> open{&root};
    bool topHasValue = false; // the innermost open element holds a value: it ends at the next tag
    std::size_t line = firstLine;
    std::size_t pos = 0;
    auto advanceTo = [&](std::size_t to) {
        for (; pos < to; ++pos) {
            line += text[pos] == '\n' ? 1 : 0;
        }
    };
    while (pos < text.size()) {
        const std::size_t lt = std::min(text.find('<', pos), text.size());
        const std::string_view value = st::trim(text.substr(pos, lt - pos));
        if (!value.empty() && open.size() > 1) {
            open.back()->text += decodeEntities(value);
            topHasValue = true;
        }
        advanceTo(lt);
        if (pos >= text.size()) {
            break;
        }
        if (text.substr(pos, 4) == "<!--" || text.substr(pos, 2) == "<?") {
            const std::string_view end = text[pos + 1] == '!' ? "-->" : "?>";
            const std::size_t close = text.find(end, pos);
            if (close == std::string_view::npos) {
                return StatementReadError{"ред " + std::to_string(line), "Незатворен коментар."};
            }
            advanceTo(close + end.size());
            continue;
        }
        const bool closing = pos + 1 < text.size() && text[pos + 1] == '/';
        std::size_t nameEnd = pos + (closing ? 2 : 1);
        while (nameEnd < text.size() && isNameChar(text[nameEnd])) {
            ++nameEnd;
        }
        const std::string_view name =
            text.substr(pos + (closing ? 2 : 1), nameEnd - pos - (closing ? 2 : 1));
        if (name.empty() || nameEnd >= text.size() || text[nameEnd] != '>') {
            return StatementReadError{"ред " + std::to_string(line), "Неправилен етикет."};
        }
        if (closing) {
            if (topHasValue && open.back()->name != name) {
                open.pop_back();
            }
            // A closing tag with no open element of its name is left alone.
            for (std::size_t i = open.size(); i > 1; --i) {
                if (open[i - 1]->name == name) {
                    open.resize(i - 1);
                    break;
                }
            }
        } else {
            if (topHasValue) {
                open.pop_back();
            }
            if (open.size() > kMaxDepth) {
                return StatementReadError{"ред " + std::to_string(line),
                                          "Елементите са вложени твърде дълбоко."};
            }
            MarkupNode& child = open.back()->children.emplace_back();
            child.name = std::string(name);
            child.line = line;
            open.push_back(&child);
        }
        topHasValue = false;
        advanceTo(nameEnd + 1);
    }
    return root;
}

} // namespace finora::statement_readers
