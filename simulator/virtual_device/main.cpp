// The simulated device, served over USB/IP to any Linux computer.

#include "DeviceCommands.h"
#include "StandardStreams.h"
#include "UsbIpServer.h"
#include "WireText.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void stop(const QString& what, const QString& why) {
    (void)std::fprintf(stderr, "tavro-virtual-device: %s: %s\n", qPrintable(what), qPrintable(why));
    std::exit(EXIT_FAILURE);
}

unsigned number(const QString& text, unsigned least, unsigned most) {
    const auto value = decimalNumber(text.toUtf8(), least, most);
    if (!value) stop(text, "no such number");
    return *value;
}

/// Ends the program after --help and after wrong options.
void parseOptions(QCommandLineParser& parser, const QCoreApplication& application) {
    parser.setApplicationDescription("Serves a virtual capture device over USB/IP on 127.0.0.1; attach it with\n"
                                     "  usbip attach -r 127.0.0.1 -b 1-1\n"
                                     "Its commands are fault, clear, unplug, plug and show: docs/virtual-device.md.");
    parser.addHelpOption();
    parser.addOptions({
        {"attach", "plug it into this computer's kernel (needs root and the module vhci_hcd)"},
        {"port", "TCP port, 3240 if not given", "N", "3240"},
        {"commands", "read commands from this named pipe instead of standard input", "FIFO"},
        {"wire-log", "write every request to the device's units to this file", "FILE"},
        {"video-control-interface", "number of the VideoControl interface, 0 or 1", "N", "0"},
    });
    parser.process(application);
    if (const QStringList others = parser.positionalArguments(); !others.isEmpty())
        stop(others.front(), "takes options only");
}

/// Opens a file of one type, and not through a link: another user may have planted one.
int openFile(const QString& path, int flags, mode_t type, const char* otherType) {
    // For writing and reading, a FIFO neither waits for another program nor ends with it.
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | flags, 0644);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) stop(path, std::strerror(errno));
    if ((status.st_mode & S_IFMT) != type) stop(path, otherType);
    return file;
}

void logWireTo(const QString& path, SimulatedDevice& device) {
    const int file = openFile(path, O_CREAT | O_TRUNC, S_IFREG, "not a regular file");
    std::FILE* log = ::fdopen(file, "w"); // open until the program ends
    if (!log) stop(path, std::strerror(errno));
    device.onRequest = [log](const RecordedRequest& request) {
        (void)std::fprintf(log, "%s\n", wireText(request).c_str()); // a failure loses the line only
        (void)std::fflush(log);
    };
}

/// Drops root's rights, which were needed to attach: continues as the user who called sudo, or as nobody.
void giveUpRights() {
    if (::geteuid() != 0) return;
    const auto id = [](const char* name) {
        constexpr unsigned kNobody = 65534;
        constexpr unsigned kMaxId = 0xfffffffe; // the next one means "unchanged"
        return decimalNumber(qgetenv(name), 1, kMaxId).value_or(kNobody);
    };
    const gid_t group = id("SUDO_GID");
    if (::setgroups(0, nullptr) != 0 || ::setgid(group) != 0 || ::setuid(id("SUDO_UID")) != 0)
        stop("can't give up root's rights", std::strerror(errno));
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    // Messages are English. Qt needs a UTF-8 locale and would warn of another.
    qputenv("LC_ALL", "C.UTF-8");
    qunsetenv("LANGUAGE");
    // In the background of a terminal, reads must fail instead of stopping the process.
    (void)std::signal(SIGTTIN, SIG_IGN);
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    parseOptions(options, application);
    const auto port = static_cast<std::uint16_t>(number(options.value("port"), 1, 65535));
    SimulatedDevice device;
    device.videoControlInterface = static_cast<std::uint8_t>(number(options.value("video-control-interface"), 0, 1));
    if (options.isSet("wire-log")) logWireTo(options.value("wire-log"), device);
    VirtualCaptureDevice capture(device);
    int commands = STDIN_FILENO;
    if (options.isSet("commands")) commands = openFile(options.value("commands"), 0, S_IFIFO, "not a FIFO");
    UsbIpServer server(capture, commands);
    const bool attach = options.isSet("attach");
    const QString failure = attach ? server.attachToThisMachine() : server.listen(port);
    if (!failure.isEmpty()) stop(attach ? "can't attach" : "can't listen", failure);
    giveUpRights();
    std::puts("ready");
    (void)std::fflush(stdout); // for a reader of a pipe
    return QCoreApplication::exec();
}
