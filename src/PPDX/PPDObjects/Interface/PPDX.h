// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/PPDFileStream.h"
#include "PPDX/PPDObjects/Interface/PPDStream.h"
#include "PPDX/Utilities/CString.h"
#include "TextConverter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The standard part of a printer description: its header values, and the reading of tokens and quoted values.
//
// Owns its header values and text converter, and the file stream from StartReading to StopReading. `stream`
// below is a cursor over the current line. Further lines come from the file stream; after reading one,
// `stream` is no longer valid.

namespace torka {

class PPDFile;

class PPDX : public DescriptionLanguage {
public:
    PPDX();
    PPDX(const PPDX&) = delete;
    PPDX& operator=(const PPDX&) = delete;
    virtual ~PPDX();

    // Takes the value of a header keyword ("*" included) from the rest of `stream`. Returns false for any
    // other keyword.
    virtual bool ParsePSKeywords(PPDStream& stream, const char* keyword);

    // Return null until the keyword is read.
    const CString* FormatVersion() const { return formatVersion.get(); }
    const CString* FileVersion() const { return fileVersion.get(); }
    const CString* PCFileName() const { return pcFileName.get(); }
    const CString* LanguageVersion() const override { return languageVersion.get(); }
    const CString* LanguageEncoding() const override { return languageEncoding.get(); }
    const CString* ModelName() const { return modelName.get(); }
    const CString* MakerVersion() const { return makerVersion.get(); }
    const CString* MakerVersionMac() const { return makerVersionMac.get(); }
    const CString* DialogExtension() const { return dialogExtension.get(); }
    // Returns null until both the language version and the language encoding are known.
    TextConverter* Converter() const { return textConverter.get(); }
    // Returns the encoding of the converter.
    CFStringEncoding TextEncoding() const { return textEncoding; }

    // Returns the path of the dialog extension for the queue; "" when the description names none.
    const char* PathToPDE() const;
    // Tells whether the description's "*PCFileName" is one of the names, regardless of letter case. Reads
    // `ppdFile` when given, else the file of `ppdURL`. Without a list every description is valid. With a
    // list, an unreadable file and a file without that keyword are invalid. Does not change the state of the
    // last parse.
    static bool ValidateFileName(const CFURLRef& ppdURL, const CFArrayRef& pcFileNames, PPDFile* ppdFile);

    // Reads a token of `stream` as PPDStream::TakeToken does. `token` holds kLineCapacity bytes. A NUL byte
    // in the token ends it for a reader of C strings. Returns true when the token is not empty.
    static bool NextToken(PPDStream& stream, char* token, const DelimiterSet& delimiters, bool trim);
    // Reads the rest of the line, trimmed and without outer quotes. Returns true when it is not empty.
    static bool RestOfLine(PPDStream& stream, char* value);

    // Reads the value between double quotes, over several lines if necessary. Joins the lines without a
    // separator and skips empty ones. Without a closing quote the value ends before a line that begins with
    // "*", which is returned to the stream, or at the end of the file. Cuts the value to `capacity` - 1
    // bytes, terminates it, and still reads the part beyond. Returns the length + 1, or 0 for an empty value
    // or no opening quote.
    long GetQuotedString(PPDStream& stream, char* out, long capacity);

    // Reads the next line up to its first NUL. `line` gets a view that the next reading of a line, or of a
    // value of several lines, ends. Returns false when there is none: at the end of the file or of the
    // description, or without a file. Loops that search for a line end then.
    bool ReadLine(std::string_view& line);
    // Does the same, but skips empty lines.
    bool ReadNonEmptyLine(std::string_view& line);
    // Returns the last line to the stream; the next ReadLine gives it again.
    void PushBackLine();
    // Returns the number of the last line read, from 1; 0 before the first.
    std::uint32_t LineNumber() const;
    // Returns the lines, ascending, on which quoted values without a closing quote began; the first 10,000 of
    // them.
    const std::vector<std::uint32_t>& UnclosedValues() const { return unclosedValues; }
    // Does the same for the values that GetQuotedString has cut.
    const std::vector<std::uint32_t>& CutValues() const { return cutValues; }
    // Does the same for the lines that have text behind a closing quote, other than a translation ("/TEXT").
    // Nothing reads that text.
    const std::vector<std::uint32_t>& TextsBehindQuotes() const { return textsBehindQuotes; }

    // Given interface; no caller here
    // Does the same as GetQuotedString for PostScript, with a line feed before each joined line and one at
    // the end (in the last byte when cut). A line that begins with "*%" belongs to the value without these
    // two characters. A line that begins an element such as "*%ZANFlags" ends the value. Returns 0, and an
    // empty `out`, also when the file ends before the value.
    long GetPostscriptString(PPDStream& stream, char* out, long capacity);

protected:
    // Reads the value of GetQuotedString or, for PostScript, of GetPostscriptString without the line feed at
    // its end, and cuts it to `room` bytes. Returns a view of the line, or of a copy that the next value
    // ends.
    std::string_view TakeValue(PPDStream& stream, std::size_t room, bool isPostscript);

    // Takes the stream, resets the end-of-PPD flag, and sets the application's text encoding to UTF-8 until
    // the description names its own. Returns false when the stream is bad.
    bool StartReading(std::unique_ptr<PPDFileStream> stream);
    // Tells whether a read of the file failed: the lines behind are missing. Ask before StopReading.
    bool HasReadFault() const { return fileStream && fileStream->HasReadFault(); }
    void StopReading();

    using HeaderValue = std::unique_ptr<CString>;
    HeaderValue formatVersion;
    HeaderValue fileVersion;
    HeaderValue pcFileName;
    HeaderValue languageVersion;
    HeaderValue languageEncoding;
    HeaderValue modelName;
    HeaderValue makerVersion;
    HeaderValue makerVersionMac;
    HeaderValue dialogExtension;

private:
    void LookBehindQuote(std::string_view rest);
    bool ReadRestOfValue(std::size_t room, bool isPostscript);
    void RemakeConverter();

    std::unique_ptr<TextConverter> textConverter;
    CFStringEncoding textEncoding = kCFStringEncodingUnknown;
    std::unique_ptr<PPDFileStream> fileStream;
    std::string longValue; // of several lines; kept for its capacity while reading
    std::vector<std::uint32_t> unclosedValues;
    std::vector<std::uint32_t> cutValues;
    std::vector<std::uint32_t> textsBehindQuotes;
};

} // namespace torka
