// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Reads the comments of the Document Structuring Conventions 3.0 (Adobe technical note 5001) that decide
// where ticket entries go.

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
    beginResource, // also of procedure sets, fonts, files and previews; comments inside belong
                   // to the section, not to the document
    endResource,
    beginData, // also the older binary sections
    endData,
    beginFeature,
    endFeature,
    includeFeature,
};

struct DscComment {
    DscKind kind = DscKind::other;
    std::string_view arguments; // the text after the colon, without outer blanks; a view of the line
};

// REQUIRES: `line` begins with "%%" and has no line end.
DscComment readDscComment(std::string_view line);

// Tells whether the line belongs to a document's header comments. The header comments end with %%EndComments.
// They also end before a line that does not begin with "%" and a printing character, and before a comment
// that opens or closes a section.
bool isHeaderComment(std::string_view line);

// The extent of a data section: "count [type [Bytes|Lines]]". Returns nothing when the count is not a number.
struct DscDataExtent {
    std::uint64_t count = 0; // clamped to the range of the type
    bool isLines = false;
};
std::optional<DscDataExtent> readDataExtent(std::string_view arguments);

// firstWord returns the first word; withoutOuterBlanks returns the text without blanks at its ends.
std::string_view firstWord(std::string_view text);
std::string_view withoutOuterBlanks(std::string_view text);

// A wrapper keeps a failing feature from ending the job: "[{" ... "} stopped cleartomark". These functions
// recognise its first and last line in the spellings that print systems write.
inline constexpr std::size_t maximumWrapperLine = 32;
bool isWrapperOpening(std::string_view line);
bool isWrapperClosing(std::string_view line);

inline bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

} // namespace torka
