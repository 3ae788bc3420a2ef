#include "cimxml/XmlCheck.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <vector>

#include "Utils/Ascii.h"
#include "cimxml/Characters.h"

namespace cimxml {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kQuotes = "\"'";

// Thrown and caught in this file.
struct Fault {
  XmlFault kind;
  const char* problem;
};

[[noreturn]] void refuse(const char* problem) {
  throw Fault{XmlFault::NotWellFormed, problem};
}

[[noreturn]] void turnDown(const char* problem) {
  throw Fault{XmlFault::NotTaken, problem};
}

// What a byte can be, so that one look tells: the start of a name, a part of one, a character in a
// text or a value that needs no further look.
constexpr std::uint8_t kNameStart = 1;
constexpr std::uint8_t kNamePart = 2;
constexpr std::uint8_t kPlain = 4;

constexpr std::array<std::uint8_t, 256> kSigns = [] {
  constexpr std::string_view kEvenInNames = "-.0123456789";
  constexpr std::string_view kNeedALook = "<&]\"'";
  std::array<std::uint8_t, 256> signs{};
  for (std::uint32_t code = 0; code < signs.size(); ++code) {
    const char sign = static_cast<char>(code);
    const bool isLetter = (sign >= 'A' && sign <= 'Z') || (sign >= 'a' && sign <= 'z');
    if (isLetter || sign == '_' || sign == ':' || code >= 0x80) {
      signs[code] = kNameStart | kNamePart;
    } else if (kEvenInNames.find(sign) != std::string_view::npos) {
      signs[code] = kNamePart;
    }
    if (code < 0x80 && isXmlCharacter(code) && kNeedALook.find(sign) == std::string_view::npos) {
      signs[code] |= kPlain;
    }
  }
  return signs;
}();

bool isSign(char sign, std::uint8_t kind) {
  return (kSigns[static_cast<unsigned char>(sign)] & kind) != 0;
}

class XmlScanner {
 public:
  explicit XmlScanner(std::string_view document) : m_text(document) {}

  // Returns where the root element begins. Throws Fault.
  std::size_t scan() {
    static_cast<void>(take(kByteOrderMark));
    scanDeclaration();
    scanMiscellany(true);
    const std::size_t root = m_at;
    scanRoot();
    scanMiscellany(false);
    if (m_at != m_text.size()) {
      refuse("something stands behind the root element");
    }
    return root;
  }

  [[nodiscard]] std::size_t getPosition() const { return m_at; }

 private:
  [[nodiscard]] std::string_view rest() const { return m_text.substr(m_at); }
  [[nodiscard]] bool isAt(std::string_view token) const { return rest().starts_with(token); }

  // The next byte, 0 behind the last; a 0 in the document is no character.
  [[nodiscard]] char peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }

  bool take(std::string_view token) {
    if (!isAt(token)) {
      return false;
    }
    m_at += token.size();
    return true;
  }

  void expect(std::string_view token, const char* problem) {
    if (!take(token)) {
      refuse(problem);
    }
  }

  bool skipBlanks() {
    const std::size_t start = m_at;
    while (m_at < m_text.size() && isXmlBlank(m_text[m_at])) {
      ++m_at;
    }
    return m_at != start;
  }

  void skipCharacter() {
    if (isSign(peek(), kPlain)) {
      ++m_at;
      return;
    }
    const std::size_t length = getCharacterLength(rest());
    if (length == 0) {
      refuse(m_at == m_text.size() ? "the document ends too early"
                                   : "a character that XML does not allow");
    }
    m_at += length;
  }

  void skipPlain() {
    while (m_at < m_text.size() && isSign(m_text[m_at], kPlain)) {
      ++m_at;
    }
  }

  // Skips up to the token, and the token.
  void skipPast(std::string_view token) {
    while (!take(token)) {
      skipCharacter();
    }
  }

  std::string_view takeName() {
    const std::size_t start = m_at;
    if (m_at == m_text.size() || !isSign(m_text[m_at], kNameStart)) {
      refuse("a name is missing");
    }
    while (m_at < m_text.size() && isSign(m_text[m_at], kNamePart)) {
      if (static_cast<unsigned char>(m_text[m_at]) < 0x80) {
        ++m_at;
      } else {
        skipCharacter();
      }
    }
    return m_text.substr(start, m_at - start);
  }

  char takeQuote() {
    if (m_at == m_text.size() || kQuotes.find(m_text[m_at]) == std::string_view::npos) {
      refuse("a quote is missing");
    }
    return m_text[m_at++];
  }

  // = and a value in quotes, without references.
  std::string_view takePlainValue() {
    skipBlanks();
    expect("=", "a value is missing");
    skipBlanks();
    const char quote = takeQuote();
    const std::size_t start = m_at;
    skipPast({&quote, 1});
    return m_text.substr(start, m_at - start - 1);
  }

  // <?xml version="1.0" encoding="utf-8" standalone="yes"?>
  void scanDeclaration() {
    constexpr std::string_view kStart = "<?xml";
    if (!isAt(kStart) || m_at + kStart.size() == m_text.size() ||
        !isXmlBlank(m_text[m_at + kStart.size()])) {
      return;
    }
    m_at += kStart.size();
    skipBlanks();
    expect("version", "the XML declaration has no version");
    const std::string_view version = takePlainValue();
    if (!version.starts_with("1.") || version.size() < 3 ||
        version.find_first_not_of("0123456789", 2) != std::string_view::npos) {
      refuse("the version of XML is not 1");
    }
    bool isApart = skipBlanks();
    if (isApart && take("encoding")) {
      if (!utils::isSameIgnoringCase(takePlainValue(), "UTF-8")) {
        refuse("the encoding is not UTF-8");
      }
      isApart = skipBlanks();
    }
    if (isApart && take("standalone")) {
      const std::string_view answer = takePlainValue();
      if (answer != "yes" && answer != "no") {
        refuse("standalone is neither yes nor no");
      }
      skipBlanks();
    }
    expect("?>", "the XML declaration does not end");
  }

  // Blanks, comments, processing instructions; before the root a document type declaration too.
  void scanMiscellany(bool mayDeclareType) {
    for (;;) {
      skipBlanks();
      if (take("<!--")) {
        scanComment();
      } else if (take("<?")) {
        scanInstruction();
      } else if (mayDeclareType && take("<!DOCTYPE")) {
        scanDocumentType();
        mayDeclareType = false;
      } else {
        return;
      }
    }
  }

  void scanComment() {
    skipPast("--");
    expect(">", "two hyphens within a comment");
  }

  void scanInstruction() {
    if (utils::isSameIgnoringCase(takeName(), "xml")) {
      refuse("an XML declaration that does not begin the document");
    }
    if (!isAt("?>") && !skipBlanks()) {
      refuse("a processing instruction without a blank behind its name");
    }
    skipPast("?>");
  }

  void scanDocumentType() {
    if (!skipBlanks()) {
      refuse("a document type without a name");
    }
    static_cast<void>(takeName());
    while (!take(">")) {
      if (isAt("[") || isAt("<")) {
        turnDown("a document type with an internal subset");
      }
      if (isAt("\"") || isAt("'")) {
        const char quote = takeQuote();
        skipPast({&quote, 1});
      } else {
        skipCharacter();
      }
    }
  }

  void scanRoot() {
    if (!isAt("<")) {
      refuse("there is no root element");
    }
    do {
      switch (peek()) {
        case '<':
          scanMarkup();
          break;
        case '&':
          scanReference();
          break;
        case ']':
          if (isAt("]]>")) {
            refuse("the end of a CDATA section that did not begin");
          }
          [[fallthrough]];
        default:
          skipCharacter();
          skipPlain();
      }
    } while (!m_open.empty());
  }

  // An element begins or ends, or something stands in one that is neither.
  void scanMarkup() {
    const char kind = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
    if (kind == '/') {
      m_at += 2;
      scanEndTag();
    } else if (!m_open.empty() && kind == '!') {
      scanDeclared();
    } else if (!m_open.empty() && kind == '?') {
      m_at += 2;
      scanInstruction();
    } else {
      ++m_at;
      scanStartTag();
    }
  }

  void scanDeclared() {
    if (take("<!--")) {
      scanComment();
    } else {
      expect("<![CDATA[", "a declaration within an element");
      skipPast("]]>");
    }
  }

  void scanEndTag() {
    const std::string_view name = takeName();
    if (m_open.empty() || m_open.back() != name) {
      refuse("an end tag of another element");
    }
    m_open.pop_back();
    skipBlanks();
    expect(">", "an end tag that does not end");
  }

  void scanStartTag() {
    if (m_open.size() == kDeepestElement) {
      turnDown("elements too deep within each other");
    }
    m_open.push_back(takeName());
    m_attributes.clear();
    for (;;) {
      const bool isApart = skipBlanks();
      if (peek() == '>') {
        ++m_at;
        return;
      }
      if (peek() == '/') {
        expect("/>", "a tag that does not end");
        m_open.pop_back();
        return;
      }
      if (!isApart) {
        refuse("an attribute without a blank before it");
      }
      scanAttribute();
    }
  }

  void scanAttribute() {
    if (m_attributes.size() == kMostAttributes) {
      turnDown("too many attributes");
    }
    const std::string_view name = takeName();
    if (std::find(m_attributes.begin(), m_attributes.end(), name) != m_attributes.end()) {
      refuse("an attribute twice in one element");
    }
    m_attributes.push_back(name);
    skipBlanks();
    expect("=", "an attribute without a value");
    skipBlanks();
    const char quote = takeQuote();
    for (skipPlain(); peek() != quote; skipPlain()) {
      if (peek() == '<') {
        refuse("a '<' in an attribute");
      }
      if (peek() == '&') {
        scanReference();
      } else {
        skipCharacter();
      }
    }
    ++m_at;
  }

  void scanReference() {
    constexpr std::array<std::string_view, 5> kEntities{"&amp;", "&lt;", "&gt;", "&quot;",
                                                        "&apos;"};
    if (std::any_of(kEntities.begin(), kEntities.end(),
                    [this](std::string_view entity) { return take(entity); })) {
      return;
    }
    expect("&#", "an entity that is not defined");
    const int base = take("x") ? 16 : 10;
    std::uint32_t code = 0;
    const char* const end = m_text.data() + m_text.size();
    const auto [behind, error] = std::from_chars(m_text.data() + m_at, end, code, base);
    if (error != std::errc() || !isXmlCharacter(code)) {
      refuse("a reference to a character that XML does not allow");
    }
    m_at = static_cast<std::size_t>(behind - m_text.data());
    expect(";", "a character reference that does not end");
  }

  std::string_view m_text;
  std::size_t m_at = 0;
  std::vector<std::string_view> m_open;        // names of the elements that have not ended
  std::vector<std::string_view> m_attributes;  // names of those of the element that is read
};

}  // namespace

XmlCheck checkXml(std::string_view document) {
  XmlScanner scanner(document);
  try {
    return {XmlFault::None, "", scanner.scan()};
  } catch (const Fault& fault) {
    return {fault.kind, fault.problem, scanner.getPosition()};
  }
}

}  // namespace cimxml
