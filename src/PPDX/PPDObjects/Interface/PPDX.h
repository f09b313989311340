#pragma once

#include "PPDX/PPDObjects/Interface/PPDFileStream.h"
#include "PPDX/PPDObjects/Interface/PPDStream.h"
#include "PPDX/Utilities/CString.h"
#include "TextConverter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// The standard part of a printer description: its header values, and the reading of tokens and quoted values.
//
// Owns its header values and its text converter, and the file stream while a file is read (StartReading to
// StopReading). `stream` below is a cursor over the current line; the lines that follow come from the file
// stream.

namespace torka {

class PPDFile;

class PPDX : public DescriptionLanguage {
public:
    PPDX();
    PPDX(const PPDX&) = delete;
    PPDX& operator=(const PPDX&) = delete;
    virtual ~PPDX();

    // Takes the value of a header keyword ("*" included) from the rest of `stream`. False for any other
    // keyword.
    virtual bool ParsePSKeywords(PPDStream& stream, const char* keyword);

    // Null until the keyword is read.
    const CString* FormatVersion() const { return formatVersion.get(); }
    const CString* FileVersion() const { return fileVersion.get(); }
    const CString* PCFileName() const { return pcFileName.get(); }
    const CString* LanguageVersion() const override { return languageVersion.get(); }
    const CString* LanguageEncoding() const override { return languageEncoding.get(); }
    const CString* ModelName() const { return modelName.get(); }
    const CString* MakerVersion() const { return makerVersion.get(); }
    const CString* MakerVersionMac() const { return makerVersionMac.get(); }
    const CString* DialogExtension() const { return dialogExtension.get(); }
    // Null until both the language version and the language encoding are known.
    TextConverter* Converter() const { return textConverter.get(); }

    // The path of the dialog extension that serves the queue; "" when the description names none.
    const char* PathToPDE() const;
    // Whether the description's "*PCFileName" is one of the names (letter case does not count). `ppdFile` is
    // read when given, else the file of `ppdURL`. Without a list every description is valid; with one an
    // unreadable file and one without that keyword are not. What is known of the description parsed last
    // stays as it is.
    static bool ValidateFileName(const CFURLRef& ppdURL, const CFArrayRef& pcFileNames, PPDFile* ppdFile);

    // A token of `stream` as by PPDStream::TakeToken. `token` holds kLineCapacity bytes; a token with a NUL
    // byte ends there for whoever reads it as a C string. True when it is not empty.
    static bool NextToken(PPDStream& stream, char* token, const DelimiterSet& delimiters, bool trim);
    // The rest of the line, trimmed, without quotes around it. True when it is not empty.
    static bool RestOfLine(PPDStream& stream, char* value);

    // The value between double quotes, over several lines when it needs them: they are joined with nothing in
    // between, empty ones passed over. Without a closing quote it ends before a line that begins with "*",
    // which is handed back, or at the end of the file. Cut to `capacity` - 1 bytes and terminated; what is
    // cut off is still read. Returns the length + 1, or 0 for an empty value or no opening quote.
    long GetQuotedString(PPDStream& stream, char* out, long capacity);
    // The same for PostScript: a line feed before each joined line and one at the end (in the last byte when
    // cut); a line that begins with "*%" is part of the value without these two characters,
    // unless it begins an element such as "*%ZANFlags", which ends the value. Returns 0, and an
    // empty `out`, also when the file ends before the value does.
    long GetPostscriptString(PPDStream& stream, char* out, long capacity);

    // The next line that there is to handle, into kLineCapacity bytes; false once there is none: at the end
    // of the file or of the description, or without a file. Loops that wait for a line end with it.
    bool ReadLine(char* line);
    // As ReadLine, but passes over empty lines.
    bool ReadNonEmptyLine(char* line);
    // Hands back the line read last; the next ReadLine gives it again.
    void PushBackLine(const char* line);
    // Of the line read last, from 1; 0 when none has been read.
    std::uint32_t LineNumber() const;
    bool LineWasCut() const;
    // The lines, ascending, on which quoted values began that had no closing quote; the first 10,000 of them.
    const std::vector<std::uint32_t>& UnclosedValues() const { return unclosedValues; }

protected:
    // Takes the stream, resets the end-of-PPD flag and sets the application's text encoding to UTF-8 until
    // the description names its own. False when the stream is bad.
    bool StartReading(std::unique_ptr<PPDFileStream> stream);
    void StopReading() { fileStream.reset(); }
    PPDFileStream* FileStream() const { return fileStream.get(); }

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
    struct ValueWriter;
    enum class ValueEnd { closed, nextElement, endOfFile };
    ValueEnd CopyValue(PPDStream& stream, ValueWriter& writer, bool isPostscript);
    void RemakeConverter();

    std::unique_ptr<TextConverter> textConverter;
    std::unique_ptr<PPDFileStream> fileStream;
    std::vector<std::uint32_t> unclosedValues;
};

} // namespace torka
