#include "host/Store.h"

#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

#include "platform/qt/QtText.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::Text;

namespace {

// Opened for each access, so that values written by another host are seen and kept.
QSettings Open(const std::filesystem::path& file) {
    return {QString::fromStdString(file.string()), QSettings::IniFormat};
}

void RequireSuccess(const QSettings& settings, const char16_t* what) {
    if (settings.status() != QSettings::NoError)
        throw platform::RuntimeError(75, what + platform::FromQt(settings.fileName()));
}

// Encodes both parts, either of which may contain the separator.
QString NameOf(const Text& application, const Text& key) {
    const auto part = [](const Text& text) {
        return text.empty() ? QStringLiteral("%")
                            : QString::fromLatin1(QUrl::toPercentEncoding(platform::ToQt(text)));
    };
    return part(application) + u'/' + part(key);
}

}  // namespace

Store::Store(std::filesystem::path file) : file_(std::move(file)) {
    RequireSuccess(Open(file_), u"The store can't be read: ");
}

std::optional<Text> Store::Get(const Text& application, const Text& key) const {
    const QVariant value = Open(file_).value(NameOf(application, key));
    if (!value.isValid()) return std::nullopt;
    return platform::FromQt(value.toString());
}

void Store::Set(const Text& application, const Text& key, const Text& value) {
    QSettings settings = Open(file_);
    settings.setValue(NameOf(application, key), platform::ToQt(value));
    settings.sync();
    RequireSuccess(settings, u"The store can't be written: ");
}

std::filesystem::path DefaultStoreFile() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return std::filesystem::path(data.toStdString()) / "switchdesk" / "store.ini";
}

}  // namespace switchdesk
