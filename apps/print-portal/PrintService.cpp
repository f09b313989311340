// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/PrintService.h"

#include "apps/common/OutsideText.h"
#include "apps/print-portal/Delivery.h"
#include "apps/print-portal/DocumentIntake.h"

#include <QApplication>
#include <QFileInfo>
#include <QUrl>
#include <cstdio>
#include <utility>

namespace torka::portal {

namespace {

constexpr qsizetype longestTitle = 200; // characters

void log(const QString& program, const QStringList& problems) {
    for (const QString& problem : problems) {
        std::fprintf(stderr, "%s: %s\n", apps::printable(program.toStdString()).c_str(),
                     apps::printable(problem.toStdString()).c_str());
    }
}

bool isSet(const QVariantMap& options, const char* key, bool otherwise) {
    const QVariant value = options.value(QLatin1String(key));
    return value.typeId() == QMetaType::Bool ? value.toBool() : otherwise;
}

DialogWish wishOf(const QString& appId, const QString& parentWindow, const QString& title,
                  const QVariantMap& options) {
    DialogWish wish;
    wish.title = plainLine(title, longestTitle).trimmed();
    if (wish.title.isEmpty()) {
        wish.title = PrintService::tr("Document");
    }
    wish.parentWindow = parentWindow;
    wish.isModal = isSet(options, "modal", true);
    wish.isSandboxed = !appId.isEmpty();
    return wish;
}

// GTK programs name the document only in the file that they propose. For a queue, the whole address is that
// of the last file that was written.
QString documentName(const PrintChoices& choices, bool isFile) {
    const QString name =
        choices.outputName.isEmpty() && isFile ? QUrl(choices.outputUri).fileName() : choices.outputName;
    return plainLine(QFileInfo(name).completeBaseName(), longestTitle).trimmed();
}

} // namespace

PrintService::PrintService(PDEPlugIn& printPlugIn, QObject* parent)
    : QObject(parent)
    , plugIn(printPlugIn) {
    callers.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&callers, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& caller) {
        callers.removeWatchedService(caller);
        const QList<PortalRequest*> requests = findChildren<PortalRequest*>();
        for (PortalRequest* request : requests) {
            if (request->Caller() == caller) {
                request->Close();
            }
        }
    });
}

PrintService::~PrintService() = default;

PortalRequest* PrintService::Begin(const QDBusObjectPath& handle) {
    setDelayedReply(true);
    PortalRequest* request = PortalRequest::Begin(connection(), message(), handle.path(), this);
    if (request != nullptr && !callers.watchedServices().contains(request->Caller())) {
        callers.setConnection(connection());
        callers.addWatchedService(request->Caller());
    }
    return request;
}

DialogSession* PrintService::OpenDialog(PortalRequest& request, DialogWish wish) {
    auto* session = new DialogSession(plugIn, std::move(wish), this);
    connect(&request, &PortalRequest::closed, session, &DialogSession::Close);
    connect(session, &DialogSession::answered, &request, [&request](Response response) {
        if (response != Response::Success) {
            request.Answer(response);
        }
    });
    return session;
}

unsigned PrintService::PreparePrint(const QDBusObjectPath& handle, const QString& appId,
                                    const QString& parentWindow, const QString& title,
                                    const QVariantMap& settings, const QVariantMap& pageSetup,
                                    const QVariantMap& options, QVariantMap& /*results*/) {
    PortalRequest* request = Begin(handle);
    if (request == nullptr) {
        return 0;
    }
    DialogWish wish = wishOf(appId, parentWindow, title, options);
    QStringList problems;
    wish.choices = readChoices(settings, pageSetup, problems);
    log(wish.title, problems);
    const QString askedTitle = wish.title;
    const auto titled = [&](bool isFile) {
        const QString name = documentName(wish.choices, isFile);
        return name.isEmpty() ? askedTitle : name;
    };
    const QString fileTitle = titled(true);
    const QString queueTitle = titled(false);
    wish.title = asksForFile(wish.choices) ? fileTitle : queueTitle;
    // Version 3 of the interface tells what the program can print. Earlier, only the present choice does.
    wish.hasSelection = isSet(options, "has_selected_pages", wish.choices.pages == Pages::Selection);
    wish.hasCurrentPage = isSet(options, "has_current_page", wish.choices.pages == Pages::Current);
    DialogSession* session = OpenDialog(*request, std::move(wish));
    const QString holder = appId + QLatin1Char('\n') + request->Caller();
    connect(session, &DialogSession::answered, request, [=, this](Response response) {
        if (response != Response::Success) {
            return;
        }
        const LaidOutBy laidOutBy =
            session->Job().outputFile.isEmpty() ? LaidOutBy::Server : LaidOutBy::Program;
        PreparedJob job = session->Job();
        job.title = laidOutBy == LaidOutBy::Server ? queueTitle : fileTitle;
        job.askedTitle = askedTitle;
        request->Answer(
            Response::Success,
            {{QStringLiteral("settings"), writeSettings(session->Chosen(), laidOutBy, settings)},
             {QStringLiteral("page-setup"), writePageSetup(session->Chosen(), pageSetup)},
             {QStringLiteral("token"), QVariant::fromValue<uint>(tokens.Keep(std::move(job), holder))}});
    });
    session->Open();
    return 0;
}

unsigned PrintService::Print(const QDBusObjectPath& handle, const QString& appId, const QString& parentWindow,
                             const QString& title, const QDBusUnixFileDescriptor& document,
                             const QVariantMap& options, QVariantMap& /*results*/) {
    PortalRequest* request = Begin(handle);
    if (request == nullptr) {
        return 0;
    }
    const QVariant token = options.value(QStringLiteral("token"));
    const auto prepared = token.typeId() == QMetaType::UInt
                              ? tokens.Take(token.toUInt(), appId + QLatin1Char('\n') + request->Caller())
                              : std::nullopt;
    DialogWish wish = wishOf(appId, parentWindow, title, options);
    wish.laidOutBy = LaidOutBy::Server; // the document is as it is
    if (prepared && wish.title == prepared->askedTitle) {
        wish.title = prepared->title; // GTK gives both calls the same general title
    }
    auto* intake = new DocumentIntake(document, request);
    connect(intake, &DocumentIntake::finished, request, [=, this](const QString& problem) {
        if (request->IsAnswered()) {
            return; // closed meanwhile
        }
        if (!problem.isEmpty()) {
            tellPerson(wish.title, problem);
            request->Answer(Response::Ended);
        } else if (prepared) {
            Deliver(*request, *intake, *prepared, wish.title);
        } else {
            AskThenDeliver(*request, *intake, wish);
        }
    });
    intake->Start();
    return 0;
}

void PrintService::AskThenDeliver(PortalRequest& request, DocumentIntake& intake, DialogWish wish) {
    const QString title = wish.title;
    DialogSession* session = OpenDialog(request, std::move(wish));
    connect(session, &DialogSession::answered, &request, [=, this, &request, &intake](Response response) {
        if (response == Response::Success) {
            const PreparedJob& job = session->Job();
            if (Deliver(request, intake, job, title) && !job.outputFile.isEmpty() &&
                changesPages(session->Chosen())) {
                tellPerson(title, tr("The file holds the document as the program sent it: all pages, once, "
                                     "in their order."));
            }
        }
    });
    session->Open();
}

bool PrintService::Deliver(PortalRequest& request, DocumentIntake& intake, const PreparedJob& job,
                           const QString& title) {
    const QString problem = deliver(intake.Path(), job, title);
    if (!problem.isEmpty()) {
        tellPerson(title, problem);
    }
    request.Answer(problem.isEmpty() ? Response::Success : Response::Ended);
    return problem.isEmpty();
}

bool PrintService::IsBusy() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (window->isVisible()) {
            return true;
        }
    }
    return !findChildren<PortalRequest*>().isEmpty() || !tokens.IsEmpty();
}

void PrintService::EndAfter(std::chrono::milliseconds quiet) {
    constexpr int looks = 10; // during the quiet time
    quietTimer.disconnect();
    quietTimer.setInterval(quiet / looks);
    connect(&quietTimer, &QTimer::timeout, this, [this, quietLooks = 0]() mutable {
        quietLooks = IsBusy() ? 0 : quietLooks + 1;
        if (quietLooks >= looks) {
            Q_EMIT idle();
        }
    });
    quietTimer.start();
}

} // namespace torka::portal
