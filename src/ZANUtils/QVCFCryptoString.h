#pragma once

#include "platform/CoreFoundation.h"

namespace torka {

// Strings that are stored enciphered: the UTF-8 bytes under AES-128 in cipher-block chaining mode with PKCS
// #7 padding, as Base64. The key is derived from the password (cdsaDeriveKey, salt "vrznTupl"), the initial
// vector is that of the installed field keys.
//
// Null on failure, after the provider's error was printed with the label of the step that failed: "Attach to
// CSP", "DeriveKey", "cdsaEncrypt" or "cdsaDecrypt". An absent text counts as empty; an absent password is an
// error of "DeriveKey".
CFStringRef QVCFCreateEncryptedString(const CFStringRef& plainText, const CFStringRef& password);
// Null, with nothing printed, also for deciphered bytes that are not UTF-8.
CFStringRef QVCFCreateDecryptedString(const CFStringRef& cipherText, const CFStringRef& password);
CFStringRef CSSMCreateCryptoString(const CFStringRef& text, const CFStringRef& password, bool encrypt);

} // namespace torka
