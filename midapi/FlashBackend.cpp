#include "midapi/FlashBackend.h"

#include <array>
#include <string_view>
#include <utility>

namespace ma {
namespace {

struct ErrorText {
  FlashError error;
  std::string_view text;
};

constexpr std::array<ErrorText, 14> kErrorTexts = {{
    {FlashError::None, ""},
    {FlashError::UnknownAdapter, "The adapter is not known"},
    {FlashError::InvalidDescription, "The adapter's description is not valid"},
    {FlashError::NotUpdatable, "The adapter's firmware cannot be replaced"},
    {FlashError::EmptyImage, "The flash image is empty"},
    {FlashError::InputOutput, "The adapter's files could not be used"},
    {FlashError::CompareMismatch, "The flash does not hold what was written"},
    {FlashError::ImageTooLarge, "The flash image is too large"},
    {FlashError::WriteRefused, "The adapter's driver has not written the firmware"},
    {FlashError::Ambiguous, "Two adapters have one address"},
    {FlashError::NotOffered, "The adapter's driver does not offer that"},
    {FlashError::NotActivated, "The adapter's driver has not activated the firmware"},
    {FlashError::NotCompared, "The flash could not be compared with what was written"},
    {FlashError::Changed, "The adapter is not as it was when the file was checked"},
}};

std::string textOf(FlashError error) {
  for (const ErrorText& entry : kErrorTexts) {
    if (entry.error == error) {
      return std::string(entry.text);
    }
  }
  return {};
}

}  // namespace

FlashFault::FlashFault(FlashError error, const std::string& detail)
    : FlashFault(static_cast<std::uint32_t>(error), textOf(error) + ": " + detail) {}

FlashFault::FlashFault(std::uint32_t code, std::string text)
    : m_code(code), m_text(std::move(text)) {}

}  // namespace ma
