#include "LanguageServer/FileUri.h"

#include <charconv>
#include <string_view>

static constexpr std::string_view scheme = "file://";

std::string ReadFileUri(const std::string& uri)
{
    if (!uri.starts_with(scheme))
        return "";
    std::string path;
    for (std::size_t at = uri.find('/', scheme.size()); at < uri.size(); ++at) {
        unsigned char byte = 0;
        const char* const digits = uri.data() + at + 1;
        if (uri[at] == '%' && at + 2 < uri.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            path += static_cast<char>(byte);
            at += 2;
        } else {
            path += uri[at];
        }
    }
    return path;
}

std::string MakeFileUri(const std::string& path)
{
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/!$&'()*+,;=:@";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri(scheme);
    for (const char ch : path) {
        const auto byte = static_cast<unsigned char>(ch);
        if (plain.find(ch) != std::string_view::npos)
            uri += ch;
        else
            uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return uri;
}
