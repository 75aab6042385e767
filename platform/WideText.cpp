#include "platform/WideText.h"

#include <algorithm>

std::string toNarrow(std::wstring_view text) {
    std::string result(text.size(), '\0');
    std::ranges::transform(text, result.begin(), [](wchar_t c) { return static_cast<char>(c); });
    return result;
}

std::wstring toWide(std::string_view text) {
    std::wstring result(text.size(), L'\0');
    std::ranges::transform(text, result.begin(), [](unsigned char c) { return static_cast<wchar_t>(c); });
    return result;
}
