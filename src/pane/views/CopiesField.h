// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSpinBox>

namespace torka {

class PDEData;

// The number of copies, which belongs to the dialog: the print settings hold it, and the dialog's own field
// follows them. What the dialog refuses comes back.
class CopiesField final : public QSpinBox {
public:
    // The data must have print settings.
    CopiesField(PDEData& paneData, QWidget* parent);
    // Shows the number of the print settings.
    void Follow();

protected:
    // The wheel scrolls the page and changes the number only in focus.
    void wheelEvent(QWheelEvent* event) override;

private:
    PDEData& data;
};

} // namespace torka
