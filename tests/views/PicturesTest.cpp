// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/CFileHdlr.h"
#include "pane/data/PanelState.h"
#include "pane/views/GaugePanel.h"
#include "pane/views/JobPicture.h"
#include "pane/views/PresetBar.h"
#include "pane/views/QuickAccessDialog.h"
#include "platform/PropertyList.h"
#include "platform/TextEncoding.h"
#include "tests/views/ViewFixture.h"

#include <fstream>

// Compares what a person sees of the pane, and what assistive technology tells of it, with the pictures and
// the texts in tests/data/pictures. TORKA_RENEW_PICTURES=1 stores them anew. Look at each new picture.

namespace torka::tests {
namespace {

// Before the application starts: settings of the machine and the person do not reach it.
[[maybe_unused]] const bool environmentIsFixed = [] {
    for (const char* name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_STYLE_OVERRIDE",
                             "QT_QPA_PLATFORMTHEME", "QT_ENABLE_HIGHDPI_SCALING"}) {
        qunsetenv(name);
    }
    return qputenv("FONTCONFIG_FILE", TORKA_SOURCE_DIR "/tests/data/pictures/fonts.conf");
}();

// The rectangle of the pixels that differ visibly, and how many they are.
std::pair<QRect, int> difference(const QImage& now, const QImage& before, QImage& marked) {
    marked = QImage(now.size(), QImage::Format_RGB32);
    marked.fill(Qt::white);
    std::pair<QRect, int> found;
    for (int y = 0; y < now.height(); ++y) {
        for (int x = 0; x < now.width(); ++x) {
            const QRgb a = now.pixel(x, y);
            const QRgb b = before.pixel(x, y);
            const auto differs = [&](int (*channel)(QRgb)) { return std::abs(channel(a) - channel(b)) > 16; };
            if (differs(qRed) || differs(qGreen) || differs(qBlue)) {
                marked.setPixel(x, y, qRgb(255, 0, 0));
                found.first |= QRect(x, y, 1, 1);
                ++found.second;
            }
        }
    }
    return found;
}

// With rounded colours, which makes a small file.
QImage withFewColors(QImage picture) {
    const auto rounded = [](int channel) { return (channel + 8) / 17 * 17; };
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb color = picture.pixel(x, y);
            picture.setPixel(x, y, qRgb(rounded(qRed(color)), rounded(qGreen(color)), rounded(qBlue(color))));
        }
    }
    return picture.convertToFormat(QImage::Format_Indexed8);
}

void tellItems(const QAbstractItemView& view, const QModelIndex& parent, const QString& indent,
               QString& told) {
    for (int row = 0; row < view.model()->rowCount(parent); ++row) {
        for (int column = 0; column < view.model()->columnCount(parent); ++column) {
            const QModelIndex item = view.model()->index(row, column, parent);
            told += indent + QStringLiteral("- ") + item.data().toString();
            for (const int role : {Qt::ToolTipRole, Qt::AccessibleTextRole, Qt::CheckStateRole}) {
                told += item.data(role).isValid() ? QStringLiteral(" | ") + item.data(role).toString()
                                                  : QString();
            }
            told += QLatin1String(item.flags().testFlag(Qt::ItemIsEnabled) ? "\n" : " (disabled)\n");
        }
        tellItems(view, view.model()->index(row, 0, parent), indent + QStringLiteral("  "), told);
    }
}

QString roleAndName(QWidget* widget) {
    const QAccessibleInterface& face = *QAccessible::queryAccessibleInterface(widget);
    return QLatin1String(QMetaEnum::fromType<QAccessible::Role>().valueToKey(face.role())) +
           QStringLiteral(" “%1”").arg(face.text(QAccessible::Name)) + widget->objectName();
}

// What the visible widgets tell a person without a look at them, and what they accept.
void tell(QWidget& widget, const QString& indent, QString& told) {
    static const QStringList usual{"", "0", "false", "32767", "ImhNone", "NonModal", "Normal"};
    static const QByteArrayList properties =
        QByteArray("accessibleName accessibleDescription toolTip placeholderText value currentText minimum "
                   "maximum singleStep pageStep decimals suffix maxLength inputMethodHints echoMode checked "
                   "default focus windowModality shortcut")
            .split(' ');
    QString line;
    for (const QByteArray& name : properties) {
        const QString value = widget.property(name).toString();
        if (!usual.contains(value)) {
            line += QStringLiteral(" | %1: %2").arg(QLatin1String(name), value);
        }
    }
    line += QLatin1String(widget.isEnabled() ? "" : " (disabled)");
    auto* label = qobject_cast<QLabel*>(&widget);
    if (label != nullptr && label->buddy() != nullptr) {
        line += QStringLiteral(" of ") + roleAndName(label->buddy());
    }
    if (!line.isEmpty() || (label != nullptr && !label->text().isEmpty())) {
        told += indent + roleAndName(&widget) + line + QLatin1Char('\n');
    }
    const QString inner = indent + QLatin1Char(' ');
    if (const auto* menu = qobject_cast<const QMenu*>(&widget)) {
        for (const QAction* action : menu->actions()) {
            told += inner + action->text() + QLatin1String(action->isChecked() ? " (checked)" : "") +
                    QLatin1String(action->isEnabled() ? " " : " (disabled) ") + action->toolTip() +
                    QLatin1Char('\n');
        }
    }
    const auto* view = qobject_cast<const QAbstractItemView*>(&widget);
    if (view != nullptr && qobject_cast<const QHeaderView*>(view) == nullptr) {
        tellItems(*view, {}, inner, told);
    }
    for (QObject* child : widget.children()) {
        auto* below = qobject_cast<QWidget*>(child);
        if (below != nullptr && below->isVisible() && !below->isWindow()) {
            tell(*below, inner, told);
        }
    }
}

// All that, and the order in which the Tab key reaches the widgets.
QString toldOf(QWidget& widget) {
    QString told = widget.windowTitle() + QLatin1Char('\n');
    tell(widget, {}, told);
    told += QStringLiteral("Tab:\n");
    for (QWidget* next = widget.nextInFocusChain(); next != &widget; next = next->nextInFocusChain()) {
        if (next->isVisibleTo(&widget) && widget.isAncestorOf(next) && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus) != 0 && next->focusProxy() == nullptr) {
            told += QLatin1Char(' ') + roleAndName(next) + QLatin1Char('\n');
        }
    }
    return told;
}

std::string german(const PaneWord& word) {
    static const auto words = [] {
        const std::string xml = readFile(TORKA_SOURCE_DIR "/bundle/Resources/de.lproj/Pane.strings");
        return cfCast<CFDictionary>(CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size())));
    }();
    return utf8Text(cfCast<CFString>(CFDictionaryGetValue(words, cfString(word.key))));
}

// The sample's records of trays and supplies. `many`: more supplies than stand side by side.
std::shared_ptr<const std::string> sampleData(bool many) {
    std::string file;
    for (const char* name : {"TrayInfo", "TonerInfo"}) {
        std::string record = readFile(std::string(TORKA_SOURCE_DIR) + "/samples/server-data/data/" + name);
        if (many && *name == 'T' && name[1] == 'o') {
            record = "7\n";
            for (const char* color : {"Cyan", "Black", "White", "Gold", "Clear", "Green", "Waste & <b>"}) {
                record += std::string(color) + "@40@10@#00a0ff@100@45000@1\n";
            }
        }
        const std::wstring wide = wideFromUtf8(record);
        CFileHdlr::fileWriteData(name, wide.data(), wide.size() * sizeof(wchar_t), file);
    }
    return std::make_shared<const std::string>(std::move(file));
}

// The sample with an administrator's locks, and with names that are too long.
std::unique_ptr<Pane> strictSample() {
    std::string text = readFile(TORKA_SOURCE_DIR "/samples/torka-production.ppd");
    for (const std::string name : {"QVSidesGroup/Sides", "QVScaleToFit/Scale", "QVRotate/Rotate"}) {
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
            text.insert(at + name.size(),
                        " and whatever else the printer can do to the pages with <b>this</b> & that");
        }
    }
    std::string locks = "<Category name=\"UI-Modification\">\n<Lock>";
    for (const std::string keyword : {"QVDuplex", "QVMirror", "QVScale"}) {
        locks += "\n<ZANPPD key=\"" + keyword + "\" value=\"True\"/>";
    }
    text.insert(text.rfind("*% End of PPD"), templateLines(locks + "</Lock></Category>"));
    return std::make_unique<Pane>(text);
}

class PicturesTest;
enum class Look { usual, dark, germanFromRightToLeft };
struct Situation {
    const char* name;
    const char* page = "";
    const char* settings = "";                // that the person makes
    void (*arrange)(PicturesTest&) = nullptr; // what else is done; may take a picture of another window
    Look look = Look::usual;
    std::optional<ServerExchange::State> gauges{};
    std::unique_ptr<Pane> (*description)() = samplePane;
};

class PicturesTest : public testing::TestWithParam<Situation> {
public:
    PicturesTest() {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(9);
        font.setHintingPreference(QFont::PreferNoHinting);
        QApplication::setFont(font);
        QApplication::setCursorFlashTime(0);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        const bool isGerman = GetParam().look == Look::germanFromRightToLeft;
        QApplication::setLayoutDirection(isGerman ? Qt::RightToLeft : Qt::LeftToRight);
        const auto state = GetParam().gauges;
        std::optional<GaugeSource> gauges;
        if (state) {
            gauges = GaugeSource{[] { return true; }, [state] { return *state; },
                                 [isGerman] { return sampleData(isGerman); }, [] {}, [](auto) {}};
        }
        pane.emplace(GetParam().description(), std::move(gauges), isGerman ? german : ViewedPane::english);
        pane->pane->data->SetCorvianPrinterAddress(cfString("192.168.1.20"), true);
        pane->beganWithLastJob = state == ServerExchange::State::read;
        pane->Draw();
        pane->Root()->resize(760, 520);
        pane->Root()->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(pane->Root()));
        Settle();
        pane->Widget().ShowPage(GetParam().page);
        Set(GetParam().settings);
        if (GetParam().look == Look::dark) { // from now on
            QPalette dark(QColor(50, 50, 52));
            dark.setColor(QPalette::Base, QColor(35, 35, 37));
            QApplication::setPalette(dark);
        }
    }
    ~PicturesTest() override {
        pane.reset();
        resetPopupJobNotes();
        QApplication::setPalette(QPalette());
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    // "KEYWORD=VALUE ..."; returns the keywords.
    std::vector<std::string> Set(const char* settings) {
        std::vector<std::string> keywords;
        for (const QString& each :
             QString::fromLatin1(settings).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            keywords.push_back(each.section(QLatin1Char('='), 0, 0).toStdString());
            const std::string value = each.section(QLatin1Char('='), 1).toStdString();
            EXPECT_TRUE(pane->Editor().SetValue(keywords.back(), value)) << each.toStdString();
        }
        Settle();
        return keywords;
    }
    template <class T = QWidget>
    T& Field(const char* keyword) {
        EXPECT_TRUE(pane->Widget().ShowField(keyword));
        return *qobject_cast<T*>(QApplication::focusWidget());
    }
    static void Type(QWidget& field, const char* keys) {
        QMetaObject::invokeMethod(&field, "selectAll");
        QTest::keyClicks(&field, QLatin1String(keys));
    }
    void AddWatermark(const char* definition) {
        auto& watermarks = pane->pane->data->Watermarks();
        watermarks.Append(std::make_unique<ZANWatermark>(definition));
        watermarks.Select(static_cast<int>(watermarks.Count()) - 1);
        pane->Draw();
        pane->Widget().ShowPage(GetParam().page);
    }
    PresetBar& UsePresets() {
        PresetStore store(pane->pane->data->PrinterName(), pane->Editor().Model(), *pane->pane->data);
        store.Save("Booklet, two-sided");
        store.Save("<b>R&D</b> proofs with a name that is far too long for its place");
        auto& bar = static_cast<PresetBar&>(*pane->Find<QToolButton>("presets"));
        bar.Apply("Booklet, two-sided");
        Set("*QVMirror=True");
        return bar;
    }
    // Takes the window that a call waits for, when the person has typed a text into one of its fields.
    void TakeModal(const std::function<bool()>& ask, const char* field = "", const char* text = "") {
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            if (auto* line = dialog->findChild<QLineEdit*>(QLatin1String(field)); line != nullptr) {
                Type(*line, text);
            }
            Take(*dialog);
            dialog->reject();
        });
        EXPECT_FALSE(ask());
    }
    static void Settle() {
        for (int times = 0; times < 5; ++times) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }
    void Take(QWidget& widget) {
        Settle();
        for (auto* line : widget.findChildren<QLineEdit*>()) {
            for (auto* button : line->findChildren<QToolButton*>()) { // those that clear it fade in
                button->setProperty("opacity", line->text().isEmpty() ? button->property("opacity") : 1.0);
            }
        }
        Compare(widget.grab().toImage().convertToFormat(QImage::Format_RGB32), toldOf(widget));
    }
    void Compare(const QImage& now, const QString& told) {
        isTaken = true;
        const QString name = QString::fromLatin1(GetParam().name);
        const QString stored = QStringLiteral(TORKA_SOURCE_DIR "/tests/data/pictures/") + name;
        const std::string words = stored.toStdString() + ".txt";
        const QImage before = QImage(stored + QStringLiteral(".png")).convertToFormat(QImage::Format_RGB32);
        const bool sameSize = now.size() == before.size();
        QImage marked;
        const auto [where, pixels] =
            sameSize ? difference(now, before, marked) : std::pair(now.rect(), now.width() * now.height());
        if (qEnvironmentVariableIsSet("TORKA_RENEW_PICTURES")) {
            EXPECT_TRUE(pixels == 0 || withFewColors(now).save(stored + QStringLiteral(".png"), "PNG", 0));
            std::ofstream(words) << told.toStdString();
            return;
        }
        EXPECT_EQ(told.toStdString(), readFile(words));
        constexpr int tolerated = 6; // pixels
        if (pixels > tolerated) {
            const QString kept = QDir::tempPath() + QStringLiteral("/torka-picture-") + name;
            now.save(kept + QStringLiteral("-now.png"));
            before.save(kept + QStringLiteral("-before.png"));
            marked.save(kept + QStringLiteral("-difference.png"));
            ADD_FAILURE() << name.toStdString() << ": " << pixels << " pixels differ"
                          << (sameSize ? "" : ", and the size") << ", in " << where.width() << " x "
                          << where.height() << " at " << where.x() << ", " << where.y() << "; see "
                          << kept.toStdString() << "-*.png";
        }
    }

    ScopedMemorySystem system;
    std::optional<ViewedPane> pane;
    bool isTaken = false;
};

using Test = PicturesTest;

// The sheets of several jobs side by side.
void takeSheets(Test& test) {
    const char* const jobs[] = {
        "*QVDuplex=LongEdge *QVStaple=Dual *QVPunchHoles=Two *QVFoldStyle=Z",
        "*QVNUpPages=4 *QVNUpBorder=True *QVDuplex=ShortEdge *QVStaple=Front *QVFoldStyle=Letter "
        "*QVBannerPage=Start *QVSlipSheet=Set",
        "*QVRIPBooklet=Saddle *QVStaple=Saddle *QVDuplex=ShortEdge *QVBookCoverEnabled=True "
        "*QVInterlvMedia=True *QVTrimSides=Three",
        "*QVRIPBooklet=Perfect *QVBookBinding=Right *QVTrimSides=Face",
        "*QVRIPBooklet=Speed *QVRotate=90 *QVTrimSides=Face *QVColorMode=Gray",
        "*QVBindStyle=Ring *QVBookBinding=Top *QVMirror=True *QVFoldStyle=Gate",
        "*QVBindStyle=Tape *QVBookBinding=Right *QVDuplex=ShortEdge *QVFoldStyle=Accordion "
        "*QVInsertSheets=Both",
        "*QVPunchHoles=Comb *QVDuplex=LongEdge *QVFoldStyle=Half *QVBindStyle=Glue *QVStaple=Top",
    };
    ViewedPane& pane = *test.pane;
    pane.Root()->resize(1000, 460);
    Test::Settle();
    JobPicture& picture = *pane.Widget().Picture();
    const QSize size = picture.size();
    QImage all(size.width() * 4, size.height() * 2, QImage::Format_RGB32);
    all.fill(Qt::white);
    QPainter painter(&all);
    QString told;
    for (int i = 0; i < 8; ++i) {
        if (i == 0) {
            test.AddWatermark("0,0,0,255,140,0,0,0,0,450,0,0,96,Helvetica-Bold,PROOF");
        } else if (i == 5) {
            test.AddWatermark("1,90,200,0,0,0,0,1,0,-200,0,0,96,Times-Roman,Draft");
        }
        pane.pane->format->orientation = i == 7 ? kPMLandscape : kPMPortrait;
        pane.Draw();
        const auto keywords = test.Set(jobs[i]);
        painter.drawImage(QPoint(i % 4 * size.width(), i / 4 * size.height()), picture.grab().toImage());
        told += toldOf(picture);
        pane.Editor().Reset(keywords);
        pane.pane->data->Watermarks().Select(WatermarkList::noSelection);
    }
    painter.end();
    test.Compare(all, told);
}

void takeAddressSheet(Test& test) {
    auto& sheet = dynamic_cast<AddressSheet&>(test.pane->interface->addressSheet());
    const ControllerRow rows[] = {{cfString("Torka Fold"), cfString("10.0.0.1, 10.0.0.2")},
                                  {cfString("Torka Press"), cfString("")}};
    sheet.setRows(rows, 1);
    sheet.setIndicatorImage(ControllerColumn::addresses, SortIndicator::NSDescendingSortIndicator);
    sheet.setStatus(cfString("2 controllers found."));
    sheet.setAddressField(cfString("10.0.0.1"));
    sheet.setProgress(true);
    sheet.Window()->findChild<QProgressBar*>()->setRange(0, 3); // does not move
    sheet.openSheet();
    test.Take(*sheet.Window());
}

// Opens the list of a field by keys and goes on with others.
void takeList(Test& test, const char* keyword, std::initializer_list<Qt::Key> keys) {
    auto& box = test.Field<QComboBox>(keyword);
    QTest::keyClick(&box, Qt::Key_F4);
    for (const Qt::Key key : keys) {
        QTest::keyClick(box.view(), key);
    }
    test.Take(*box.view()->window());
    box.hidePopup();
}

void takeWatermarkDialog(Test& test) {
    test.pane->pane->format->orientation = kPMLandscape;
    test.AddWatermark("0,90,-120,1,2,3,0,0,0,-305,0,0,64,Times-Roman,Draft, not for sale");
    QWidget* page = test.pane->Find<QListWidget>("watermarks")->parentWidget();
    button(*page, "Edit…").click();
    test.Take(*page->findChild<QDialog*>());
}

void setPaperWithoutName(Test& test) {
    test.pane->pane->Store(paperTicket, paper(nullptr, {0, 0, 600, 400}));
    test.pane->pane->data->SetPageSizeFromOS(true);
    test.pane->Draw();
}

constexpr const char* quarrel = "*QVStaple=Saddle *QVFinisherUnit=None";
constexpr auto read = ServerExchange::State::read;

const Situation situations[] = {
    {"quick-access", "quickAccess", "", nullptr, Look::usual, read},
    {"job", "QVJobPage", "", setPaperWithoutName},
    {"layout", "QVLayoutPage", "", [](Test& test) { Test::Type(test.Field("*QVScale"), "9999\r"); }},
    {"color", "QVColorPage"},
    {"installed", "installed"},
    {"notes", "QVNotesPage", "", [](Test& test) { Test::Type(test.Field("*QVAccountId"), "12a"); }},
    {"conflict", "QVFinishingPage", quarrel, nullptr, Look::usual, ServerExchange::State::failed},
    {"resolved", "QVFinishingPage", quarrel, [](Test& test) { test.pane->Editor().Resolve(); }},
    {"dark", "QVFinishingPage", quarrel, nullptr, Look::dark, read},
    {"german-right-to-left", "QVFinishingPage", quarrel, nullptr, Look::germanFromRightToLeft, read},
    {"locked", "QVLayoutPage", "", nullptr, Look::usual, {}, strictSample},
    {"summary", "summary", "*MediaType=Labels *QVMirror=True *QVGutter=120"},
    {"search", "", "",
     [](Test& test) {
         test.pane->Widget().SearchField()->setText(QStringLiteral("finishing"));
         test.pane->Widget().SearchNow();
     }},
    {"wide", "watermarks", "",
     [](Test& test) {
         test.pane->Find<QCheckBox>("bidiCheckBox")->click();
         test.pane->Root()->resize(1100, 420);
     }},
    {"smallest", "QVFinishingPage", quarrel,
     [](Test& test) { test.pane->Root()->resize(test.pane->Root()->minimumSizeHint()); }, Look::usual, read},
    {"sheets", "", "", takeSheets},
    {"list", "", "*MediaType=Labels", [](Test& test) { takeList(test, "*QVDuplex", {}); }},
    {"ticks", "", "",
     [](Test& test) {
         takeList(test, "*QVMarks", {Qt::Key_Down, Qt::Key_Space});
     }},
    {"forbidden", "", "*MediaType=Labels",
     [](Test& test) {
         button(*test.Field("*QVDuplex").parentWidget(), "Why some choices are not available").click();
         test.Take(*QApplication::activePopupWidget());
         QApplication::activePopupWidget()->close();
     }},
    {"watermarks", "watermarks", "",
     [](Test& test) { test.AddWatermark("0,0,0,255,140,0,0,0,0,450,0,0,96,Helvetica-Bold,CONFIDENTIAL"); }},
    {"watermark-dialog", "watermarks", "", takeWatermarkDialog},
    {"quick-access-dialog", "", "",
     [](Test& test) {
         auto& sheet = static_cast<QuickAccessSheet&>(test.pane->interface->customizeQuickAccess());
         sheet.openSheet();
         test.Take(*sheet.Dialog());
     }},
    {"address-sheet", "", "", takeAddressSheet},
    {"presets", "QVLayoutPage", "", [](Test& test) { test.UsePresets(); }},
    {"preset-menu", "", "",
     [](Test& test) {
         QMenu& menu = *test.UsePresets().menu();
         menu.popup({});
         test.Take(menu);
         menu.close();
     }},
    {"preset-name", "", "",
     [](Test& test) {
         PresetBar& bar = test.UsePresets();
         bar.AskForSaving();
         auto* dialog = bar.findChild<QDialog*>();
         Test::Type(*dialog->findChild<QLineEdit*>(), "Booklet, two-sided");
         test.Take(*dialog);
     }},
    {"conflict-dialog", "", quarrel,
     [](Test& test) { test.TakeModal([&] { return test.pane->interface->confirmConflicts(); }); }},
    {"broken-notes", "", "*QVPageRanges=1-5 *QVCostCenter=ab *QVAccountId=12",
     [](Test& test) { test.TakeModal([&] { return test.pane->interface->confirmBrokenNotes(); }); }},
    {"popup-notes", "", "",
     [](Test& test) {
         PopupJobNoteView& notes = test.pane->interface->popupJobNotes();
         for (const char* outlet : {"popupJobNoteVal21", "popupJobNoteVal22"}) {
             notes.observeControlTextDidChange(outlet);
         }
         test.TakeModal([&] { return notes.handlePopupJobnoteUI(); }, "popupJobNoteVal21", "4711\r");
     }},
};

TEST_P(PicturesTest, Match) {
    if (!QString::fromLatin1(qVersion()).startsWith(QLatin1String("6.4."))) {
        GTEST_SKIP() << "the pictures are those of Qt 6.4, this is Qt " << qVersion();
    }
    if (GetParam().arrange != nullptr) {
        GetParam().arrange(*this);
    }
    if (!isTaken) {
        Take(*pane->Root());
    }
}

INSTANTIATE_TEST_SUITE_P(Pane, PicturesTest, testing::ValuesIn(situations), [](const auto& instance) {
    return QString::fromLatin1(instance.param.name).remove(QLatin1Char('-')).toStdString();
});

} // namespace
} // namespace torka::tests
