// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/CSSMTypes.h"

#include "platform/Log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/random.h>

namespace torka {

std::string cssmErrorString(CSSM_RETURN code) {
    switch (code) {
    case CSSM_OK:
        return "CSSM_OK";
    case CSSMERR_CSP_INTERNAL_ERROR:
        return "CSSMERR_CSP_INTERNAL_ERROR";
    case CSSMERR_CSP_INVALID_CSP_HANDLE:
        return "CSSMERR_CSP_INVALID_CSP_HANDLE";
    case CSSMERR_CSP_FUNCTION_NOT_IMPLEMENTED:
        return "CSSMERR_CSP_FUNCTION_NOT_IMPLEMENTED";
    case CSSMERR_CSP_INPUT_LENGTH_ERROR:
        return "CSSMERR_CSP_INPUT_LENGTH_ERROR";
    case CSSMERR_CSP_INVALID_KEY:
        return "CSSMERR_CSP_INVALID_KEY";
    case CSSMERR_CSP_INVALID_KEY_CLASS:
        return "CSSMERR_CSP_INVALID_KEY_CLASS";
    case CSSMERR_CSP_ALGID_MISMATCH:
        return "CSSMERR_CSP_ALGID_MISMATCH";
    case CSSMERR_CSP_UNSUPPORTED_KEY_SIZE:
        return "CSSMERR_CSP_UNSUPPORTED_KEY_SIZE";
    case CSSMERR_CSP_INVALID_ALGORITHM:
        return "CSSMERR_CSP_INVALID_ALGORITHM";
    case CSSMERR_CSP_MISSING_ATTR_KEY:
        return "CSSMERR_CSP_MISSING_ATTR_KEY";
    case CSSMERR_CSP_MISSING_ATTR_INIT_VECTOR:
        return "CSSMERR_CSP_MISSING_ATTR_INIT_VECTOR (no field keys are installed)";
    case CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS:
        return "CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS";
    case CSSMERR_CSP_INVALID_DATA:
        return "CSSMERR_CSP_INVALID_DATA";
    case CSSMERR_CSP_VERIFY_FAILED:
        return "CSSMERR_CSP_VERIFY_FAILED";
    case CSSMERR_CSP_INVALID_SIGNATURE:
        return "CSSMERR_CSP_INVALID_SIGNATURE";
    default:
        return "error " + std::to_string(code);
    }
}

void cssmPerror(const char* label, CSSM_RETURN code) {
    std::fprintf(stderr, "%s: %s\n", label, cssmErrorString(code).c_str());
}

void cspRandomBytes(void*, std::size_t length, std::uint8_t* out) {
    constexpr std::size_t largestRequest = 256; // the kernel completes requests up to this size
    while (length > 0) {
        const ssize_t got = ::getrandom(out, std::min(length, largestRequest), 0);
        // Ends the process on a failure: nettle cannot report it, and keys from other bytes would be
        // worthless.
        TORKA_ASSERT(got > 0 || errno == EINTR, "CSSMTypes.cpp");
        if (got > 0) {
            out += got;
            length -= static_cast<std::size_t>(got);
        }
    }
}

} // namespace torka
