// SPDX-License-Identifier: Apache-2.0
// The URL functions of CoreFoundation.h (RFC 3986; parsed as in its appendix B).

#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace torka::platform {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isUnreserved(char c) {
    return isLetter(c) || isDigit(c) || std::string_view("-._~").find(c) != std::string_view::npos;
}

int hexValue(char c) {
    if (isDigit(c)) {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The byte of the escape at `position`; -1 when no escape stands there.
int escapedByte(std::string_view text, std::size_t position) {
    if (position + 2 >= text.size() || text[position] != '%') {
        return -1;
    }
    const int high = hexValue(text[position + 1]);
    const int low = hexValue(text[position + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

std::string undoEscapes(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int byte = escapedByte(text, i);
        if (byte < 0) {
            plain += text[i];
        } else {
            plain += static_cast<char>(byte);
            i += 2;
        }
    }
    return plain;
}

struct UrlPieces {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
};

UrlPieces takeApart(std::string_view url) {
    UrlPieces pieces;
    const std::size_t colon = url.find_first_of(":/?#");
    if (colon != std::string_view::npos && colon > 0 && url[colon] == ':' && isLetter(url.front())) {
        pieces.scheme = url.substr(0, colon);
        url.remove_prefix(colon + 1);
    }
    if (url.starts_with("//")) {
        url.remove_prefix(2);
        const std::size_t end = std::min(url.find_first_of("/?#"), url.size());
        pieces.authority = url.substr(0, end);
        url.remove_prefix(end);
    }
    pieces.path = url.substr(0, url.find_first_of("?#"));
    return pieces;
}

bool isUrlText(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' ? escapedByte(text, i) < 0
                           : !isUnreserved(text[i]) && std::string_view(":/?#[]@!$&'()*+,;=").find(text[i]) ==
                                                           std::string_view::npos) {
            return false;
        }
    }
    return !text.empty();
}

} // namespace

CFURLRef CFURLCreateWithFileSystemPath(std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos) {
        return nullptr;
    }
    std::string whole(path);
    if (path.front() != '/') {
        std::error_code failure;
        whole = std::filesystem::absolute(whole, failure).string();
        if (failure) {
            return nullptr;
        }
    }
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text = "file://";
    for (const char c : whole) {
        if (isUnreserved(c) || std::string_view("/!$&'()*+,=:@").find(c) != std::string_view::npos) {
            text += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return std::make_shared<const CFURL>(std::move(text));
}

CFURLRef CFURLCreateWithString(const CFStringRef& text) {
    std::string url = utf8Text(text);
    return isUrlText(url) ? std::make_shared<const CFURL>(std::move(url)) : nullptr;
}

CFStringRef CFURLGetString(const CFURLRef& url) { return url ? cfString(url->text) : nullptr; }

CFStringRef CFURLCopyScheme(const CFURLRef& url) {
    if (!url) {
        return nullptr;
    }
    const UrlPieces pieces = takeApart(url->text);
    return pieces.scheme ? cfString(*pieces.scheme) : nullptr;
}

CFStringRef CFURLCopyHostName(const CFURLRef& url) {
    if (!url) {
        return nullptr;
    }
    std::string_view host = takeApart(url->text).authority.value_or("");
    const std::size_t at = host.rfind('@');
    if (at != std::string_view::npos) {
        host.remove_prefix(at + 1);
    }
    if (host.starts_with('[') && host.find(']') != std::string_view::npos) {
        host = host.substr(1, host.find(']') - 1);
    } else {
        host = host.substr(0, host.rfind(':'));
    }
    return host.empty() ? nullptr : cfString(undoEscapes(host));
}

std::string CFURLCopyFileSystemPath(const CFURLRef& url) {
    if (!url) {
        return {};
    }
    std::string path = undoEscapes(takeApart(url->text).path);
    // The system would cut the path at an escaped NUL and open another file.
    return path.find('\0') == std::string::npos ? path : std::string();
}

CFStringRef CFURLCreateStringByReplacingPercentEscapes(const CFStringRef& text) {
    const auto utf8 = text ? encodeText(text->units, kCFStringEncodingUTF8) : std::nullopt;
    if (!utf8) {
        return nullptr;
    }
    for (std::size_t i = utf8->find('%'); i != std::string::npos; i = utf8->find('%', i + 1)) {
        if (escapedByte(*utf8, i) <= 0) {
            return nullptr;
        }
    }
    const std::string plain = undoEscapes(*utf8);
    return CFStringCreateWithBytes(plain.data(), static_cast<CFIndex>(plain.size()), kCFStringEncodingUTF8);
}

bool CFURLGetFSRef(const CFURLRef& url, FSRef& file) {
    file.path.clear();
    if (CFStringCompare(CFURLCopyScheme(url), cfString("file"), kCFCompareCaseInsensitive) != 0) {
        return false;
    }
    file.path = CFURLCopyFileSystemPath(url);
    return !file.path.empty();
}

} // namespace torka::platform
