// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/TextHash.h"

#include <random>

namespace torka {

namespace {

std::uint64_t drawSecret() {
    std::random_device device;
    return (std::uint64_t{device()} << 32U) | device();
}

} // namespace

detail::HashSecrets detail::drawHashSecrets() { return {drawSecret(), drawSecret()}; }

std::uint64_t detail::foldBeginning(std::string_view& text, std::uint64_t hash) {
    for (; text.size() > sizeof(TwoWords); text.remove_prefix(sizeof(TwoWords))) {
        hash = foldWords(text.substr(0, sizeof(TwoWords)), hash);
    }
    return hash;
}

} // namespace torka
