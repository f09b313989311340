#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The comments of the Document Structuring Conventions 3.0 (Adobe technical note 5001) that decide where
// things go.

namespace torka {

enum class DscKind {
    other,
    endComments,
    beginProlog,
    endProlog,
    beginSetup,
    endSetup,
    page,
    beginPageSetup,
    endPageSetup,
    trailer,
    endOfFile,
    beginDocument,
    endDocument,
    beginResource, // also procedure sets, fonts, files and previews: sections whose comments are not the
                   // document's
    endResource,
    beginData, // also the older binary sections
    endData,
    beginFeature,
    endFeature,
    includeFeature,
};

struct DscComment {
    DscKind kind = DscKind::other;
    std::string_view arguments; // what follows the colon, without blanks around it; a part of the line
};

// REQUIRES: `line` begins with "%%" and has no line end.
DscComment readDscComment(std::string_view line);

// Whether the line belongs to the header comments of a document. They end with %%EndComments, before the
// first line that does not begin with "%" and a character that prints, and before a comment that opens or
// closes a section.
bool isHeaderComment(std::string_view line);

// The extent of a data section: "count [type [Bytes|Lines]]". Nothing when the count is no number.
struct DscDataExtent {
    std::uint64_t count = 0; // held to the range of the type
    bool isLines = false;
};
std::optional<DscDataExtent> readDataExtent(std::string_view arguments);

// The first word, and the line without blanks at its ends.
std::string_view firstWord(std::string_view text);
std::string_view withoutOuterBlanks(std::string_view text);

// The line that opens or closes the wrapper which keeps a failing feature from ending the job:
// "[{" ... "} stopped cleartomark", in the spellings that print systems write.
inline constexpr std::size_t maximumWrapperLine = 32;
bool isWrapperOpening(std::string_view line);
bool isWrapperClosing(std::string_view line);

inline bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

} // namespace torka
