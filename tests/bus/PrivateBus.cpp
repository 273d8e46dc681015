#include "PrivateBus.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace platform::test {

namespace {

std::string NewDirectory() {
    std::string directory = std::filesystem::temp_directory_path() / "bus-test-XXXXXX";
    if (!mkdtemp(directory.data())) throw std::runtime_error("no temporary directory");
    return directory;
}

void WriteConfiguration(const std::string& directory) {
    std::ofstream(directory + "/bus.conf")
        << "<busconfig><type>session</type><listen>unix:path=" << directory << "/socket</listen>"
        << "<servicedir>" << directory << "</servicedir>"
        << "<policy context='default'><allow send_destination='*'/><allow receive_sender='*'/>"
        << "<allow own='*'/></policy><limit name='max_message_size'>100000000</limit>"
        << "<limit name='max_incoming_bytes'>100000000</limit>"
        << "<limit name='max_outgoing_bytes'>100000000</limit></busconfig>";
}

pid_t StartDaemon(const std::string& directory, int addressPipe) {
    const pid_t child = fork();
    if (child != 0) return child;
    dup2(addressPipe, STDOUT_FILENO);
    const int log = open((directory + "/log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (log >= 0) dup2(log, STDERR_FILENO);
    const std::string configuration = "--config-file=" + directory + "/bus.conf";
    execl(DBUS_DAEMON, "dbus-daemon", configuration.c_str(), "--nofork", "--print-address", nullptr);
    _exit(127);
}

}  // namespace

PrivateBus::PrivateBus() : directory_(NewDirectory()) {
    WriteConfiguration(directory_);
    int addressPipe[2];
    if (pipe(addressPipe) != 0) throw std::runtime_error("no pipe");
    daemon_ = StartDaemon(directory_, addressPipe[1]);
    close(addressPipe[1]);
    // The address comes once the daemon listens.
    char first = 0;
    const bool listens = read(addressPipe[0], &first, 1) == 1;
    close(addressPipe[0]);
    if (!listens) throw std::runtime_error("the bus daemon did not start");
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + directory_ + "/socket").c_str(), 1);
}

PrivateBus::~PrivateBus() {
    Stop();
    std::filesystem::remove_all(directory_);
}

void PrivateBus::AddService(const std::string& name, const std::string& command) {
    std::ofstream(directory_ + "/" + name + ".service")
        << "[D-BUS Service]\nName=" << name << "\nExec=" << command << "\n";
    kill(daemon_, SIGHUP);
}

void PrivateBus::Stop() {
    if (daemon_ == 0) return;
    kill(daemon_, SIGKILL);
    waitpid(daemon_, nullptr, 0);
    daemon_ = 0;
}

void PrivateBus::Freeze() {
    kill(daemon_, SIGSTOP);
    int status = 0;
    waitpid(daemon_, &status, WUNTRACED);
}

void PrivateBus::Thaw() {
    kill(daemon_, SIGCONT);
}

void PrivateBus::Narrow() {
    const int size = 4096;
    for (int descriptor = 3; descriptor < 64; ++descriptor)
        setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
}

}  // namespace platform::test
