// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/Server.h"

#include <QScrollArea>

#include <vector>

class QLabel;
class QVBoxLayout;

namespace torka::jobproperties {

class LevelGauge;

// Live state of the printer: toner, trays, and information of the server. Refresh() asks the server, which
// outlives the panel. It leaves unchanged widgets alone, so that a screen reader is not disturbed.
class StatusPanel : public QScrollArea {
    Q_OBJECT
public:
    explicit StatusPanel(const Server& server, QWidget* parent = nullptr);
    void Refresh();

private:
    // A titled list of gauges. Rows are rebuilt only when their number changes.
    struct Section {
        QWidget* box = nullptr;
        QVBoxLayout* rows = nullptr;
        struct Row {
            QWidget* widget;
            QLabel* name;
            QLabel* state;
            QLabel* detail;
            QLabel* warning;
            LevelGauge* gauge;
        };
        std::vector<Row> shown;
    };
    Section MakeSection(const QString& title);
    static Section::Row MakeRow();
    static void Fit(Section& section, std::size_t count);
    void ShowToners(const std::vector<Toner>& toners);
    void ShowTrays(const std::vector<Tray>& trays);
    void ShowInformation(const KeyValues& values);

    const Server& server;
    QVBoxLayout* column;
    QLabel* notice;
    Section toner, tray;
    QWidget* information;
    QLabel* informationText;
    std::vector<Toner> shownToners;
    std::vector<Tray> shownTrays;
    KeyValues shownInformation;
};

} // namespace torka::jobproperties
