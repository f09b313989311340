#include "pane/data/NoteLength.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"

namespace torka {

NoteLength lengthOfNote(const PPDXJobNote& note, std::int64_t length) {
    if (length == 0) {
        return note.IsRequired() ? NoteLength::missing : NoteLength::good;
    }
    const bool wrong = length > note.MaxLength() || length < note.MinLength() ||
                       (note.IsLengthReq() && length != note.MaxLength());
    return wrong ? NoteLength::wrong : NoteLength::good;
}

} // namespace torka
