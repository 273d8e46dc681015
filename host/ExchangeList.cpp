#include "host/ExchangeList.h"

#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

#include "platform/qt/QtText.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::FromQt;

namespace {

// Refuses anything that ssh could read as an option, or a shell as more than one word. Ports and other
// settings belong in ssh_config.
bool IsAddress(const QString& text) {
    static const QRegularExpression address(
        QStringLiteral("\\A(?:[A-Za-z0-9_][A-Za-z0-9_.-]*@)?[A-Za-z0-9][A-Za-z0-9_.-]*\\z"));
    return address.match(text).hasMatch();
}

}  // namespace

ExchangeEntry ParseExchange(const QString& line) {
    const auto equals = line.lastIndexOf(u'=');
    ExchangeEntry entry{FromQt(line.left(equals).trimmed()), equals < 0, {}, false};
    if (entry.name.empty()) throw platform::RuntimeError(5, u"an exchange needs a name");
    if (entry.isSimulated) return entry;
    QString place = line.mid(equals + 1).trimmed();
    entry.maySet = place.endsWith(QStringLiteral(",set"));
    if (entry.maySet) place.chop(4);
    if (place == QStringLiteral("local")) return entry;
    if (place.startsWith(QStringLiteral("ssh:"))) entry.address = place.mid(4);
    if (!IsAddress(entry.address))
        throw platform::RuntimeError(
            5, FromQt(QStringLiteral("\"%1\" isn't \"NAME=local\" or \"NAME=ssh:user@host\", "
                                     "with or without \",set\"")
                          .arg(line)));
    return entry;
}

std::vector<ExchangeEntry> ReadExchanges(const std::filesystem::path& file) {
    const QSettings settings(QString::fromStdString(file.string()), QSettings::IniFormat);
    std::vector<ExchangeEntry> entries;
    for (const QString& name : settings.allKeys())
        // QSettings splits a value at commas; this joins the parts again.
        entries.push_back(ParseExchange(name + u'=' + settings.value(name).toStringList().join(u',')));
    if (settings.status() != QSettings::NoError)
        throw platform::RuntimeError(75, u"The exchanges can't be read: " + FromQt(settings.fileName()));
    return entries;
}

std::filesystem::path ExchangesFile() {
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(directory.toStdString()) / "switchdesk" / "exchanges.ini";
}

}  // namespace switchdesk
