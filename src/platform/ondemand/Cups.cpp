// SPDX-License-Identifier: Apache-2.0
// The client library of the print server, loaded at the first call. A program that links this file defines
// the functions that our code calls, so the linker leaves the library out: a command that asks the server
// nothing starts without it and without what it brings (TLS and Kerberos). A program exports no symbols, so
// the calls that the library makes stay its own. A function whose type differs from its declaration in
// <cups/...> does not compile.
#include "platform/ondemand/Library.h"

#include <cups/cups.h>
#include <cups/ppd.h>

// NOLINTBEGIN(bugprone-macro-parentheses): a type in parentheses does not compile
#define FORWARD(Result, name, parameters, arguments)                                                         \
    Result name parameters {                                                                                 \
        static const auto function =                                                                         \
            reinterpret_cast<Result(*) parameters>(torka::platform::onDemand("libcups.so.2", #name));        \
        return function arguments;                                                                           \
    }
// NOLINTEND(bugprone-macro-parentheses)

extern "C" {

FORWARD(int, cupsAddOption, (const char* name, const char* value, int num_options, cups_option_t** options),
        (name, value, num_options, options))
FORWARD(ipp_status_t, cupsCancelJob2, (http_t * http, const char* name, int job_id, int purge),
        (http, name, job_id, purge))
FORWARD(int, cupsCreateJob,
        (http_t * http, const char* name, const char* title, int num_options, cups_option_t* options),
        (http, name, title, num_options, options))
FORWARD(ipp_t*, cupsDoFileRequest,
        (http_t * http, ipp_t* request, const char* resource, const char* filename),
        (http, request, resource, filename))
FORWARD(ipp_t*, cupsDoRequest, (http_t * http, ipp_t* request, const char* resource),
        (http, request, resource))
FORWARD(http_encryption_t, cupsEncryption, (), ())
FORWARD(ipp_status_t, cupsFinishDocument, (http_t * http, const char* name), (http, name))
FORWARD(void, cupsFreeDests, (int num_dests, cups_dest_t* dests), (num_dests, dests))
FORWARD(void, cupsFreeJobs, (int num_jobs, cups_job_t* jobs), (num_jobs, jobs))
FORWARD(void, cupsFreeOptions, (int num_options, cups_option_t* options), (num_options, options))
FORWARD(const char*, cupsGetDefault, (), ())
FORWARD(int, cupsGetDests2, (http_t * http, cups_dest_t** dests), (http, dests))
FORWARD(int, cupsGetJobs2, (http_t * http, cups_job_t** jobs, const char* name, int myjobs, int whichjobs),
        (http, jobs, name, myjobs, whichjobs))
FORWARD(cups_dest_t*, cupsGetNamedDest, (http_t * http, const char* name, const char* instance),
        (http, name, instance))
FORWARD(const char*, cupsGetOption, (const char* name, int num_options, cups_option_t* options),
        (name, num_options, options))
FORWARD(const char*, cupsGetPPD, (const char* name), (name))
FORWARD(ipp_status_t, cupsLastError, (), ())
FORWARD(const char*, cupsLastErrorString, (), ())
FORWARD(int, cupsParseOptions, (const char* arg, int num_options, cups_option_t** options),
        (arg, num_options, options))
FORWARD(int, cupsPrintFile2,
        (http_t * http, const char* name, const char* filename, const char* title, int num_options,
         cups_option_t* options),
        (http, name, filename, title, num_options, options))
FORWARD(http_status_t, cupsSendRequest, (http_t * http, ipp_t* request, const char* resource, size_t length),
        (http, request, resource, length))
FORWARD(const char*, cupsServer, (), ())
FORWARD(void, cupsSetPasswordCB2, (cups_password_cb2_t cb, void* user_data), (cb, user_data))
FORWARD(http_status_t, cupsStartDocument,
        (http_t * http, const char* name, int job_id, const char* docname, const char* format,
         int last_document),
        (http, name, job_id, docname, format, last_document))
FORWARD(const char*, cupsUser, (), ())
FORWARD(http_status_t, cupsWriteRequestData, (http_t * http, const char* buffer, size_t length),
        (http, buffer, length))
FORWARD(http_uri_status_t, httpAssembleURI,
        (http_uri_coding_t encoding, char* uri, int urilen, const char* scheme, const char* username,
         const char* host, int port, const char* resource),
        (encoding, uri, urilen, scheme, username, host, port, resource))
FORWARD(void, httpClearFields, (http_t * http), (http))
FORWARD(void, httpClose, (http_t * http), (http))
FORWARD(http_t*, httpConnect2,
        (const char* host, int port, http_addrlist_t* addrlist, int family, http_encryption_t encryption,
         int blocking, int msec, int* cancel),
        (host, port, addrlist, family, encryption, blocking, msec, cancel))
FORWARD(char*, httpDecode64_2, (char* out, int* outlen, const char* in), (out, outlen, in))
FORWARD(char*, httpEncode64_2, (char* out, int outlen, const char* in, int inlen), (out, outlen, in, inlen))
FORWARD(int, httpGetFd, (http_t * http), (http))
FORWARD(int, httpOptions, (http_t * http, const char* uri), (http, uri))
FORWARD(int, httpPost, (http_t * http, const char* uri), (http, uri))
FORWARD(ssize_t, httpRead2, (http_t * http, char* buffer, size_t length), (http, buffer, length))
FORWARD(http_uri_status_t, httpSeparateURI,
        (http_uri_coding_t decoding, const char* uri, char* scheme, int schemelen, char* username,
         int usernamelen, char* host, int hostlen, int* port, char* resource, int resourcelen),
        (decoding, uri, scheme, schemelen, username, usernamelen, host, hostlen, port, resource, resourcelen))
FORWARD(void, httpSetField, (http_t * http, http_field_t field, const char* value), (http, field, value))
FORWARD(void, httpSetLength, (http_t * http, size_t length), (http, length))
FORWARD(void, httpSetTimeout, (http_t * http, double timeout, http_timeout_cb_t cb, void* user_data),
        (http, timeout, cb, user_data))
FORWARD(http_status_t, httpUpdate, (http_t * http), (http))
FORWARD(ipp_attribute_t*, ippAddBoolean, (ipp_t * ipp, ipp_tag_t group, const char* name, char value),
        (ipp, group, name, value))
FORWARD(ipp_attribute_t*, ippAddInteger,
        (ipp_t * ipp, ipp_tag_t group, ipp_tag_t value_tag, const char* name, int value),
        (ipp, group, value_tag, name, value))
FORWARD(ipp_attribute_t*, ippAddString,
        (ipp_t * ipp, ipp_tag_t group, ipp_tag_t value_tag, const char* name, const char* language,
         const char* value),
        (ipp, group, value_tag, name, language, value))
FORWARD(ipp_attribute_t*, ippAddStrings,
        (ipp_t * ipp, ipp_tag_t group, ipp_tag_t value_tag, const char* name, int num_values,
         const char* language, const char* const* values),
        (ipp, group, value_tag, name, num_values, language, values))
FORWARD(void, ippDelete, (ipp_t * ipp), (ipp))
FORWARD(ipp_attribute_t*, ippFindAttribute, (ipp_t * ipp, const char* name, ipp_tag_t value_tag),
        (ipp, name, value_tag))
FORWARD(ipp_attribute_t*, ippFirstAttribute, (ipp_t * ipp), (ipp))
FORWARD(int, ippGetBoolean, (ipp_attribute_t * attr, int element), (attr, element))
FORWARD(ipp_t*, ippGetCollection, (ipp_attribute_t * attr, int element), (attr, element))
FORWARD(int, ippGetCount, (ipp_attribute_t * attr), (attr))
FORWARD(ipp_tag_t, ippGetGroupTag, (ipp_attribute_t * attr), (attr))
FORWARD(int, ippGetInteger, (ipp_attribute_t * attr, int element), (attr, element))
FORWARD(const char*, ippGetName, (ipp_attribute_t * attr), (attr))
FORWARD(void*, ippGetOctetString, (ipp_attribute_t * attr, int element, int* datalen),
        (attr, element, datalen))
FORWARD(ipp_state_t, ippGetState, (ipp_t * ipp), (ipp))
FORWARD(ipp_status_t, ippGetStatusCode, (ipp_t * ipp), (ipp))
FORWARD(const char*, ippGetString, (ipp_attribute_t * attr, int element, const char** language),
        (attr, element, language))
FORWARD(ipp_tag_t, ippGetValueTag, (ipp_attribute_t * attr), (attr))
FORWARD(size_t, ippLength, (ipp_t * ipp), (ipp))
FORWARD(ipp_t*, ippNew, (), ())
FORWARD(ipp_t*, ippNewRequest, (ipp_op_t op), (op))
FORWARD(ipp_attribute_t*, ippNextAttribute, (ipp_t * ipp), (ipp))
FORWARD(int, ippPort, (), ())
FORWARD(ipp_state_t, ippRead, (http_t * http, ipp_t* ipp), (http, ipp))
FORWARD(ipp_state_t, ippReadIO, (void* src, ipp_iocb_t cb, int blocking, ipp_t* parent, ipp_t* ipp),
        (src, cb, blocking, parent, ipp))
FORWARD(int, ippSetState, (ipp_t * ipp, ipp_state_t state), (ipp, state))
FORWARD(ipp_state_t, ippWrite, (http_t * http, ipp_t* ipp), (http, ipp))
FORWARD(void, ppdClose, (ppd_file_t * ppd), (ppd))
FORWARD(const char*, ppdErrorString, (ppd_status_t status), (status))
FORWARD(ppd_attr_t*, ppdFindAttr, (ppd_file_t * ppd, const char* name, const char* spec), (ppd, name, spec))
FORWARD(ppd_choice_t*, ppdFindChoice, (ppd_option_t * o, const char* option), (o, option))
FORWARD(ppd_option_t*, ppdFindOption, (ppd_file_t * ppd, const char* keyword), (ppd, keyword))
FORWARD(ppd_status_t, ppdLastError, (int* line), (line))
FORWARD(ppd_file_t*, ppdOpenFile, (const char* filename), (filename))

} // extern "C"

#undef FORWARD
