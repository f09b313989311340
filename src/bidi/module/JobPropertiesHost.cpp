// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesHost.h"

namespace torka {

namespace {

JobPropertiesHost* currentHost = nullptr;

} // namespace

JobPropertiesHost* jobPropertiesHost() { return currentHost; }

void setJobPropertiesHost(JobPropertiesHost* host) { currentHost = host; }

} // namespace torka
