// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/PersonsTexts.h"

#include "platform/posix/Sentences.h"
#include "platform/posix/StringTables.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTranslator>
#include <QVariant>
#include <optional>
#include <utility>

namespace torka::platform {

namespace {

// Host and plug-in each have a copy of this code, and share the application object.
constexpr const char* saidProperty = "torkaTexts";

class TableTranslator final : public QTranslator {
public:
    TableTranslator(BundleRef texts, QObject* parent)
        : QTranslator(parent)
        , bundle(std::move(texts)) {}

    // A program may call its tr() on any thread; those calls end before the bundle, which only one thread
    // reads.
    QString translate(const char* context, const char* source, const char* /*disambiguation*/,
                      int /*number*/) const override {
        if (context == nullptr || !std::string_view(context).starts_with(ownTextContext)) {
            return {};
        }
        if (std::string_view(context) == messageContext) {
            return QString::fromStdString(Messages().Say(source));
        }
        const CFStringRef english = cfString(source);
        const CFStringRef text = bundle->LocalizedString(english, english, "Windows");
        return text == english ? QString() : QString::fromStdString(utf8Text(text));
    }
    bool isEmpty() const override { return false; } // Qt installs no empty one

private:
    const Sentences& Messages() const {
        if (!messages) {
            const StringTables tables(bundle->Path() / "Contents" / "Resources", "en");
            messages.emplace(tables.Whole("Tool"));
        }
        return *messages;
    }

    BundleRef bundle;
    mutable std::optional<Sentences> messages; // read for the first message
};

// Keeps the change of language from the program, which would make the texts of all its windows again.
class NoChangeOfLanguage final : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return event->type() == QEvent::LanguageChange && watched == QCoreApplication::instance();
    }
};

} // namespace

void sayInPersonsLanguage(const BundleRef& bundle) {
    QCoreApplication* application = QCoreApplication::instance();
    if (bundle == nullptr || application->property(saidProperty).isValid()) {
        return;
    }
    application->setProperty(saidProperty, true);
    NoChangeOfLanguage filter;
    application->installEventFilter(&filter);
    QCoreApplication::installTranslator(new TableTranslator(bundle, application));
    application->removeEventFilter(&filter);
}

} // namespace torka::platform
