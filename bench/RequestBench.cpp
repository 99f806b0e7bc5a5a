// Measures one block read and one change of a setting through the program's layers, compared with the bare kernel calls
// on the same device, which open a known node, send one request and close it. It needs an attached tavro-virtual-device
// (scripts/bench has one).
//
//     request-bench NODE [Google Benchmark's options]
//
// NODE is the device's capture node, or without the kernel's UVC driver its node in usbfs. Heap allocations of the
// whole process are counted, including those of libraries. Log lines are formatted, but not delivered: no figure
// includes the system log or standard error.

#include "Clock.h"
#include "Log.h"
#include "UniqueFd.h"
#include "VN318UvcController.h"

#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <linux/uvcvideo.h>
#include <sys/ioctl.h>

namespace {

std::atomic<std::size_t> allocations{0}; // libraries may have threads of their own
const char* node = "";
std::unique_ptr<CVn318UvcController> controller;
std::array<std::uint8_t, 7> audio{};

bool query(UVCRequest request) {
    const auto code = static_cast<std::uint8_t>(request);
    const UniqueFd file(::open(node, O_RDWR | O_CLOEXEC));
    if (std::string_view(node).starts_with("/dev/bus/usb/")) {
        const bool isGet = (code & kUsbDeviceToHost) != 0;
        usbdevfs_ctrltransfer transfer{isGet ? Uvc::kGetFromInterface : Uvc::kSetToInterface, code, 13 << 8, 3 << 8,
            audio.size(), 5000, audio.data()};
        return ::ioctl(file.get(), USBDEVFS_CONTROL, &transfer) == static_cast<int>(audio.size());
    }
    uvc_xu_control_query audioQuery{3, 13, code, audio.size(), audio.data()};
    return ::ioctl(file.get(), UVCIOC_CTRL_QUERY, &audioQuery) == 0;
}

template <class Request>
void measure(benchmark::State& state, Request request) {
    const std::size_t before = allocations;
    for (auto _ : state) {
        if (!request()) state.SkipWithError("the device can't be reached");
    }
    state.counters["allocations"] = static_cast<double>(allocations - before);
}

void readBare(benchmark::State& state) {
    measure(state, [] { return query(UVCRequest::GET_CUR); });
}

void changeBare(benchmark::State& state) {
    measure(state, [] {
        if (!query(UVCRequest::GET_CUR)) return false;
        audio[3] = static_cast<std::uint8_t>(audio[3] + 1);
        return query(UVCRequest::SET_CUR);
    });
}

void readThroughLayers(benchmark::State& state) {
    measure(state, [] { return controller->getDataFor(UVCRequest::GET_CUR, audio.size(), 13, 3, audio); });
}

void changeThroughLayers(benchmark::State& state) {
    measure(state, [volume = 0]() mutable { return controller->SetMicrophoneVolume(++volume); });
}

// The log line of a change.
void logLine(benchmark::State& state) {
    measure(state, [] {
        systemLog("[Get old]%s = %d,\n", "Mic gain", audio[3]);
        return true;
    });
}

} // namespace

// glibc's internal names of malloc and the other allocation functions. The definitions here take precedence over the C
// library's in every library of the process; free is not replaced.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t size) noexcept {
    ++allocations;
    return __libc_malloc(size);
}
void* calloc(std::size_t nmemb, std::size_t size) noexcept {
    ++allocations;
    return __libc_calloc(nmemb, size);
}
void* realloc(void* ptr, std::size_t size) noexcept {
    ++allocations;
    return __libc_realloc(ptr, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    ++allocations;
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** memptr, std::size_t alignment, std::size_t size) noexcept {
    ++allocations;
    *memptr = __libc_memalign(alignment, size);
    return *memptr ? 0 : ENOMEM;
}
}

void deliverLogMessage(std::string_view /*message*/) {
}
std::time_t hostTime() {
    return std::time(nullptr);
}
void sleepForTimeInterval(double /*seconds*/) {
}

int main(int argc, char** argv) {
    node = argc > 1 ? argv[1] : "";
    controller = CVn318UvcController::CreateInstance();
    // The first request finds the node.
    if (!query(UVCRequest::GET_CUR) || !controller
        || !controller->getDataFor(UVCRequest::GET_CUR, audio.size(), 13, 3, audio)) {
        (void)std::fprintf(stderr, "usage: request-bench NODE [OPTION...], with the device attached\n");
        return EXIT_FAILURE;
    }
    if (allocations == 0) { // making the controller allocates
        (void)std::fprintf(stderr, "request-bench: heap allocations are not counted\n");
        return EXIT_FAILURE;
    }
    // A fixed number, so that runs can be compared.
    constexpr benchmark::IterationCount kIterations = 500;
    benchmark::RegisterBenchmark("read_bare", readBare)->Iterations(kIterations);
    benchmark::RegisterBenchmark("read_through_layers", readThroughLayers)->Iterations(kIterations);
    benchmark::RegisterBenchmark("change_bare", changeBare)->Iterations(kIterations);
    benchmark::RegisterBenchmark("change_through_layers", changeThroughLayers)->Iterations(kIterations);
    benchmark::RegisterBenchmark("log_line", logLine)->Iterations(kIterations);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    controller.reset();
    return EXIT_SUCCESS;
}
