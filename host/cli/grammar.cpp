// Reads the grammar of command-tree files twice: libxml2 to validate with it, and this to say what it allows, for the
// validator hardly ever does.
#include "cli/grammar.h"

#include <libxml/parser.h>
#include <libxml/xmlregexp.h>
#include <libxml/xmlschemastypes.h>

#include <algorithm>
#include <stdexcept>

#include "cli/check_parts.h"

namespace apconf_host
{

namespace
{

const xmlChar *as_xml(const std::string &text)
{
    return reinterpret_cast<const xmlChar *>(text.c_str());
}

std::string text_of(const xmlNode *element)
{
    return element->children ? reinterpret_cast<const char *>(element->children->content) : "";
}

// What all of the sets allow together; an attribute is needed when so many of them need it.
attribute_rules merged(const std::vector<attribute_rules> &sets, size_t needed)
{
    attribute_rules rules;
    std::map<std::string, size_t> asked;
    for (const attribute_rules &set : sets)
        for (const auto &[name, rule] : set) {
            asked[name] += rule.required;
            auto &accepted = rules[name].accepted;
            accepted.insert(accepted.end(), rule.accepted.begin(), rule.accepted.end());
        }
    for (auto &[name, rule] : rules) rule.required = asked[name] >= needed;
    return rules;
}

value_rule data(xmlNode *pattern)
{
    for (const xmlNode *facet : children_of(pattern))
        if (attribute(facet, "name") == "pattern") return {value_rule::kind::form, text_of(facet)};
    return {value_rule::kind::type, attribute(pattern, "type")};
}

void collect_elements(const xmlNode *parent, std::vector<const xmlNode *> &elements)
{
    for (const xmlNode *node : children_of(parent)) {
        if (is_named(node, "element")) elements.push_back(node);
        collect_elements(node, elements);
    }
}

void keep(void *said, xmlErrorPtr error)
{
    auto &text = *static_cast<std::string *>(said);
    if (text.empty() && error->message) text = error->message;
}

}  // namespace

std::string alternatives(const std::vector<std::string> &words)
{
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    return text;
}

std::string value_rule::in_words() const
{
    return what == kind::word ? text : what == kind::form ? "a text of the form " + text : "a " + text;
}

bool value_rule::fits(const std::string &value) const
{
    if (what == kind::word) return value == text;
    if (what == kind::type) {
        xmlSchemaType *type = xmlSchemaGetPredefinedType(as_xml(text), as_xml("http://www.w3.org/2001/XMLSchema"));
        return !type || xmlSchemaValidatePredefinedType(type, as_xml(value), nullptr) == 0;
    }
    const std::unique_ptr<xmlRegexp, decltype(&xmlRegFreeRegexp)> form(xmlRegexpCompile(as_xml(text)),
                                                                       xmlRegFreeRegexp);
    return !form || xmlRegexpExec(form.get(), as_xml(value)) != 0;
}

std::string attribute_rule::in_words() const
{
    std::vector<std::string> words;
    for (const value_rule &one : accepted)
        if (std::find(words.begin(), words.end(), one.in_words()) == words.end()) words.push_back(one.in_words());
    return words.empty() ? "a text" : alternatives(words);
}

bool attribute_rule::fits(const std::string &value) const
{
    return accepted.empty() ||
           std::any_of(accepted.begin(), accepted.end(), [&value](const auto &one) { return one.fits(value); });
}

grammar::grammar()
    : source_(xmlReadMemory(command_tree_grammar, static_cast<int>(strlen(command_tree_grammar)), nullptr, nullptr,
                            XML_PARSE_NONET))
{
    const std::unique_ptr<xmlRelaxNGParserCtxt, decltype(&xmlRelaxNGFreeParserCtxt)> parser(
        source_ ? xmlRelaxNGNewDocParserCtxt(source_.get()) : nullptr, xmlRelaxNGFreeParserCtxt);
    if (parser) schema_.reset(xmlRelaxNGParse(parser.get()));
    if (!schema_) throw std::runtime_error("the built-in grammar cannot be read");
}

std::string grammar::complaint(xmlDoc *document) const
{
    const std::unique_ptr<xmlRelaxNGValidCtxt, decltype(&xmlRelaxNGFreeValidCtxt)> context(
        xmlRelaxNGNewValidCtxt(schema_.get()), xmlRelaxNGFreeValidCtxt);
    std::string said;
    xmlRelaxNGSetValidStructuredErrors(context.get(), keep, &said);
    if (xmlRelaxNGValidateDoc(context.get(), document) == 0) return "";
    return said.empty() ? "it is not valid" : said.substr(0, said.find('\n'));
}

const element_rules &grammar::rules_of(const xmlNode *element)
{
    const bool named = is_item(element) || is_named(element, "INDEX") || element->parent->type != XML_ELEMENT_NODE;
    const std::string kind =
        named ? reinterpret_cast<const char *>(element->name) : "ntype " + attribute(element, "ntype");
    const auto [rules, added] = rules_.try_emplace(kind);
    if (!added) return rules->second;
    std::vector<attribute_rules> sets;
    for (const xmlNode *pattern : patterns_of(element)) {
        sets.push_back(attributes(pattern));
        rules->second.children.merge(children(pattern));
    }
    rules->second.attributes = merged(sets, sets.size());
    return rules->second;
}

const xmlNode *grammar::definition(const std::string &name) const
{
    for (const xmlNode *node : apconf_host::children_of(xmlDocGetRootElement(source_.get())))
        if (is_named(node, "define") && attribute(node, "name") == name) return node;
    throw std::runtime_error("the grammar does not define " + name);
}

// Those of the element's name; packages and commands have any name and are told apart by their ntype.
std::vector<const xmlNode *> grammar::patterns_of(const xmlNode *element) const
{
    std::vector<const xmlNode *> all;
    collect_elements(xmlDocGetRootElement(source_.get()), all);
    std::vector<const xmlNode *> named;
    std::vector<const xmlNode *> of_type;
    std::vector<const xmlNode *> of_any_name;
    for (const xmlNode *pattern : all) {
        const std::string name = attribute(pattern, "name");
        if (name == reinterpret_cast<const char *>(element->name)) named.push_back(pattern);
        if (!name.empty()) continue;
        of_any_name.push_back(pattern);
        if (attributes(pattern)["ntype"].fits(attribute(element, "ntype"))) of_type.push_back(pattern);
    }
    return !named.empty() ? named : !of_type.empty() ? of_type : of_any_name;
}

// Of alternatives, an attribute is needed when all of them need it.
attribute_rules grammar::attributes(const xmlNode *parent) const
{
    std::vector<attribute_rules> sets;
    for (const xmlNode *pattern : apconf_host::children_of(parent)) sets.push_back(attributes_in(pattern));
    return merged(sets, is_named(parent, "choice") ? sets.size() : 1);
}

attribute_rules grammar::attributes_in(const xmlNode *pattern) const
{
    if (is_named(pattern, "element")) return {};
    if (is_named(pattern, "attribute")) return {{attribute(pattern, "name"), {true, values(pattern)}}};
    if (is_named(pattern, "ref")) return attributes(definition(attribute(pattern, "name")));
    attribute_rules rules = attributes(pattern);
    if (is_named(pattern, "optional") || is_named(pattern, "zeroOrMore"))
        for (auto &[name, rule] : rules) rule.required = false;
    return rules;
}

std::vector<value_rule> grammar::values(const xmlNode *parent) const
{
    std::vector<value_rule> found;
    for (xmlNode *pattern : apconf_host::children_of(parent)) {
        std::vector<value_rule> more;
        if (is_named(pattern, "value"))
            more = {{value_rule::kind::word, text_of(pattern)}};
        else if (is_named(pattern, "data"))
            more = {data(pattern)};
        else
            more = values(is_named(pattern, "ref") ? definition(attribute(pattern, "name")) : pattern);
        found.insert(found.end(), more.begin(), more.end());
    }
    return found;
}

std::set<std::string> grammar::children(const xmlNode *parent) const
{
    std::set<std::string> names;
    for (const xmlNode *pattern : apconf_host::children_of(parent)) {
        if (is_named(pattern, "element")) {
            const std::string name = attribute(pattern, "name");
            names.insert(name.empty() ? attribute(pattern->parent, "name") : name);
        } else if (!is_named(pattern, "attribute")) {
            names.merge(children(is_named(pattern, "ref") ? definition(attribute(pattern, "name")) : pattern));
        }
    }
    return names;
}

}  // namespace apconf_host
