// SPDX-License-Identifier: Apache-2.0
#include "pane/views/CopiesField.h"

#include "pane/data/ControlTables.h"
#include "pane/data/PDEData.h"

#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace torka {

CopiesField::CopiesField(PDEData& paneData, QWidget* parent)
    : QSpinBox(parent)
    , data(paneData) {
    setObjectName(QStringLiteral("paneCopies"));
    setRange(1, static_cast<int>(maximumCopies));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Follow();
    connect(this, &QSpinBox::valueChanged, this, [this](int copies) {
        if (const PMPrintSettings settings = data.Settings()) {
            settings->SetCopies(static_cast<std::uint32_t>(copies));
        }
        Follow();
    });
}

void CopiesField::Follow() {
    const int copies = static_cast<int>(std::min(data.GetNumCopiesFromOS(), std::uint32_t{maximumCopies}));
    if (copies != value()) {
        const QSignalBlocker blocker(this);
        setValue(copies);
    }
}

void CopiesField::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

} // namespace torka
