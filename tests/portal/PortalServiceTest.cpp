// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/JobProgress.h"
#include "apps/dialog/PaneBundle.h"
#include "apps/dialog/PrintDialog.h"
#include "apps/print-portal/PrintService.h"
#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixSystem.h"
#include "tests/dialog/PaneHands.h"
#include "tests/support/SmallPPD.h"

#include <PrintAdaptor.h>
#include <QCheckBox>
#include <QDBusConnection>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QDoubleSpinBox>
#include <QFile>
#include <QMessageBox>
#include <QProcess>
#include <QRadioButton>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

// The print portal on a bus of its own, called as the desktop's frontend calls it.

namespace torka::tests {

namespace {

using dialog::PrintDialog;
using Reply = QDBusPendingReply<uint, QVariantMap>;

class PortalServiceTest : public PaneHands {
protected:
    void SetUp() override {
        PaneHands::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        if (!daemon.waitForStarted() || !daemon.waitForReadyRead()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        address = QString::fromLatin1(daemon.readLine()).trimmed();
        auto loaded = dialog::loadPaneBundle(TORKA_BUNDLE);
        ASSERT_TRUE(loaded);
        pane = *std::move(loaded);
        AddQueue("Production");
        std::ofstream(folder / "foreign.ppd")
            << smallPPD
            << "*OpenUI *StapleIt/Staple: PickOne\n*DefaultStapleIt: None\n*StapleIt None/None: "
               "\"\"\n*StapleIt "
               "Corner/In the Corner: \"%% corner\"\n*CloseUI: *StapleIt\n*ColorDevice: True\n"
            << onlySheet("595 842");
        ASSERT_EQ(
            runCommand({"lpadmin", "-p", "Foreign", "-E", "-v", "torkasink:/", "-P", folder / "foreign.ppd"})
                .status,
            0);
        // Page n is black up to n times 0.15 of its height.
        ASSERT_EQ(runCommand({"gs", "-q", "-sDEVICE=pdfwrite", "-o", folder / "document.pdf",
                              "-dDEVICEWIDTHPOINTS=595", "-dDEVICEHEIGHTPOINTS=842", "-c",
                              "1 1 5 { 0 0 595 4 -1 roll 126 mul rectfill showpage } for"})
                      .status,
                  0);
        service = std::make_unique<portal::PrintService>(*pane.plugIn);
        new PrintAdaptor(service.get());
        QDBusConnection bus = QDBusConnection::connectToBus(address, "service");
        ASSERT_TRUE(bus.registerObject("/desktop", service.get(), QDBusConnection::ExportAdaptors));
        frontend = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, "frontend"));
        serviceName = bus.baseService();
    }

    void TearDown() override {
        for (QDialog* each : Shown<QDialog>()) {
            each->close();
        }
        service.reset();
        frontend.reset();
        QDBusConnection::disconnectFromBus("frontend");
        QDBusConnection::disconnectFromBus("service");
        daemon.kill();
        daemon.waitForFinished();
        PaneHands::TearDown();
    }

    Reply Call(const char* method, const QVariantList& arguments) {
        auto call = QDBusMessage::createMethodCall(serviceName, "/desktop",
                                                   "org.freedesktop.impl.portal.Print", method);
        call.setArguments(arguments);
        return frontend->asyncCall(call, 60000);
    }
    static QVariant Handle(const char* name) {
        return QVariant::fromValue(
            QDBusObjectPath(QStringLiteral("/org/freedesktop/portal/desktop/request/") + name));
    }
    Reply Prepare(const QVariantMap& settings, const char* handle = "a", const QString& program = {}) {
        return Call("PreparePrint",
                    {Handle(handle), program, "x11:2a", "Print", settings, QVariantMap(), QVariantMap()});
    }
    Reply Send(int descriptor, const QVariantMap& options = {}, const char* handle = "b") {
        return Call("Print", {Handle(handle), QString(), QString(), "Print",
                              QVariant::fromValue(QDBusUnixFileDescriptor(descriptor)), options});
    }
    Reply Send(const std::filesystem::path& document, const QVariantMap& options = {}) {
        const int descriptor = open(document.c_str(), O_RDONLY | O_CLOEXEC);
        Reply reply = Send(descriptor, options);
        close(descriptor);
        return reply;
    }
    void CloseRequest(const char* handle) {
        frontend->call(QDBusMessage::createMethodCall(serviceName,
                                                      Handle(handle).value<QDBusObjectPath>().path(),
                                                      "org.freedesktop.impl.portal.Request", "Close"),
                       QDBus::BlockWithGui);
    }

    template <class Window>
    static QList<Window*> Shown() {
        QList<Window*> shown;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* wanted = qobject_cast<Window*>(window); wanted != nullptr && wanted->isVisible()) {
                shown += wanted;
            }
        }
        return shown;
    }
    // The dialogs, once there are so many.
    static QList<PrintDialog*> Dialogs(int count = 1) {
        if (!QTest::qWaitFor([&] { return Shown<PrintDialog>().size() == count; }, 20000)) {
            throw std::runtime_error("another number of dialogs is open");
        }
        const QList<PrintDialog*> dialogs = Shown<PrintDialog>();
        for (PrintDialog* each : dialogs) {
            Paint(*each);
        }
        return dialogs;
    }
    static unsigned Answer(Reply& reply) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return reply.isFinished(); }, 20000));
        EXPECT_FALSE(reply.isError()) << reply.error().message().toStdString();
        return reply.isError() ? 99 : reply.argumentAt<0>();
    }
    static QVariantMap Map(const Reply& reply, const char* name) {
        return qdbus_cast<QVariantMap>(reply.argumentAt<1>().value(name));
    }
    // The last job's document, once its window has closed.
    std::string Printed() const {
        EXPECT_TRUE(QTest::qWaitFor([] { return Shown<dialog::JobProgress>().isEmpty(); }, 30000));
        return sandbox->Printed(LastJob());
    }
    // The numbers of the last document's pages, by their ink.
    std::string Ink() const {
        Printed();
        std::istringstream lines(Drawn(LastJob(), "inkcov"));
        std::string pages;
        std::string rest;
        for (double c = 0, m = 0, y = 0, k = 0; lines >> c >> m >> y >> k; std::getline(lines, rest)) {
            pages += std::to_string(std::lround(k / 0.15));
        }
        return pages;
    }

    TemporaryFolder folder;
    QProcess daemon;
    QString address;
    dialog::PaneBundle pane;
    std::unique_ptr<portal::PrintService> service;
    std::unique_ptr<QDBusConnection> frontend;
    QString serviceName;
};

TEST_F(PortalServiceTest, ThePanesSettingsReachTheDeviceOncePerToken) {
    Reply reply = Prepare({{"printer", "Production"},
                           {"n-copies", "2"},
                           {"output-basename", "Brochure"},
                           {"output-uri", "file:///x/Private.pdf"}}); // of a file that was printed earlier
    PrintDialog& dialog = *Dialogs()[0];
    EXPECT_TRUE(dialog.windowTitle().endsWith("Brochure")) << dialog.windowTitle().toStdString();
    Choose(dialog, "*QVStaple", "Saddle Stitch");
    QTest::keyClicks(Field<QLineEdit>(dialog, "*Notes1"), "Two proofs");
    AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
    PressPrint(dialog);
    ASSERT_EQ(Answer(reply), 0U);
    EXPECT_EQ(Map(reply, "settings").value("n-copies"), "1") << "the program draws one copy";
    EXPECT_EQ(Map(reply, "settings").value("printer"), "Production");
    const QVariantMap token{{"token", reply.argumentAt<1>().value("token")}};
    ASSERT_NE(token["token"].toUInt(), 0U);
    // Through a pipe, as some programs send it.
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    Reply sent = Send(ends[0], token);
    close(ends[0]);
    QFile document(QString::fromStdString(folder / "document.pdf"));
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    const QByteArray bytes = document.readAll();
    ASSERT_EQ(write(ends[1], bytes.data(), 100), 100);
    QTest::qWait(20);
    ASSERT_EQ(write(ends[1], bytes.data() + 100, static_cast<std::size_t>(bytes.size()) - 100),
              bytes.size() - 100);
    close(ends[1]);
    EXPECT_EQ(Answer(sent), 0U);
    const std::string printed = Printed();
    for (const char* expected : {"%%BeginFeature: *QVStaple Saddle", "Two proofs"}) {
        EXPECT_NE(printed.find(expected), std::string::npos) << expected;
    }
    EXPECT_EQ(Ink().size(), 10U) << "two copies";
    // The token is used: the person is asked.
    Reply again = Send(folder / "document.pdf", token);
    Dialogs()[0]->reject();
    EXPECT_EQ(Answer(again), 1U);
}

TEST_F(PortalServiceTest, TheLogNamesWhatThePaneDecides) {
    for (const auto& [sides, pages, isTold] :
         {std::tuple{"vertical", "2", true}, std::tuple{"simplex", "1", false}}) {
        testing::internal::CaptureStderr();
        Reply reply = Prepare({{"printer", "Production"}, {"duplex", sides}, {"number-up", pages}});
        PrintDialog& dialog = *Dialogs()[0];
        AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
        PressPrint(dialog);
        EXPECT_EQ(Answer(reply), 0U);
        const std::string told = testing::internal::GetCapturedStderr();
        for (const char* what : {"the pane decides the sides", "the pane decides the pages per sheet"}) {
            EXPECT_EQ(told.find(what) != std::string::npos, isTold) << what << " in " << told;
        }
    }
}

TEST_F(PortalServiceTest, AForeignQueuePrintsWithAllChoicesAndNoneTwice) {
    const QVariantMap settings{{"printer", "Foreign"},
                               {"n-copies", "2"},
                               {"reverse", "true"},
                               {"number-up", "2"},
                               {"print-pages", "ranges"},
                               {"page-ranges", "1-3"},
                               {"cups-StapleIt", "Corner"},
                               {"use-color", "false"},
                               {"output-uri", "file:///x/Private.pdf"},
                               {"cups-Unknown", "x"},
                               {"number-up-layout", "rltb"},
                               {"orientation", "reverse_portrait"}};
    for (const auto& [opensProperties, comesBack] :
         {std::pair(false, false), std::pair(true, false), std::pair(true, true)}) {
        Reply reply = Prepare(settings);
        PrintDialog& dialog = *Dialogs()[0];
        EXPECT_FALSE(dialog.tab().hasPanel());
        EXPECT_TRUE(dialog.windowTitle().endsWith(" Print")) << "as the program calls it";
        EXPECT_EQ(dialog.findChild<QLineEdit*>("pagesLineEdit")->text(), "2-4");
        if (opensProperties) {
            UseProperties(
                dialog, [](QDialog&) {}, QDialog::Rejected); // takes nothing away
            UseProperties(dialog, [](QDialog& properties) {
                EXPECT_TRUE(
                    properties.findChild<QComboBox*>("pagesPerSheetCombo")->currentText().startsWith("2"));
                auto* staple = properties.findChild<QWidget*>("cupsPropertiesPage")->findChild<QComboBox*>();
                EXPECT_EQ(staple->currentText().toStdString(), "In the Corner");
            });
        }
        if (comesBack) { // Qt forgets the properties
            ASSERT_TRUE(dialog.chooseQueue("Production"));
            ASSERT_TRUE(dialog.chooseQueue("Foreign"));
        }
        PressPrint(dialog);
        ASSERT_EQ(Answer(reply), 0U);
        const QVariantMap chosen = Map(reply, "settings");
        const std::pair<const char*, const char*> expected[] = {
            {"n-copies", "1"},      {"reverse", "false"},
            {"number-up", "1"},     {"page-ranges", "1-3"},
            {"use-color", "false"}, {"cups-StapleIt", "Corner"},
            {"cups-Unknown", ""},   {"print-pages", "ranges"},
            {"duplex", "simplex"},  {"orientation", "reverse_portrait"}};
        for (const auto& [key, value] : expected) {
            EXPECT_EQ(chosen.value(key).toString().toStdString(), value) << key;
        }
        Reply sent = Send(folder / "document.pdf", {{"token", reply.argumentAt<1>().value("token")}});
        EXPECT_EQ(Answer(sent), 0U);
        const std::string printed = Printed();
        EXPECT_NE(printed.find("%% corner"), std::string::npos);
        EXPECT_NE(sandbox->ErrorLog().find("number-up=2 number-up-layout=rltb outputorder=reverse"),
                  std::string::npos);
        EXPECT_EQ(Ink().size(), 6U) << "five pages, two on a sheet, two copies";
    }
}

TEST_F(PortalServiceTest, ThePaperComesBackWithEachQueueThatHasIt) {
    AddQueue("Second");
    for (const auto& [queue, paper, isTold] :
         {std::tuple{"Second", "A5", false}, std::tuple{"Foreign", "A4", true}}) {
        testing::internal::CaptureStderr();
        Reply reply =
            Prepare({{"printer", "Production"}, {"paper-format", "iso_a5"}, {"orientation", "landscape"}});
        PrintDialog& dialog = *Dialogs()[0];
        ASSERT_TRUE(dialog.chooseQueue(queue));
        const Answers person({{"popupJobNotes", Answers::Accept}});
        PressPrint(dialog);
        EXPECT_EQ(Answer(reply), 0U);
        EXPECT_EQ(Map(reply, "page-setup").value("PPDName").toString().toStdString(), paper) << queue;
        EXPECT_EQ(Map(reply, "page-setup").value("Orientation"), "landscape") << queue;
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(told.find("the queue has no paper A5") != std::string::npos, isTold) << told;
    }
}

TEST_F(PortalServiceTest, AQueueThatHasGoneIsNoFile) {
    AddQueue("Passing", "torkasink:/", folder / "foreign.ppd");
    Reply reply = Prepare({{"printer", "Passing"}});
    PrintDialog& dialog = *Dialogs()[0];
    ASSERT_EQ(dialog.queue(), "Passing");
    ASSERT_EQ(runCommand({"lpadmin", "-x", "Passing"}).status, 0);
    PressPrint(dialog);
    EXPECT_EQ(Answer(reply), 2U);
    const auto boxes = Shown<QMessageBox>();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0]->text().endsWith("the print server has no queue Passing"))
        << boxes[0]->text().toStdString();
    boxes[0]->accept();
}

TEST_F(PortalServiceTest, EvenPagesOfARangeAreThoseOfTheDocument) {
    Reply reply = Prepare(
        {{"printer", "Foreign"}, {"print-pages", "ranges"}, {"page-ranges", "1-4"}, {"page-set", "even"}});
    PressPrint(*Dialogs()[0]);
    ASSERT_EQ(Answer(reply), 0U);
    EXPECT_EQ(Map(reply, "settings").value("page-ranges"), "1,3");
    EXPECT_EQ(Map(reply, "settings").value("page-set"), "all");
}

TEST_F(PortalServiceTest, WithoutATokenTheServerAppliesWhatThePersonChooses) {
    Reply sent = Send(folder / "document.pdf");
    PrintDialog& dialog = *Dialogs()[0];
    ASSERT_TRUE(dialog.chooseQueue("Foreign"));
    dialog.findChild<QRadioButton*>("pagesRadioButton")->setChecked(true);
    dialog.findChild<QLineEdit*>("pagesLineEdit")->setText("2,4-5");
    dialog.findChild<QCheckBox*>("reverse")->setChecked(true);
    PressPrint(dialog);
    EXPECT_EQ(Answer(sent), 0U);
    EXPECT_EQ(Ink(), "542");
}

TEST_F(PortalServiceTest, AFileIsWrittenWhereThePersonSays) {
    const std::filesystem::path taken = folder / "Offer.pdf";
    std::ofstream(taken) << "the document itself";
    const QVariantMap settings{{"printer", "Print to File"},
                               {"n-copies", "2"},
                               {"number-up", "2"},
                               {"number-up-layout", "rltb"},
                               {"output-uri", QString("file://%1").arg(QString::fromStdString(taken))}};
    // A program in a sandbox does not choose the folder.
    const TemporaryFolder home;
    const auto back = qScopeGuard([before = qgetenv("HOME")] { qputenv("HOME", before); });
    qputenv("HOME", home.Path().c_str());
    Reply sandboxed = Prepare(settings, "s", "org.example.Reader");
    auto* line = Dialogs()[0]->findChild<QLineEdit*>("filename");
    EXPECT_EQ(line->text().toStdString(), home / "Offer.pdf");
    Shown<PrintDialog>()[0]->reject();
    EXPECT_EQ(Answer(sandboxed), 1U);

    Reply reply = Prepare(settings);
    PrintDialog& dialog = *Dialogs()[0];
    const QString file = dialog.findChild<QLineEdit*>("filename")->text();
    EXPECT_EQ(file.toStdString(), folder / "Offer-2.pdf");
    dialog.findChild<QDoubleSpinBox*>("scale")->setValue(62.5);
    UseProperties(dialog, [](QDialog& properties) {
        auto* sheets = properties.findChild<QComboBox*>("pagesPerSheetCombo");
        EXPECT_TRUE(sheets->isVisibleTo(&properties));
        EXPECT_TRUE(sheets->currentText().startsWith("2"));
        sheets->setCurrentIndex(2);
    });
    PressPrint(dialog);
    ASSERT_EQ(Answer(reply), 0U);
    for (const auto& [key, value] : {std::pair("n-copies", "2"), std::pair("scale", "62.5"),
                                     std::pair("number-up", "4"), std::pair("number-up-layout", "rltb")}) {
        EXPECT_EQ(Map(reply, "settings").value(key), value) << key << ": the program draws it";
    }
    Reply sent = Send(folder / "document.pdf", {{"token", reply.argumentAt<1>().value("token")}});
    EXPECT_EQ(Answer(sent), 0U);
    EXPECT_EQ(runCommand({"cmp", folder / "document.pdf", file.toStdString()}).status, 0);
}

TEST_F(PortalServiceTest, ARequestEndsByThePersonTheFrontendAndTheProgram) {
    Reply cancelled = Prepare({{"printer", "Production"}});
    Dialogs()[0]->reject();
    EXPECT_EQ(Answer(cancelled), 1U);

    // Two at once; the second one ends while its properties are open.
    Reply first = Prepare({{"printer", "Production"}}, "first");
    Dialogs(1);
    Reply second = Prepare({{"printer", "Foreign"}}, "second");
    const auto both = Dialogs(2);
    PrintDialog* foreign = both[0]->queue() == "Foreign" ? both[0] : both[1];
    QTimer::singleShot(0, qApp, [&] { CloseRequest("second"); });
    foreign->findChild<QPushButton*>("properties")->click();
    EXPECT_EQ(Answer(second), 2U);
    PrintDialog& left = *Dialogs(1)[0];
    EXPECT_EQ(left.queue(), "Production");
    EXPECT_FALSE(first.isFinished());
    // The handle is in use, and another one is no request's.
    for (const auto& [handle, name] :
         {std::pair(Handle("first"), "in use"),
          std::pair(QVariant::fromValue(QDBusObjectPath("/org/elsewhere")), "elsewhere")}) {
        Reply refused = Call(
            "PreparePrint", {handle, QString(), QString(), "t", QVariantMap(), QVariantMap(), QVariantMap()});
        EXPECT_TRUE(QTest::qWaitFor([&] { return refused.isFinished(); }, 20000));
        EXPECT_TRUE(refused.isError()) << name;
    }
    // The first one ends while the pane asks its questions: nothing is printed.
    bool isAsked = false;
    AnswerPopupNotes([&](QDialog&) {
        isAsked = true;
        CloseRequest("first");
    });
    PressPrint(left);
    EXPECT_TRUE(isAsked);
    EXPECT_EQ(Answer(first), 2U);
    Dialogs(0);
    // The caller is gone.
    Reply orphan = Prepare({{"printer", "Foreign"}});
    Dialogs(1);
    frontend.reset();
    QDBusConnection::disconnectFromBus("frontend");
    Dialogs(0);
}

TEST_F(PortalServiceTest, ThePersonHearsOfADocumentThatIsNone) {
    std::ofstream(folder / "empty");
    std::ofstream(folder / "text") << "no document";
    for (const auto& [source, words] : {std::pair(std::string(folder / "empty"), "empty"),
                                        std::pair(std::string(folder / "text"), "neither PDF"),
                                        std::pair(std::string("/dev/null"), "no document"),
                                        std::pair(folder.Path().string(), "no document")}) {
        Reply prepared = Prepare({{"printer", "Foreign"}});
        PressPrint(*Dialogs()[0]);
        ASSERT_EQ(Answer(prepared), 0U);
        Reply sent = Send(source, {{"token", prepared.argumentAt<1>().value("token")}});
        EXPECT_EQ(Answer(sent), 2U) << source;
        const auto boxes = Shown<QMessageBox>();
        ASSERT_EQ(boxes.size(), 1) << source;
        EXPECT_TRUE(boxes[0]->text().contains(words)) << boxes[0]->text().toStdString();
        boxes[0]->accept();
    }
}

TEST(PrintPortal, RefusesWhatItCannotUse) {
    for (const auto& [words, reason] :
         {std::pair(std::vector<std::string>{"--idle", "x"}, "from 0 to 86400, not 'x'"),
          {{"--idle", "-1"}, "not '-1'"},
          {{"--idle", "86401"}, "not '86401'"},
          {{"more"}, "unexpected argument 'more'"},
          {{"--bundle", "/nowhere"}, "/nowhere cannot be loaded"}}) {
        std::vector<std::string> command{"timeout", "20", TORKA_BINARY_DIR "/bin/torka-print-portal"};
        command.insert(command.end(), words.begin(), words.end());
        const CommandResult result = runCommand(command);
        EXPECT_EQ(result.status, 2) << words[0];
        EXPECT_NE(result.errors.find(reason), std::string::npos) << result.errors;
    }
}

TEST_F(PortalServiceTest, EndsOnlyWhenNothingIsOpen) {
    bool isIdle = false;
    QObject::connect(service.get(), &portal::PrintService::idle, [&] { isIdle = true; });
    Reply reply = Prepare({{"printer", "Foreign"}});
    PrintDialog& dialog = *Dialogs()[0];
    service->EndAfter(std::chrono::milliseconds(1));
    QTest::qWait(20);
    EXPECT_FALSE(isIdle) << "a dialog is open";
    PressPrint(dialog);
    ASSERT_EQ(Answer(reply), 0U);
    QTest::qWait(20);
    EXPECT_FALSE(isIdle) << "a token waits for its document";
    Reply sent = Send(folder / "document.pdf", {{"token", reply.argumentAt<1>().value("token")}});
    EXPECT_EQ(Answer(sent), 0U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isIdle; }, 30000));
}

} // namespace

} // namespace torka::tests
