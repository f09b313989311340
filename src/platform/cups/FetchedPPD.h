// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace torka::platform {

// Fetches a queue's description from the server at each call.
//
// With a local server the path is the server's own file: never write to it or remove it. Otherwise it is a
// copy, with a name that ends in ".ppd", that lives until the next Fetch() or the end of this object.
class FetchedPPD {
public:
    FetchedPPD() = default;
    FetchedPPD(const FetchedPPD&) = delete;
    FetchedPPD& operator=(const FetchedPPD&) = delete;
    ~FetchedPPD() { Forget(); }

    // Returns the path; "" when the queue has no description or the server does not answer.
    std::string Fetch(const std::string& queueName);

private:
    void Forget();
    void NameAsDescription();

    std::string copy; // path of the copy to remove; "" for none
};

} // namespace torka::platform
