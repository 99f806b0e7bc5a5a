// What one block read and one change of a setting cost through the program's layers, beside the bare kernel
// calls on the same device: run it where tavro-virtual-device is attached (scripts/test-kernel does).
//
//     request-bench NODE [Google Benchmark's options]
//
// NODE is the device's capture node, for the bare calls. Heap allocations on the way are counted. Log lines
// go nowhere here: what they cost is the log's.

#include "VN318UvcController.h"
#include "host/Clock.h"
#include "host/Log.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>

#include <fcntl.h>
#include <linux/uvcvideo.h>
#include <sys/ioctl.h>

namespace {

constexpr std::uint8_t kSetCur = 0x01;
constexpr std::uint8_t kGetCur = 0x81;

std::size_t allocations = 0;
int node = -1;
std::unique_ptr<CVn318UvcController> controller;
std::array<std::uint8_t, 7> audio{};

void query(benchmark::State& state, std::uint8_t request) {
    uvc_xu_control_query audioQuery{3, 13, request, audio.size(), audio.data()};
    if (::ioctl(node, UVCIOC_CTRL_QUERY, &audioQuery) != 0)
        state.SkipWithError("the kernel refused the request");
}

void readBare(benchmark::State& state) {
    for (auto _ : state)
        query(state, kGetCur);
}

void changeBare(benchmark::State& state) {
    for (auto _ : state) {
        query(state, kGetCur);
        audio[3] = static_cast<std::uint8_t>(audio[3] + 1);
        query(state, kSetCur);
    }
}

template <class Request>
void throughLayers(benchmark::State& state, Request request) {
    const std::size_t before = allocations;
    for (auto _ : state) {
        if (!request())
            state.SkipWithError("the device can't be reached");
    }
    state.counters["allocations"] = static_cast<double>(allocations - before);
}

void readThroughLayers(benchmark::State& state) {
    throughLayers(state,
                  [] { return controller->getDataFor(UVCRequest::GET_CUR, audio.size(), 13, 3, audio); });
}

void changeThroughLayers(benchmark::State& state) {
    throughLayers(state, [volume = 0]() mutable { return controller->SetMicrophoneVolume(++volume); });
}

} // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void deliverLogMessage(std::string_view /*message*/) {
}
std::time_t hostTime() {
    return std::time(nullptr);
}
void sleepForTimeInterval(double /*seconds*/) {
}

int main(int argc, char** argv) {
    node = argc > 1 ? ::open(argv[1], O_RDWR | O_CLOEXEC) : -1;
    controller = CVn318UvcController::CreateInstance();
    // The first request chooses the way.
    if (node < 0 || !controller || !controller->getDataFor(UVCRequest::GET_CUR, audio.size(), 13, 3, audio)) {
        (void)std::fprintf(stderr, "usage: request-bench NODE [OPTION...], with the device attached\n");
        return EXIT_FAILURE;
    }
    // A fixed number, so that instructions counted from outside can be divided by it.
    constexpr benchmark::IterationCount kIterations = 2000;
    benchmark::RegisterBenchmark("read_bare", readBare)->Iterations(kIterations);
    benchmark::RegisterBenchmark("read_through_layers", readThroughLayers)->Iterations(kIterations);
    benchmark::RegisterBenchmark("change_bare", changeBare)->Iterations(kIterations);
    benchmark::RegisterBenchmark("change_through_layers", changeThroughLayers)->Iterations(kIterations);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    controller.reset();
    return EXIT_SUCCESS;
}
