// MD5 (RFC 1321), for the freedesktop thumbnail cache, which names each
// thumbnail by the MD5 of its file's URI. Not for anything that needs a
// secure hash.
#pragma once

#include <string>
#include <string_view>

namespace paintdoc::cli {

// The 32 lowercase hexadecimal digits of the MD5 of `text`.
std::string Md5Hex(std::string_view text);

}  // namespace paintdoc::cli
