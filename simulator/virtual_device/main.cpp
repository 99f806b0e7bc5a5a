// A capture device for any Linux machine: the simulated one, served over USB/IP.

#include "UsbIpServer.h"
#include "WireText.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <getopt.h>
#include <unistd.h>

namespace {

constexpr const char* kUsage =
    "usage: tavro-virtual-device [OPTION...]\n"
    "Serves a virtual capture device over USB/IP on 127.0.0.1; attach it with\n"
    "  usbip attach -r 127.0.0.1 -b 1-1\n"
    "\n"
    "  --attach                     plug it into this machine's kernel by itself (needs root and the\n"
    "                               module vhci_hcd)\n"
    "  --port N                     TCP port, 3240 if not given\n"
    "  --commands FIFO              take commands from there instead of standard input\n"
    "  --wire-log FILE              write every request to the units there, one a line\n"
    "  --video-control-interface N  number of the VideoControl interface, 0 or 1\n"
    "  --help\n"
    "\n"
    "Commands: fault stall|time-out|short|garbage|unplug get|set|get-len|get-info|any SELECTOR|any [N],\n"
    "clear, unplug, plug, show.\n";

struct Options {
    bool attach = false;
    std::uint16_t port = 3240;
    std::uint8_t videoControlInterface = 0;
    const char* commands = nullptr;
    const char* wireLog = nullptr;
};

[[noreturn]] void stop(const char* what, const char* why) {
    (void)std::fprintf(stderr, "tavro-virtual-device: %s: %s\n", what, why);
    std::exit(EXIT_FAILURE);
}

template <class Number>
Number number(const char* text, Number least, Number most) {
    Number value = 0;
    const char* end = text + std::strlen(text);
    const auto [last, error] = std::from_chars(text, end, value);
    if (error != std::errc{} || last != end || value < least || value > most)
        stop(text, "no such number");
    return value;
}

Options parse(int argc, char** argv) {
    constexpr std::array<option, 7> kOptions{{{"attach", no_argument, nullptr, 'a'},
                                              {"port", required_argument, nullptr, 'p'},
                                              {"commands", required_argument, nullptr, 'c'},
                                              {"wire-log", required_argument, nullptr, 'w'},
                                              {"video-control-interface", required_argument, nullptr, 'i'},
                                              {"help", no_argument, nullptr, 'h'},
                                              {}}};
    Options options;
    for (int sign = 0; (sign = ::getopt_long(argc, argv, "", kOptions.data(), nullptr)) != -1;) {
        if (sign == 'a')
            options.attach = true;
        else if (sign == 'p')
            options.port = number<std::uint16_t>(optarg, 1, 65535);
        else if (sign == 'c')
            options.commands = optarg;
        else if (sign == 'w')
            options.wireLog = optarg;
        else if (sign == 'i')
            options.videoControlInterface = number<std::uint8_t>(optarg, 0, 1);
        else {
            (void)std::fputs(kUsage, sign == 'h' ? stdout : stderr);
            std::exit(sign == 'h' ? EXIT_SUCCESS : EXIT_FAILURE);
        }
    }
    if (optind < argc)
        stop(argv[optind], "takes options only");
    return options;
}

OpenFile openCommands(const char* path) {
    if (!path)
        return OpenFile(STDIN_FILENO);
    // Open for writing too: it does not end when one who commands leaves.
    OpenFile commands(::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!commands)
        stop(path, std::strerror(errno));
    return commands;
}

void logWireTo(const char* path, SimulatedDevice& device) {
    std::FILE* log = path ? std::fopen(path, "we") : nullptr; // open as long as the program runs
    if (path && !log)
        stop(path, std::strerror(errno));
    if (!log)
        return;
    device.onRequest = [log](const RecordedRequest& request) {
        (void)std::fprintf(log, "%s\n", wireText(request).c_str()); // a failure costs no more than the line
        (void)std::fflush(log);
    };
}

} // namespace

int main(int argc, char** argv) {
    const Options options = parse(argc, argv);
    SimulatedDevice device;
    device.videoControlInterface = options.videoControlInterface;
    logWireTo(options.wireLog, device);
    VirtualCaptureDevice capture(device);
    UsbIpServer server(capture, openCommands(options.commands));
    const std::string failure = options.attach ? server.attachToThisMachine() : server.listen(options.port);
    if (!failure.empty())
        stop(options.attach ? "can't attach" : "can't listen", failure.c_str());
    std::puts("ready");
    (void)std::fflush(stdout); // whoever started it through a pipe waits for this
    server.run();
}
