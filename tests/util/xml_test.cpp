// Child elements and attributes by name.
#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <cstring>

#include "apconf/util.h"
#include "util/owners.h"

namespace
{

using apconf::xml_doc;

xml_doc parse(const char *text)
{
    return xml_doc(xmlReadMemory(text, static_cast<int>(strlen(text)), "test.xml", nullptr, 0));
}

xmlNode *root_of(const xml_doc &document)
{
    return xmlDocGetRootElement(document.get());
}

TEST(SearchChildNode, FindsTheFirstElementOfThatName)
{
    const xml_doc document = parse(
        "<top>text<!-- CMD --><?CMD one?><![CDATA[CMD]]><OTHER/><CMD id='1'><DEEP/></CMD>"
        "<CMD id='2'/></top>");
    xmlNode *const top = root_of(document);
    xmlNode *const found = search_child_node(top, "CMD");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->type, XML_ELEMENT_NODE);
    EXPECT_STREQ(get_xmlnode_attr(found, "id"), "1");
    EXPECT_NE(search_child_node(top, "OTHER"), nullptr);
    EXPECT_EQ(search_child_node(top, "cmd"), nullptr);
    EXPECT_EQ(search_child_node(top, "CM"), nullptr);
    EXPECT_EQ(search_child_node(top, "DEEP"), nullptr);
    EXPECT_EQ(search_child_node(top, "text"), nullptr);
    EXPECT_EQ(search_child_node(found, "CMD"), nullptr);
    EXPECT_NE(search_child_node(found, "DEEP"), nullptr);
}

TEST(SearchChildNode, GivesNothingForNullArguments)
{
    const xml_doc document = parse("<top><CMD/></top>");
    EXPECT_EQ(search_child_node(nullptr, "CMD"), nullptr);
    EXPECT_EQ(search_child_node(root_of(document), nullptr), nullptr);
    EXPECT_EQ(search_child_node(nullptr, nullptr), nullptr);
}

TEST(GetXmlnodeAttr, GivesTheTextOfTheAttribute)
{
    const xml_doc document = parse("<PARAM name='rate' min=\"1 &lt; 2\" empty=''>text</PARAM>");
    xmlNode *const param = root_of(document);
    EXPECT_STREQ(get_xmlnode_attr(param, "name"), "rate");
    EXPECT_STREQ(get_xmlnode_attr(param, "min"), "1 < 2");
    EXPECT_STREQ(get_xmlnode_attr(param, "empty"), "");
    EXPECT_EQ(get_xmlnode_attr(param, "max"), nullptr);
    EXPECT_EQ(get_xmlnode_attr(param, "Name"), nullptr);
    EXPECT_EQ(get_xmlnode_attr(param, "nam"), nullptr);
}

TEST(GetXmlnodeAttr, BelongsToTheDocument)
{
    const xml_doc document = parse("<PARAM name='rate'/>");
    const char *text = get_xmlnode_attr(root_of(document), "name");
    EXPECT_EQ(static_cast<const void *>(text), root_of(document)->properties->children->content);
    EXPECT_EQ(get_xmlnode_attr(root_of(document), "name"), text);
}

TEST(GetXmlnodeAttr, GivesNothingForAnAttributeWithoutText)
{
    const xml_doc document = parse("<PARAM/>");
    xmlNewProp(root_of(document), reinterpret_cast<const xmlChar *>("bare"), nullptr);
    EXPECT_EQ(get_xmlnode_attr(root_of(document), "bare"), nullptr);
}

TEST(GetXmlnodeAttr, GivesNothingForWhatIsNoElementAndForNullArguments)
{
    const xml_doc document = parse("<top name='x'>text<![CDATA[more]]><!--note--></top>");
    for (const xmlNode *child = root_of(document)->children; child; child = child->next)
        EXPECT_EQ(get_xmlnode_attr(child, "name"), nullptr);
    EXPECT_EQ(get_xmlnode_attr(nullptr, "name"), nullptr);
    EXPECT_EQ(get_xmlnode_attr(root_of(document), nullptr), nullptr);
    EXPECT_EQ(get_xmlnode_attr(nullptr, nullptr), nullptr);
}

}  // namespace
