// A connection to the system bus of another machine, through the operator's own ssh.
#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <functional>
#include <memory>

#include "host/Answer.h"

namespace switchdesk {

class SshTunnel {
    Q_DECLARE_TR_FUNCTIONS(SshTunnel)

  public:
    // Starts ssh, which never prompts and accepts only known host keys. `ended` is called once, unless the
    // tunnel is destroyed first, and may destroy it. `address` is [user@]host.
    SshTunnel(const QString& address, std::function<void(const Failure& why)> ended);

    // The local end of the tunnel. The first caller becomes its owner; later ones get -1.
    int TakeSocket();

  private:
    struct Ender {
        void operator()(QProcess* ssh) const;
    };

    Failure WhyEnded() const;

    const QString address_;
    int socket_ = -1;
    std::unique_ptr<QProcess, Ender> ssh_;
};

}  // namespace switchdesk
