#pragma once

#include <string>

namespace torka::platform {

// A queue's description, fetched from the server each time it is asked for.
//
// Where the server is local, the path is the server's own file: nobody writes to it, and nothing is to be
// removed. Otherwise it is a copy that lives until the next Fetch() or the end of this object.
class FetchedPPD {
public:
    FetchedPPD() = default;
    FetchedPPD(const FetchedPPD&) = delete;
    FetchedPPD& operator=(const FetchedPPD&) = delete;
    ~FetchedPPD() { Forget(); }

    // The path, "" when the queue has no description or the server does not answer.
    std::string Fetch(const std::string& queueName);

private:
    void Forget();

    std::string copy; // "" when there is none to remove
};

} // namespace torka::platform
