#include "shell/HelpLauncher.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QStandardPaths>

#include "help/HelpPage.h"

namespace sonavault {
namespace {

const QString kProgram = QStringLiteral("sonavault-help");
constexpr int kPatience = 1000;  // Units: milliseconds

QString findProgram() {
    const QFileInfo beside(QCoreApplication::applicationDirPath() + u'/' + kProgram);
    if (beside.isFile() && beside.isExecutable()) return beside.filePath();
    return QStandardPaths::findExecutable(kProgram);
}

}  // namespace

HelpServices HelpServices::ofThisMachine() {
    return {
        .program = findProgram(),
        .address = QUrl(QString::fromStdString(helpAddress())),
        .openInBrowser = [](const QUrl& address) { return QDesktopServices::openUrl(address); }};
}

HelpLauncher::HelpLauncher(HelpServices services) : services_(std::move(services)) {}

HelpLauncher::~HelpLauncher() {
    delete offlinePage_;
    if (!process_) return;
    process_->disconnect();
    if (!isRunning()) return;
    process_->kill();
    process_->waitForFinished(kPatience);
}

void HelpLauncher::helpClicked() {
    if (!isRunning()) {
        start();
        return;
    }
    // One that does not listen has not taken the last line either; more would only pile up.
    if (process_->bytesToWrite() == 0) process_->write("raise\n");
    isRaiseAnswered_ = false;
}

bool HelpLauncher::isRunning() const {
    return process_ && process_->state() != QProcess::NotRunning;
}

void HelpLauncher::start() {
    if (services_.program.isEmpty()) {
        openElsewhere(QStringLiteral("sonavault-help is not installed."));
        return;
    }
    wasShown_ = false;
    isRaiseAnswered_ = true;
    // It may be its own last word that has this one started.
    if (process_) process_.release()->deleteLater();
    process_ = std::make_unique<QProcess>();
    // The web engine has much to say that concerns nobody.
    process_->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, process_.get(), [this] {
        const QByteArray said = process_->readAllStandardOutput();
        if (said.contains("shown")) wasShown_ = true;
        if (said.contains("raised")) isRaiseAnswered_ = true;
    });
    QObject::connect(process_.get(), &QProcess::errorOccurred, process_.get(),
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             openElsewhere(process_->errorString());
                     });
    QObject::connect(process_.get(), &QProcess::finished, process_.get(), [this] { ended(); });
    process_->start(services_.program,
                    {QStringLiteral("--attached"), services_.address.toString()});
}

// A window that the person closed is done with. But one that never came up, or was closed just when
// they asked for it again, is a help that they still wait for.
void HelpLauncher::ended() {
    if (wasShown_ && !isRaiseAnswered_) return start();
    if (!wasShown_) openElsewhere(QStringLiteral("sonavault-help ended before it was shown."));
}

void HelpLauncher::openElsewhere(const QString& error) {
    if (!services_.openInBrowser(services_.address)) showOfflinePage(error);
}

void HelpLauncher::showOfflinePage(const QString& error) {
    if (!offlinePage_) {
        const std::string site = helpSite(services_.address.toString().toStdString());
        offlinePage_ =
            new OfflineHelpPage(QString::fromStdString(fallbackPage(site, error.toStdString())));
    }
    offlinePage_->show();
    offlinePage_->raise();
    offlinePage_->activateWindow();
}

}  // namespace sonavault
