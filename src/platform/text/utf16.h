// Conversions between UTF-8 and UTF-16, the encodings of files and of rich
// text indices. Ill-formed input (stray surrogates, bad UTF-8) becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace paintdoc {

std::u16string Utf8ToUtf16(std::string_view text);
std::string Utf16ToUtf8(std::u16string_view text);
// Appends one code point as UTF-8.
void AppendUtf8(std::string& out, char32_t codePoint);

}  // namespace paintdoc
