// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/ZANWatermark.h"
#include "tests/support/TestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

// Prints jobs of two pages with a watermark by Ghostscript, and measures the ink on them.

namespace torka::tests {

constexpr int paperWidth = 400; // points
constexpr int paperHeight = 500;

struct Ink {
    std::size_t count = 0; // number of pixels that are not white
    double x = 0;          // their centre, in points from the lower left
    double y = 0;
    double axis = 0;                  // direction of the longest extent in degrees, 0 to 180
    std::tuple<int, int, int> colour; // of the last such pixel
};

// Measures the pages in a stream of binary PPM pictures.
inline std::vector<Ink> inkOfPages(const std::string& pictures) {
    std::vector<Ink> pages;
    std::istringstream in(pictures);
    std::string magic;
    while (in >> magic) {
        std::string comment;
        std::getline(in >> std::ws, comment);
        EXPECT_TRUE(comment.starts_with('#'));
        int width = 0;
        int height = 0;
        int depth = 0;
        in >> width >> height >> depth;
        in.get();
        std::string bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3, '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_EQ(magic, "P6");
        Ink ink;
        double xx = 0;
        double yy = 0;
        double xy = 0;
        for (std::size_t i = 0; (i = bytes.find_first_not_of('\xFF', i)) != std::string::npos; i += 3) {
            i -= i % 3;
            const auto at = [&bytes, i](std::size_t k) { return static_cast<unsigned char>(bytes[i + k]); };
            const auto pixel = static_cast<int>(i / 3);
            const double x = (pixel % width + 0.5) * paperWidth / width;
            const double y = (height - pixel / width - 0.5) * paperWidth / width;
            ++ink.count;
            ink.x += x;
            ink.y += y;
            xx += x * x;
            yy += y * y;
            xy += x * y;
            ink.colour = {at(0), at(1), at(2)};
        }
        if (ink.count > 0) {
            const auto n = static_cast<double>(ink.count);
            ink.x /= n;
            ink.y /= n;
            const double angle =
                std::atan2(2 * (xy / n - ink.x * ink.y), xx / n - ink.x * ink.x - (yy / n - ink.y * ink.y)) /
                2;
            ink.axis = std::fmod(angle * 180 / M_PI + 180, 180);
        }
        pages.push_back(ink);
    }
    return pages;
}

// Runs Ghostscript on a program, with further arguments. A PostScript error fails the test.
inline std::string runOnPaper(const std::string& program, std::vector<std::string> more) {
    std::vector<std::string> command = {"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-r72"};
    command.push_back("-dDEVICEWIDTHPOINTS=" + std::to_string(paperWidth));
    command.push_back("-dDEVICEHEIGHTPOINTS=" + std::to_string(paperHeight));
    command.insert(command.end(), more.begin(), more.end());
    command.emplace_back("-");
    CommandResult result = runCommand(command, program);
    EXPECT_EQ(result.status, 0) << result.output.substr(0, 2000) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}

inline std::vector<Ink> printPages(const std::string& program, std::vector<std::string> more = {}) {
    more.insert(more.end(), {"-sDEVICE=ppmraw", "-sOutputFile=%stdout", "-sstdout=%stderr"});
    return inkOfPages(runOnPaper(program, std::move(more)));
}

// An argument for prints in which a point more or less does not count.
inline constexpr const char* coarse = "-r36";

// Two pages: one within save and restore, and one that leaves its matrix, clip and colour behind.
inline constexpr const char* twoPages = "save 0 0 1 setrgbcolor 3 3 scale showpage restore\n"
                                        "90 rotate 0 -9 9 9 rectclip 1 setgray showpage\n";

// A job that restores the state for later jobs.
inline std::string job(const std::string& setup, const std::string& pages = twoPages) {
    return "/jobSave save def\n" + setup + pages + "clear jobSave restore\n";
}

} // namespace torka::tests
