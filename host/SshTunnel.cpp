#include "host/SshTunnel.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "platform/qt/QtText.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::FromQt;
using platform::TextView;

namespace {

constexpr TextView noWay = u"LNK_NO_IPPBX", linkTrouble = u"LNK_PORT TROUBLES", farTrouble = u"LNK_SYSERROR";
constexpr int errorOfSsh = 255, cannotRun = 126, notFound = 127;
constexpr qsizetype longestDetail = 200;
constexpr int killLimit = 100;  // milliseconds; a killed process needs less

// Keeps the operator's ssh_config, but without its forwardings and remote command.
QStringList SshArguments(const QString& address) {
    return {"-xaT",
            "-oBatchMode=yes",
            "-oStrictHostKeyChecking=yes",
            "-oConnectTimeout=10",
            "-oClearAllForwardings=yes",
            "-oRemoteCommand=none",
            "--",
            address,
            "systemd-stdio-bridge"};
}

// The last line of the output, where ssh says why it ends.
QString LastLine(const QByteArray& output) {
    const QStringList lines = QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
    return lines.isEmpty() ? QString() : lines.last().simplified().left(longestDetail);
}

Failure FailureOfSsh(const QByteArray& output, const QString& address) {
    if (output.contains("HOST IDENTIFICATION HAS CHANGED"))
        return {linkTrouble,
                FromQt(SshTunnel::tr("Its host key isn't the known one: another machine may answer in "
                                     "its place. Ask its administrator."))};
    if (output.contains("Host key verification failed"))
        return {linkTrouble,
                FromQt(SshTunnel::tr("Its host key is unknown. Run \"ssh %1\" once in a terminal, and "
                                     "accept the key if it is the right one.")
                           .arg(address))};
    if (output.contains("Permission denied"))
        return {linkTrouble,
                FromQt(SshTunnel::tr("It refused this user's ssh keys. \"ssh %1\" has to work in a "
                                     "terminal without a password.")
                           .arg(address))};
    return {noWay, FromQt(SshTunnel::tr("It can't be reached: %1").arg(LastLine(output)))};
}

}  // namespace

// Disconnects first, so that the end is no longer reported. Deletes later, since a signal of the process may
// lead here.
void SshTunnel::Ender::operator()(QProcess* ssh) const {
    ssh->disconnect();
    ssh->kill();
    ssh->waitForFinished(killLimit);
    ssh->deleteLater();
}

SshTunnel::SshTunnel(const QString& address, std::function<void(const Failure& why)> ended)
    : address_(address), ssh_(new QProcess) {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) < 0) qFatal("no socket");
    socket_ = ends[0];
    ssh_->setInputChannelMode(QProcess::ForwardedInputChannel);
    ssh_->setProcessChannelMode(QProcess::ForwardedOutputChannel);
    ssh_->setChildProcessModifier([far = ends[1]] {
        dup2(far, STDIN_FILENO);
        dup2(far, STDOUT_FILENO);
    });
    QObject::connect(ssh_.get(), &QProcess::finished,
                     [this, ended] { platform::Guard([&] { ended(WhyEnded()); }); });
    const auto notStarted = [ended](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        platform::Guard(
            [&] { ended({linkTrouble, FromQt(tr("This PC has no ssh: install openssh-client."))}); });
    };
    QObject::connect(ssh_.get(), &QProcess::errorOccurred, ssh_.get(), notStarted, Qt::QueuedConnection);
    ssh_->start("ssh", SshArguments(address));
    close(ends[1]);
}

int SshTunnel::TakeSocket() {
    return std::exchange(socket_, -1);
}

Failure SshTunnel::WhyEnded() const {
    const QByteArray output = ssh_->readAllStandardError();
    const int code = ssh_->exitStatus() == QProcess::NormalExit ? ssh_->exitCode() : errorOfSsh;
    if (code == errorOfSsh) return FailureOfSsh(output, address_);
    if (code == notFound || code == cannotRun)
        return {farTrouble,
                FromQt(tr("It has no systemd-stdio-bridge, which carries the requests to its clock."))};
    return {farTrouble, FromQt(tr("Its system bus can't be reached. %1").arg(LastLine(output)))};
}

}  // namespace switchdesk
