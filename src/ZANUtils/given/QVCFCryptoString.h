// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

namespace torka {

// Strings that are stored enciphered: their UTF-8 bytes under AES-128 in cipher-block chaining mode with PKCS
// #7 padding, as Base64. The key is derived from the password (cdsaDeriveKey, salt "vrznTupl"). The initial
// vector is that of the installed field keys.
//
// Return null on failure, and print the provider's error with the label of the failed step: "Attach to CSP",
// "DeriveKey", "cdsaEncrypt" or "cdsaDecrypt". An absent text counts as empty. An absent password fails in
// "DeriveKey".
CFStringRef QVCFCreateEncryptedString(const CFStringRef& plainText, const CFStringRef& password);
// Also returns null, without a message, when the deciphered bytes are not UTF-8.
CFStringRef QVCFCreateDecryptedString(const CFStringRef& cipherText, const CFStringRef& password);
CFStringRef CSSMCreateCryptoString(const CFStringRef& text, const CFStringRef& password, bool encrypt);

} // namespace torka
