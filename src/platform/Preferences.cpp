#include "platform/Preferences.h"

#include <pwd.h>
#include <unistd.h>

#include <QLocale>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "platform/ReadFile.h"

namespace sonavault {
namespace {

QString nameOf(const std::filesystem::path& file) {
    return QString::fromStdString(file.string());
}

// A fresh QSettings looks at the file when it is made: Qt keeps what it read in memory, but reads
// again when the file's size or time of change is not what it was.
QVariant readAny(const std::filesystem::path& file, const std::string& key) {
    const QSettings settings(nameOf(file), QSettings::IniFormat);
    return settings.value(QString::fromStdString(key));
}

std::optional<QString> read(const std::filesystem::path& file, const std::string& key) {
    const QVariant value = readAny(file, key);
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    return value.toString();
}

/// A text with commas that stands in the file without quotes, and so was read as a list, which has
/// lost the blanks around them. Where the line can't be found as it was written, each comma gets
/// one blank behind it, as in a sentence.
std::string asWritten(const std::filesystem::path& file, const std::string& key,
                      const QStringList& pieces) {
    const auto content = readWholeFile(file);
    if (content) {
        for (const auto& line : QString::fromStdString(content.value()).split('\n')) {
            const auto equals = line.indexOf('=');
            if (line.left(equals).trimmed() != QString::fromStdString(key)) continue;
            const QString text = line.mid(equals + 1).trimmed();
            if (!text.contains('"') && !text.contains('\\')) return text.toStdString();
        }
    }
    return pieces.join(", ").toStdString();
}

// Always as text or bytes: in the memory of this process Qt would keep a number a number, and a
// reader here would see another kind of value than a reader elsewhere.
void write(const std::filesystem::path& file, const std::string& key, const QVariant& value) {
    QSettings settings(nameOf(file), QSettings::IniFormat);
    settings.setValue(QString::fromStdString(key), value);
    settings.sync();
}

std::optional<std::filesystem::path> folderFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || value[0] != '/') return std::nullopt;
    return value;
}

std::filesystem::path homeOfUser() {
    std::vector<char> texts(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found)
        return found->pw_dir;
    return "/";
}

}  // namespace

std::filesystem::path Preferences::fileForDomain(const std::string& domain) {
    const auto configuration = folderFromEnvironment("XDG_CONFIG_HOME");
    return configuration.value_or(homeFolder() / ".config") / (domain + ".conf");
}

bool Preferences::contains(const std::string& key) const {
    return QSettings(nameOf(file_), QSettings::IniFormat).contains(QString::fromStdString(key));
}

std::optional<std::string> Preferences::text(const std::string& key) const {
    const QVariant value = readAny(file_, key);
    if (value.typeId() == QMetaType::QStringList)
        return asWritten(file_, key, value.toStringList());
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    return value.toString().toStdString();
}

std::optional<long long> Preferences::integer(const std::string& key) const {
    const auto value = read(file_, key);
    bool whole = false;
    const long long number = value ? value->toLongLong(&whole) : 0;
    if (!whole) return std::nullopt;
    return number;
}

std::optional<double> Preferences::real(const std::string& key) const {
    const auto value = read(file_, key);
    bool numeric = false;
    const double number = value ? value->toDouble(&numeric) : 0;
    if (!numeric || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::optional<bool> Preferences::boolean(const std::string& key) const {
    const auto value = read(file_, key);
    if (value == QString("true") || value == QString("1")) return true;
    if (value == QString("false") || value == QString("0")) return false;
    return std::nullopt;
}

std::optional<std::string> Preferences::bytes(const std::string& key) const {
    const QVariant value = readAny(file_, key);
    if (value.typeId() != QMetaType::QByteArray) return std::nullopt;
    return value.toByteArray().toStdString();
}

void Preferences::setText(const std::string& key, const std::string& value) {
    write(file_, key, QString::fromStdString(value));
}

void Preferences::setInteger(const std::string& key, long long value) {
    write(file_, key, QString::number(value));
}

void Preferences::setReal(const std::string& key, double value) {
    write(file_, key, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void Preferences::setBoolean(const std::string& key, bool value) {
    write(file_, key, value ? "true" : "false");
}

void Preferences::setBytes(const std::string& key, std::string_view value) {
    write(file_, key, QByteArray(value.data(), static_cast<qsizetype>(value.size())));
}

std::filesystem::path homeFolder() {
    const auto home = folderFromEnvironment("HOME");
    return home ? *home : homeOfUser();
}

std::filesystem::path cacheFolder() {
    const auto caches = folderFromEnvironment("XDG_CACHE_HOME");
    return caches.value_or(homeFolder() / ".cache") / "sonavault";
}

}  // namespace sonavault
