#include "cli/JsonOutput.h"

#include <nlohmann/json.hpp>
#include <variant>

#include "Utils/Printable.h"
#include "platform/Texts.h"

namespace cli {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;
constexpr int kOneLine = -1;

using MakeText = std::string (*)(const std::string& text);

class Writer {
 public:
  explicit Writer(MakeText makeText) : m_makeText(makeText) {}

  Json operator()(std::monostate) const { return nullptr; }
  template <class Scalar>
  Json operator()(Scalar scalar) const {
    return scalar;
  }
  Json operator()(const std::string& text) const { return m_makeText(text); }
  Json operator()(const client::Value::Array& items) const {
    Json result = Json::array();
    for (const client::Value& item : items) {
      result.push_back(write(item));
    }
    return result;
  }
  // Names of fields are no texts from outside.
  Json operator()(const client::Value::Object& fields) const {
    Json result = Json::object();
    for (const auto& [name, value] : fields) {
      result[name] = write(value);
    }
    return result;
  }

  [[nodiscard]] Json write(const client::Value& value) const {
    return std::visit(*this, value.variant());
  }

 private:
  const MakeText m_makeText;
};

std::string toText(const client::Value& document, MakeText makeText, int indent) {
  return utils::toPrintableJson(
      Writer(makeText).write(document).dump(indent, ' ', false, Json::error_handler_t::replace));
}

}  // namespace

void printJson(std::ostream& out, const client::Value& document) {
  out << toText(document, platform::toUtf8, kIndent) << '\n';
}

std::string toJsonLine(const client::Value& document) {
  return toText(
      document, [](const std::string& text) { return text; }, kOneLine);
}

}  // namespace cli
