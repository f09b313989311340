// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/FilterJob.h"

#include <cups/cups.h>

#include <cstdlib>

namespace torka::filter {

namespace {

std::string environmentText(const char* name) {
    const char* text = std::getenv(name);
    return text == nullptr ? "" : text;
}

} // namespace

std::string_view FilterJob::Option(std::string_view name) const {
    const auto found = options.find(name);
    return found == options.end() ? std::string_view() : found->second;
}

std::string FilterJob::Run() const {
    const std::string_view uuid = Option("job-uuid");
    const std::string_view start = Option("time-at-processing"); // in seconds
    if (uuid.empty() || start.empty()) {
        return "";
    }
    // The end of the earlier run tells apart a restart within the same second.
    std::string run(uuid);
    run.append("/").append(start).append("/").append(Option("time-at-completed"));
    return run;
}

std::optional<FilterJob> readFilterJob(int argc, const char* const* argv) {
    if (argc != 6 && argc != 7) {
        return std::nullopt;
    }
    FilterJob job;
    job.number = argv[1];
    job.user = argv[2];
    job.title = argv[3];
    job.file = argc == 7 ? argv[6] : "";
    cups_option_t* options = nullptr;
    const int count = cupsParseOptions(argv[5], 0, &options);
    for (int i = 0; i < count; ++i) {
        job.options[options[i].name] = options[i].value;
    }
    cupsFreeOptions(count, options);
    job.queue = environmentText("PRINTER");
    job.printerClass = environmentText("CLASS");
    job.deviceUri = environmentText("DEVICE_URI");
    job.contentType = environmentText("CONTENT_TYPE");
    job.description = environmentText("PPD");
    return job;
}

} // namespace torka::filter
