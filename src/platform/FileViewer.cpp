#include "platform/FileViewer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <utility>

namespace sonavault {
namespace {

// https://www.freedesktop.org/wiki/Specifications/file-manager-interface/
constexpr auto kService = "org.freedesktop.FileManager1";
constexpr auto kPath = "/org/freedesktop/FileManager1";

QDBusMessage showItems(const std::filesystem::path& file) {
    auto call = QDBusMessage::createMethodCall(kService, kPath, kService, "ShowItems");
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(file.string()));
    call << QStringList{url.toString(QUrl::FullyEncoded)} << QString();
    return call;
}

}  // namespace

void showInFileViewer(const std::filesystem::path& file, std::function<void()> otherwise) {
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(showItems(file)));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, otherwise = std::move(otherwise)] {
                         watcher->deleteLater();
                         if (QDBusPendingReply<>(*watcher).isError()) otherwise();
                     });
}

}  // namespace sonavault
