// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/QueueNotice.h"
#include "apps/dialog/Said.h"

#include "platform/Spooler.h"
#include "platform/cups/CupsPrinting.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <string_view>

namespace torka::dialog {

namespace {

struct ReasonWords {
    std::string_view keyword;
    const char* words;
};

// Keywords of "printer-state-reasons" (RFC 8011, 5.4.12, and CUPS) that keep jobs waiting.
constexpr std::array reasonWords{
    ReasonWords{"cover-open", QT_TRANSLATE_NOOP("torka", "a cover is open")},
    ReasonWords{"cups-insecure-filter",
                QT_TRANSLATE_NOOP("torka", "a filter of the queue is not safe to run")},
    ReasonWords{"cups-missing-filter", QT_TRANSLATE_NOOP("torka", "a filter of the queue is missing")},
    ReasonWords{"connecting-to-device", QT_TRANSLATE_NOOP("torka", "the server is still connecting to it")},
    ReasonWords{"door-open", QT_TRANSLATE_NOOP("torka", "a door is open")},
    ReasonWords{"marker-supply-empty", QT_TRANSLATE_NOOP("torka", "a supply is empty")},
    ReasonWords{"media-empty", QT_TRANSLATE_NOOP("torka", "a tray is empty")},
    ReasonWords{"media-jam", QT_TRANSLATE_NOOP("torka", "paper is jammed")},
    ReasonWords{"media-needed", QT_TRANSLATE_NOOP("torka", "paper must be loaded")},
    ReasonWords{"offline", QT_TRANSLATE_NOOP("torka", "it does not answer")},
    ReasonWords{"output-area-full", QT_TRANSLATE_NOOP("torka", "the output tray is full")},
    ReasonWords{"shutdown", QT_TRANSLATE_NOOP("torka", "it is switched off")},
    ReasonWords{"timed-out", QT_TRANSLATE_NOOP("torka", "it did not answer in time")},
    ReasonWords{"toner-empty", QT_TRANSLATE_NOOP("torka", "the toner is used up")},
};

QString shown(const CFTypeRef& text) {
    QString result = QString::fromStdString(utf8Text(cfCast<CFString>(text))).simplified();
    result.removeIf([](QChar c) { return !c.isPrint() && !c.isSurrogate(); });
    return result;
}

// "media-empty-error" is the keyword "media-empty" with its severity. A report alone keeps no job waiting.
QString wordsOf(std::string_view reason, const QString& spelled) {
    for (const std::string_view severity : {"-error", "-warning", "-report"}) {
        if (reason.ends_with(severity)) {
            reason.remove_suffix(severity.size());
        }
    }
    const auto* const found = std::ranges::find(reasonWords, reason, &ReasonWords::keyword);
    return found == reasonWords.end() ? spelled : said(found->words);
}

QStringList reasonsOf(const CFDictionaryRef& state) {
    QStringList reasons;
    const auto array = cfCast<CFArray>(CFDictionaryGetValue(state, u"printer-state-reasons"));
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        const QString spelled = shown(CFArrayGetValueAtIndex(array, i));
        const std::string reason = spelled.toStdString();
        const bool isKnown = wordsOf(reason, {}).size() > 0;
        // "paused" says no more than the state; an unknown report or warning stops nothing.
        if (isKnown || (reason.ends_with("-error") && !spelled.isEmpty())) {
            reasons += wordsOf(reason, spelled);
        }
    }
    reasons.removeDuplicates();
    return reasons;
}

} // namespace

QString queueNotice(const std::string& queue, const CFDictionaryRef& state) {
    if (!state) {
        return {};
    }
    const QString name = QString::fromStdString(queue);
    std::int32_t number = 0;
    CFNumberGetValue(cfCast<CFNumber>(CFDictionaryGetValue(state, u"printer-state")), number);
    QStringList sentences;
    const bool isStopped = number == destinationStateStopped;
    if (isStopped) {
        sentences +=
            said(QT_TRANSLATE_NOOP("torka", "The queue %1 is stopped: jobs wait until it is started again."))
                .arg(name);
    }
    const auto accepts = cfCast<CFBoolean>(CFDictionaryGetValue(state, u"printer-is-accepting-jobs"));
    const bool isRejecting = accepts && !CFBooleanGetValue(accepts);
    if (isRejecting) {
        sentences += said(QT_TRANSLATE_NOOP("torka", "The queue %1 takes no new jobs.")).arg(name);
    }
    const QStringList reasons = reasonsOf(state);
    if (!reasons.isEmpty()) {
        sentences += said(QT_TRANSLATE_NOOP("torka", "The printer cannot go on: %1."))
                         .arg(reasons.join(said(QT_TRANSLATE_NOOP("torka", ", "))));
    }
    const QString message = shown(CFDictionaryGetValue(state, u"printer-state-message"));
    if (!sentences.isEmpty() && !message.isEmpty()) {
        sentences += said(QT_TRANSLATE_NOOP("torka", "The server says: %1")).arg(message);
    }
    return sentences.join(QLatin1Char(' '));
}

int queuedJobs(const CFDictionaryRef& state) {
    std::int32_t number = 0;
    CFNumberGetValue(cfCast<CFNumber>(CFDictionaryGetValue(state, u"queued-job-count")), number);
    return std::max(number, 0);
}

CFDictionaryRef queueState(const std::string& queue) {
    CFDictionaryRef state;
    return platform::CupsPrinter(queue).CopyState(state) == noErr ? state : nullptr;
}

} // namespace torka::dialog
