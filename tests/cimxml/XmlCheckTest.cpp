#include <gmock/gmock.h>
#include <string>

#include "cimxml/XmlCheck.h"

namespace {

using cimxml::checkXml;
using cimxml::XmlFault;

std::string nest(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) {
    text += "<a>";
  }
  for (std::size_t i = 0; i < depth; ++i) {
    text += "</a>";
  }
  return text;
}

std::string withAttributes(std::size_t count) {
  std::string text = "<a";
  for (std::size_t i = 0; i < count; ++i) {
    text += " a" + std::to_string(i) + "=''";
  }
  return text + "/>";
}

TEST(XmlCheck, TakesWellFormedDocuments) {
  for (const std::string text : {
           "<a/>",
           "<a ></a >",
           "\xEF\xBB\xBF<a/>",
           "<?xml version=\"1.0\"?><a/>",
           "<?xml version='1.1' encoding='UTF-8' standalone='yes' ?>\r\n<a/>\n",
           "<?xml version = \"1.0\" encoding = \"utf-8\"?><a/>",
           "<!-- a - b --><?p i?><?p?><!DOCTYPE a SYSTEM \"x[>.dtd\"><!-- c --><a/><!-- d --><?q?>",
           "<!DOCTYPE a><a/>",
           "<a b='c\"' d=\"e'\" f:g.h-1 = '&lt;&#10;'/>",
           "<a>x &amp; &lt; &gt; &quot; &apos; &#9; &#x10FFFF; ] ]] > '\"</a>",
           "<a><![CDATA[<b> & ]] > ]]></a>",
           "<a><!-- <b> & --><?p <b> ?><b/></a>",
           "<\xC3\xA9>\xF0\x9F\x98\x80</\xC3\xA9>",
       }) {
    EXPECT_EQ(checkXml(text).fault, XmlFault::None) << text << ": " << checkXml(text).problem;
  }
}

TEST(XmlCheck, RefusesWhatIsNotWellFormed) {
  for (const std::string& text : {
           std::string(),
           std::string(" "),
           std::string("text"),
           std::string("<a/>text"),
           std::string("<a/><a/>"),
           std::string("<a/></a>"),
           std::string("<a>"),
           std::string("<a"),
           std::string("<a/"),
           std::string("<a></b>"),
           std::string("<a><b></a></b>"),
           std::string("</a>"),
           std::string("< a/>"),
           std::string("<1/>"),
           std::string("<a b/>"),
           std::string("<a b=c/>"),
           std::string("<a b='c/>"),
           std::string("<a b='<'/>"),
           std::string("<a b='c'd='e'/>"),
           std::string("<a b='c' b='d'/>"),
           std::string("<a>&lol;</a>"),
           std::string("<a b='&lol;'/>"),
           std::string("<a>&</a>"),
           std::string("<a>&amp</a>"),
           std::string("<a>&#0;</a>"),
           std::string("<a>&#xD800;</a>"),
           std::string("<a>&#xFFFE;</a>"),
           std::string("<a>&#x110000;</a>"),
           std::string("<a>&#99999999999;</a>"),
           std::string("<a>&#;</a>"),
           std::string("<a>&#-1;</a>"),
           std::string("<a>&#65</a>"),
           std::string("<a>]]></a>"),
           std::string("<a><![CDATA[</a>"),
           std::string("<![CDATA[x]]><a/>"),
           std::string("<a/><![CDATA[x]]>"),
           std::string("<a><!-- x -- y --></a>"),
           std::string("<a><!-- x"),
           std::string("<a><!x></a>"),
           std::string("<a><?xml version='1.0'?></a>"),
           std::string(" <?xml version='1.0'?><a/>"),
           std::string("<a><?p"),
           std::string("<a><?p<?></a>"),
           std::string("<?xml?><a/>"),
           std::string("<?xml version='2.0'?><a/>"),
           std::string("<?xml version='1.'?><a/>"),
           std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a/>"),
           std::string("<?xml version='1.0' encoding='UTF-16'?><a/>"),
           std::string("<?xml version='1.0'encoding='UTF-8'?><a/>"),
           std::string("<?xml version='1.0' standalone='maybe'?><a/>"),
           std::string("<?xml encoding='UTF-8'?><a/>"),
           std::string("<!DOCTYPE a"),
           std::string("<!DOCTYPEa><a/>"),
           std::string("<!DOCTYPE a><!DOCTYPE a><a/>"),
           std::string("<a/><!DOCTYPE a>"),
           std::string("<a>\xC3</a>"),
           std::string("<a>\xED\xA0\x80</a>"),
           std::string("<a>\x01</a>"),
           std::string("<a>\0</a>", 8),
           std::string("<a/>\0", 5),
           std::string("\xFF\xFE<\0a\0/\0>\0", 10),
       }) {
    EXPECT_EQ(checkXml(text).fault, XmlFault::NotWellFormed) << text;
    EXPECT_LE(checkXml(text).position, text.size()) << text;
    EXPECT_STRNE(checkXml(text).problem, "") << text;
  }
}

TEST(XmlCheck, TurnsDownAnInternalSubset) {
  EXPECT_EQ(checkXml("<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>").fault, XmlFault::NotTaken);
  EXPECT_EQ(checkXml("<!DOCTYPE a []><a/>").fault, XmlFault::NotTaken);
  EXPECT_EQ(checkXml("<!DOCTYPE a SYSTEM 'x' [").fault, XmlFault::NotTaken);
}

TEST(XmlCheck, TurnsDownWhatIsTooDeep) {
  EXPECT_EQ(checkXml(nest(cimxml::kDeepestElement)).fault, XmlFault::None);
  EXPECT_EQ(checkXml(nest(cimxml::kDeepestElement + 1)).fault, XmlFault::NotTaken);
  EXPECT_EQ(checkXml(nest(1'000'000)).fault, XmlFault::NotTaken);
}

TEST(XmlCheck, TurnsDownTooManyAttributes) {
  EXPECT_EQ(checkXml(withAttributes(cimxml::kMostAttributes)).fault, XmlFault::None);
  EXPECT_EQ(checkXml(withAttributes(cimxml::kMostAttributes + 1)).fault, XmlFault::NotTaken);
}

TEST(XmlCheck, TellsWhereTheRootBegins) {
  EXPECT_EQ(checkXml("<!-- --> <a/>").position, 9U);
}

TEST(XmlCheck, TellsWhereTheFaultIs) {
  EXPECT_EQ(checkXml("<a>&lol;</a>").position, 3U);
}

}  // namespace
