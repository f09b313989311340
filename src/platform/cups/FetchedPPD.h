// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace torka::platform {

// Fetches a queue's description from the server at each call.
//
// With a local server whose files this person may read, the path is the server's own file: never write to it
// or remove it. Otherwise it is a copy, with a name that ends in ".ppd", until the end of this object. The
// next Fetch() replaces its content and keeps its name, so that every reader of the path finds the newest
// description.
class FetchedPPD {
public:
    FetchedPPD() = default;
    // The one of that queue in this process, as long as somebody holds it. Main thread only.
    static std::shared_ptr<FetchedPPD> Of(const std::string& queueName);
    FetchedPPD(const FetchedPPD&) = delete;
    FetchedPPD& operator=(const FetchedPPD&) = delete;
    ~FetchedPPD() { Forget(); }

    // Returns the path; "" when the queue has no description or the server does not answer. A copy of an
    // earlier call stays then.
    std::string Fetch(const std::string& queueName);

private:
    void Forget();
    void NameAsDescription();

    std::string copy; // path of the copy to remove; "" for none
};

} // namespace torka::platform
