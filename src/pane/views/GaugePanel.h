// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QProgressBar>

#include <memory>
#include <string>
#include <vector>

class QLabel;
class QScrollArea;
class QToolButton;
class QVBoxLayout;

namespace torka {

// A level as a flat bar, in the colour of its supply or of the palette.
class GaugeBar final : public QProgressBar {
public:
    explicit GaugeBar(QWidget* parent);
    QColor fill;           // invalid: the highlight colour of the palette
    bool isUnknown = true; // drawn empty and dashed
    bool hasSome = false;  // drawn half, and pale
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

// Trays and supplies of the controller. Hidden while two-way communication is off or nothing was read. After
// a failed reading it shows one line that tells so.
class GaugePanel final : public QWidget {
public:
    GaugePanel(const PaneContext& paneContext, const GaugeSource& gaugeSource, QWidget* parent);
    void Update();
    // The height in which the panel may stand. The rows fold away when they do not fit.
    void SetRoom(int height);

protected:
    void changeEvent(QEvent* event) override;

private:
    void LimitHeight();
    void Fill(const ServerGauges& gauges);
    void AddRow(QVBoxLayout& lines, const ShownGauge& gauge, GaugeBar* bar);
    void AddSupplies(QVBoxLayout& lines, const std::vector<SupplyGauge>& supplies, QWidget* parent);
    QLabel* MakeSign(QWidget* parent) const;
    GaugeBar* MakeBar(const ShownGauge& gauge, QWidget* parent) const;

    const PaneContext& context;
    GaugeSource source;
    QLabel* title;
    QToolButton* again;
    QScrollArea* area;
    int room = QWIDGETSIZE_MAX;
    std::shared_ptr<const std::string> shown; // the data of the rows; null for none
};

} // namespace torka
