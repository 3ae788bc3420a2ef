#include <gmock/gmock.h>

#include "cimxml/Elements.h"
#include "cimxml/Request.h"

namespace {

using cimxml::Children;
using testing::HasSubstr;

// An element that is parsed as requests are.
class Element {
 public:
  explicit Element(const char* text) {
    EXPECT_TRUE(m_document.load_string(text, pugi::parse_default | pugi::parse_ws_pcdata));
  }
  [[nodiscard]] pugi::xml_node get() const { return m_document.document_element(); }

 private:
  pugi::xml_document m_document;
};

template <class Call>
std::string problemOf(Call call) {
  try {
    call();
  } catch (const cimxml::RequestFault& fault) {
    EXPECT_EQ(fault.kind(), cimxml::RequestFault::Kind::Malformed);
    EXPECT_EQ(fault.cimError(), "request-not-valid");
    return fault.what();
  }
  return "none";
}

TEST(Elements, AreTakenOneAfterTheOther) {
  const Element element("<a> <b/>\n<!-- c --><b/><d/> </a>");
  Children children(element.get());
  EXPECT_TRUE(children.isAt("b"));
  children.skipAll("b");
  EXPECT_STREQ(children.take("d").name(), "d");
  EXPECT_TRUE(children.isAtEnd());
  EXPECT_EQ(problemOf([&] { children.end(); }), "none");
}

TEST(Elements, AreRefusedWhereTheyHaveNoPlace) {
  const Element element("<a><b/></a>");
  Children children(element.get());
  EXPECT_EQ(problemOf([&] { children.end(); }), "<b> has no place in <a>");
  EXPECT_EQ(problemOf([&] { children.take("c"); }), "<a> lacks <c> where <b> stands");
  children.take();
  EXPECT_EQ(problemOf([&] { children.take("c"); }), "<a> lacks <c>");
  EXPECT_EQ(problemOf([&] { children.take(); }), "<a> lacks an element");
}

TEST(Elements, HoldNoTextBetweenThem) {
  const Element before("<a>x<b/></a>");
  EXPECT_EQ(problemOf([&] { Children children(before.get()); }), "<a> holds text");
  const Element behind("<a><b/><![CDATA[x]]></a>");
  Children children(behind.get());
  EXPECT_EQ(problemOf([&] { children.take(); }), "<a> holds text");
}

TEST(Elements, HaveTheAttributesThatTheyNeed) {
  const Element element("<a b='c'/>");
  EXPECT_STREQ(cimxml::getAttribute(element.get(), "b"), "c");
  EXPECT_EQ(problemOf([&] { static_cast<void>(cimxml::getAttribute(element.get(), "d")); }),
            "<a> lacks the attribute d");
}

TEST(Elements, GiveTheirTextWhole) {
  EXPECT_EQ(cimxml::readText(Element("<a/>").get()), "");
  EXPECT_EQ(cimxml::readText(Element("<a> x<!-- y --> <![CDATA[<z>]]> </a>").get()), " x <z> ");
  const Element element("<a>x<b/></a>");
  EXPECT_THAT(problemOf([&] { static_cast<void>(cimxml::readText(element.get())); }),
              HasSubstr("<b>"));
}

}  // namespace
