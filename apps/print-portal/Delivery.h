// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/print-portal/TokenStore.h"
#include "apps/print-portal/settings/PrintChoices.h"

#include <QString>

// What becomes of a document once its destination is known.

namespace torka::portal {

// Sends the document to the job's queue and shows its progress, or writes it into the job's file. Returns a
// sentence for the person when it cannot be done, else "".
QString deliver(const QString& path, const PreparedJob& job, const QString& title);

// Whether the choices leave pages out, repeat or rearrange them.
bool changesPages(const PrintChoices& choices);

// Shows a message without blocking.
void tellPerson(const QString& title, const QString& text);

} // namespace torka::portal
