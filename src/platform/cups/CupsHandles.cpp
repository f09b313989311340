// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsHandles.h"

#include <array>

namespace torka::platform {

std::string queueUri(const std::string& queueName) {
    std::array<char, HTTP_MAX_URI> uri{};
    const http_uri_status_t status =
        httpAssembleURI(HTTP_URI_CODING_ALL, uri.data(), HTTP_MAX_URI, "ipp", nullptr, "localhost", 0,
                        ("/printers/" + queueName).c_str());
    return status == HTTP_URI_STATUS_OK && !queueName.empty() ? uri.data() : "";
}

IppMessage printerAttributes(const std::string& queueName, const std::vector<const char*>& names) {
    const std::string uri = queueUri(queueName);
    if (uri.empty()) {
        return nullptr;
    }
    ipp_t* request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.c_str());
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes",
                  static_cast<int>(names.size()), nullptr, names.data());
    IppMessage answer(cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/"));
    if (!answer || ippGetStatusCode(answer.get()) > IPP_STATUS_OK_CONFLICTING) {
        return nullptr;
    }
    return answer;
}

std::vector<std::string> attributeTexts(ipp_t* message, const char* name) {
    std::vector<std::string> texts;
    ipp_attribute_t* attribute = ippFindAttribute(message, name, IPP_TAG_ZERO);
    for (int i = 0; i < ippGetCount(attribute); ++i) {
        if (const char* text = ippGetString(attribute, i, nullptr)) {
            texts.emplace_back(text);
        }
    }
    return texts;
}

int attributeInteger(ipp_t* message, const char* name) {
    ipp_attribute_t* attribute = ippFindAttribute(message, name, IPP_TAG_ZERO);
    if (attribute == nullptr) {
        return -1;
    }
    return ippGetValueTag(attribute) == IPP_TAG_BOOLEAN ? ippGetBoolean(attribute, 0)
                                                        : ippGetInteger(attribute, 0);
}

} // namespace torka::platform
