// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/given/QVCFCryptoString.h"

#include "ZANUtils/CSSM/CDSACrypto.h"
#include "ZANUtils/QVCFBase64.h"
#include "platform/TextEncoding.h"

#include <string>
#include <string_view>

namespace torka {

namespace {

constexpr std::string_view salt = "vrznTupl";
constexpr std::uint32_t keySizeInBits = 128;

// Returns the UTF-8 bytes of a text; none for null.
SecureBuffer utf8Bytes(const CFStringRef& text) {
    std::string bytes = utf8Text(text);
    SecureBuffer copy(bytes.begin(), bytes.end());
    wipe(bytes.data(), bytes.size());
    return copy;
}

Bytes asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

CSSM_RETURN derive(const CSSM_CSP_HANDLE& csp, const CFStringRef& password, CSSM_KEY& key) {
    if (!password) {
        return CSSMERR_CSP_MISSING_ATTR_KEY;
    }
    return cdsaDeriveKey(csp, utf8Bytes(password), asBytes(salt), CSSM_ALGID_AES, keySizeInBits, key);
}

} // namespace

CFStringRef CSSMCreateCryptoString(const CFStringRef& text, const CFStringRef& password, bool encrypt) {
    SecureBuffer input;
    if (encrypt) {
        input = utf8Bytes(text);
    } else {
        const CFDataRef decoded = QVCFBase64CreateDecodedData(text);
        input.assign(decoded->bytes.begin(), decoded->bytes.end());
    }
    CSSM_CSP_HANDLE csp;
    if (const CSSM_RETURN result = cdsaCspAttach(csp); result != CSSM_OK) {
        cssmPerror("Attach to CSP", result);
        return nullptr;
    }
    CSSM_KEY key;
    SecureBuffer output;
    const char* label = "DeriveKey";
    CSSM_RETURN result = derive(csp, password, key);
    if (result == CSSM_OK) {
        label = encrypt ? "cdsaEncrypt" : "cdsaDecrypt";
        result = encrypt ? cdsaEncrypt(csp, key, input, output) : cdsaDecrypt(csp, key, input, output);
    }
    cdsaFreeKey(csp, key);
    cdsaCspDetach(csp);
    if (result != CSSM_OK) {
        cssmPerror(label, result);
        return nullptr;
    }
    if (encrypt) {
        return QVCFBase64CreateEncodedString(CFDataCreate(output.data(), output.size()));
    }
    return CFStringCreateWithBytes(reinterpret_cast<const char*>(output.data()),
                                   static_cast<CFIndex>(output.size()), kCFStringEncodingUTF8);
}

CFStringRef QVCFCreateEncryptedString(const CFStringRef& plainText, const CFStringRef& password) {
    return CSSMCreateCryptoString(plainText, password, true);
}

CFStringRef QVCFCreateDecryptedString(const CFStringRef& cipherText, const CFStringRef& password) {
    return CSSMCreateCryptoString(cipherText, password, false);
}

} // namespace torka
