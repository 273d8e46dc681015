#include "host/Options.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <set>

#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/ResponseObject.h"
#include "host/Store.h"
#include "platform/qt/QtText.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::FromQt;

namespace {

const QList<QCommandLineOption>& AllOptions() {
    static const QList<QCommandLineOption> all{
        {"exchange",
         "An exchange; repeat for more. NAME is simulated. NAME=local is this PC, NAME=ssh:user@host another "
         "Linux machine; their clocks may only be read unless \",set\" follows. Default: the lines of "
         "switchdesk/exchanges.ini in the user's configuration directory, or Main Office, Warehouse, Branch "
         "3.",
         "NAME[=PLACE]"},
        {"open", "Opens the clock add-in for this exchange.", "NAME"},
        {"offset", "Starts the exchanges' clocks this far ahead of the computer's.", "MINUTES"},
        {"market",
         "Market code in the class name of the exchange object. Default: that of the program's directory, or "
         "10001.",
         "CODE"},
        {"store", "Stores the add-ins' values in this file instead of the user's data directory.", "FILE"},
        {"log", "Writes every call that the host receives to this file, one line each.", "FILE"},
        {"verbose", "Writes them to standard output too."},
        {"trace",
         "Makes the add-in report ignored failures on standard error, i.e. to the log of the bus that starts "
         "it."},
        {"service", "Serves the exchange object without a window. Ends when its last client releases it."},
        {"help", "Shows this text."},
        {"login", "To test the add-in: Login returns this, e.g. BUSY, ERROR or a key.", "TEXT"},
        {"answer", "Answers \"never\", or \"late:MS\": after MS milliseconds instead of 100.", "WHEN"},
        {"item",
         "Replaces a text in item I of every answer, from 0; FIELD is CMD, FirstData, SecondData or "
         "ExtraData.",
         "I:FIELD=TEXT"},
        {"drop-item", "Omits this item from every answer.", "I"},
        {"lack", "Acts as if the host, the exchange object and answers had no such member.", "MEMBER"},
        {"logins", "Misbehaves for the first N logins only.", "N"},
    };
    return all;
}

[[noreturn]] void Refuse(QString why) {
    if (why.endsWith(u'.')) why.chop(1);
    throw platform::RuntimeError(5, FromQt(why + QStringLiteral("; see --help")));
}

double Minutes(const QString& text) {
    bool isNumber = false;
    const double minutes = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(minutes)) Refuse(QStringLiteral("--offset needs minutes, not ") + text);
    return minutes;
}

std::string Market(const QString& text) {
    static const QRegularExpression code(QStringLiteral("\\A[A-Za-z0-9_]+\\z"));
    if (!code.match(text).hasMatch())
        Refuse(QStringLiteral("--market needs a market code, not \"%1\"").arg(text));
    return text.toStdString();
}

platform::Text OneOf(const std::vector<ExchangeEntry>& exchanges, const QString& name) {
    if (std::none_of(exchanges.begin(), exchanges.end(),
                     [&](const ExchangeEntry& entry) { return entry.name == FromQt(name); }))
        Refuse(QStringLiteral("unknown exchange \"%1\"").arg(name));
    return FromQt(name);
}

void RequireDifferentNames(const std::vector<ExchangeEntry>& exchanges) {
    std::set<platform::Text> names;
    for (const ExchangeEntry& exchange : exchanges)
        if (!names.insert(exchange.name).second)
            Refuse(QStringLiteral("two exchanges are called \"%1\"").arg(platform::ToQt(exchange.name)));
}

// Returns the name in lower case.
std::string KnownMember(const QString& name) {
    const std::string lower = LowerCase(name.toStdString());
    for (const auto* described :
         {&HostObject::Description(), &ExchangeObject::Description(), &ResponseObject::Description()})
        for (const platform::Member& member : described->members)
            if (LowerCase(member.name) == lower) return lower;
    Refuse(QStringLiteral("--lack: no object has a member \"%1\"").arg(name));
}

Misbehaviour MisbehaviourOf(const QCommandLineParser& parser) {
    Misbehaviour misbehaviour;
    if (parser.isSet("login")) misbehaviour.login = FromQt(parser.value("login"));
    if (parser.isSet("answer")) TakeAnswer(parser.value("answer").toStdString(), misbehaviour);
    for (const QString& item : parser.values("item"))
        misbehaviour.overrides.push_back(ParseOverride(item.toStdString()));
    for (const QString& item : parser.values("drop-item"))
        misbehaviour.droppedItems.insert(static_cast<std::size_t>(ParseCount(item.toStdString())));
    for (const QString& member : parser.values("lack")) misbehaviour.lacking.insert(KnownMember(member));
    if (parser.isSet("logins")) misbehaviour.logins = ParseCount(parser.value("logins").toStdString());
    return misbehaviour;
}

}  // namespace

Options ParseOptions(const QStringList& arguments, const std::string& market) {
    QCommandLineParser parser;
    parser.addOptions(AllOptions());
    if (!parser.parse(arguments)) Refuse(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        Refuse(QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().first()));
    Options options;
    for (const QString& line : parser.values("exchange")) options.exchanges.push_back(ParseExchange(line));
    if (options.exchanges.empty()) options.exchanges = ReadExchanges(ExchangesFile());
    if (options.exchanges.empty()) options.exchanges = {{u"Main Office"}, {u"Warehouse"}, {u"Branch 3"}};
    RequireDifferentNames(options.exchanges);
    if (parser.isSet("open")) options.open = OneOf(options.exchanges, parser.value("open"));
    if (!market.empty()) options.market = market;
    if (parser.isSet("market")) options.market = Market(parser.value("market"));
    if (parser.isSet("offset")) options.minutesAhead = Minutes(parser.value("offset"));
    options.store = DefaultStoreFile();
    if (parser.isSet("store")) options.store = parser.value("store").toStdString();
    if (parser.isSet("log")) options.log = parser.value("log").toStdString();
    options.verbose = parser.isSet("verbose");
    options.trace = parser.isSet("trace");
    options.service = parser.isSet("service");
    options.help = parser.isSet("help");
    options.misbehaviour = MisbehaviourOf(parser);
    return options;
}

std::string HelpText() {
    QCommandLineParser parser;
    parser.setApplicationDescription("A small host for telephone exchanges, simulated and real.");
    parser.addOptions(AllOptions());
    // Qt takes the name from the application, which doesn't exist yet.
    return parser.helpText().replace("<executable_name>", "switchdesk").toStdString();
}

}  // namespace switchdesk
