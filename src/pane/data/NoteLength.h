#pragma once

#include <cstdint>

namespace torka {

class PPDXJobNote;

// Whether a note's text, by its length in UTF-16 units, can go with a job.
enum class NoteLength { good, missing, wrong };
NoteLength lengthOfNote(const PPDXJobNote& note, std::int64_t length);

} // namespace torka
