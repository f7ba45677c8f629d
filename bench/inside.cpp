// In-process operations, each compared with the simplest fast implementation.
#include <benchmark/benchmark.h>
#include <gvariant_data.h>

#include <chrono>
#include <cstring>

#include "fixture.h"
#include "internal/notify.h"
#include "internal/records.h"
#include "internal/segments.h"
#include "reference.h"
#include "samples.h"
#include "signal_callbacks.h"

namespace
{
using namespace bench;
using benchmark::State;

constexpr std::size_t kKilobyte = 1000;
constexpr std::size_t kTrackRecord = 1040;
constexpr std::size_t kEapRecord = 512;

std::size_t SizeOf(const State& state)
{
    return static_cast<std::size_t>(state.range(0));
}

std::size_t BytesOf(const State& state)
{
    return SizeOf(state) * kKilobyte;
}

template <class Operation>
double Timed(Operation operation)
{
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ExtractLibrary(State& state)
{
    GVariant* const value = ReceivedRecord(kTrackRecord);
    unsigned char dest[kTrackRecord];
    for (auto _ : state)
    {
        gvariant_data_extract(dest, value);
        benchmark::DoNotOptimize(dest);
    }
    g_variant_unref(value);
}

void ExtractIterator(State& state)
{
    GVariant* const value = ReceivedRecord(kTrackRecord);
    unsigned char dest[kTrackRecord];
    for (auto _ : state)
    {
        ExtractByIterator(dest, value);
        benchmark::DoNotOptimize(dest);
    }
    g_variant_unref(value);
}

void BuildLibrary(State& state)
{
    std::vector<unsigned char> data = SampleBytes(kEapRecord);
    for (auto _ : state) g_variant_unref(g_variant_ref_sink(gvariant_data_build(data.data(), kEapRecord)));
}

void BuildIterator(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(kEapRecord);
    for (auto _ : state) g_variant_unref(g_variant_ref_sink(BuildByIterator(data.data(), data.size())));
}

void NamesLibrary(State& state)
{
    const auto page = Page(SizeOf(state));
    std::vector<std::string> list;
    for (auto _ : state) qbx::CopyNames(page, list);
}

void NamesPacked(State& state)
{
    const PackedNames names(SampleNames(SizeOf(state)));
    std::vector<std::string> list;
    for (auto _ : state) Unpack(names, list);
}

void NamesNaive(State& state)
{
    const auto page = Page(SizeOf(state));
    std::vector<std::string> list;
    for (auto _ : state) CopyNamesNaively(page.begin->name, page.count, list);
}

void ArtworkLibrary(State& state)
{
    const auto picture = Picture(BytesOf(state));
    for (auto _ : state)
    {
        std::vector<unsigned char> image = qbx::CopyBytes(picture);
        benchmark::DoNotOptimize(image.data());
    }
}

void ArtworkRaw(State& state)
{
    const auto picture = Picture(BytesOf(state));
    for (auto _ : state) CopyRaw(picture.begin, picture.count);
}

// The second argument is the number of listeners.
void EventLibrary(State& state)
{
    Picture(BytesOf(state));
    const Audience audience(static_cast<std::size_t>(state.range(1)));
    GVariant* const head = ReceivedRecord(sizeof(qbx::ArtworkHead));
    ComZarnLinuxIpod* const proxy = Proxy();
    for (auto _ : state) qbx::CallBack_OnIpodArtworkChange(proxy, head, &Client());
    g_variant_unref(head);
}

void EventRaw(State& state)
{
    const auto picture = Picture(BytesOf(state));
    for (auto _ : state)
        for (auto copies = state.range(1) + 1; copies > 0; --copies) CopyRaw(picture.begin, picture.count);
}

void FillLibrary(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(BytesOf(state));
    QBXByteVector* const buffer = WriteBuffer(data.size());
    for (auto _ : state) qbx::Replace(buffer, qbx::bufferMapping, data);
}

void FillRaw(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(BytesOf(state));
    QBXByteVector* const buffer = WriteBuffer(data.size());
    for (auto _ : state)
    {
        std::memcpy(buffer->data(), data.data(), data.size());
        benchmark::ClobberMemory();
    }
}

// The vector grows from empty; freeing its memory is not measured.
void FillEmptyLibrary(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(BytesOf(state));
    for (auto _ : state)
    {
        QBXByteVector* const buffer = WriteBuffer(0);
        state.SetIterationTime(Timed([&] { qbx::Replace(buffer, qbx::bufferMapping, data); }));
    }
}

void FillEmptyRaw(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(BytesOf(state));
    QBXByteVector* const buffer = WriteBuffer(data.size());
    for (auto _ : state) state.SetIterationTime(Timed([&] { std::memcpy(buffer->data(), data.data(), data.size()); }));
}

void DispatchLibrary(State& state)
{
    const Audience audience(SizeOf(state));
    iPodPlayerPlayStatus status{};
    for (auto _ : state) qbx::Notify(Client(), &IQBXIpodPlayerListener::OnPlayStatusChanged, status);
}

void DispatchWalk(State& state)
{
    const Audience audience(SizeOf(state));
    iPodPlayerPlayStatus status{};
    for (auto _ : state)
    {
        const qbx::ListenerLock lock(Client());
        for (IQBXIpodPlayerListener* const listener : Client().GetListeners()) listener->OnPlayStatusChanged(status);
    }
}

void Control(State& state)
{
    const std::vector<unsigned char> data = SampleBytes(100 * kKilobyte);
    for (auto _ : state) CopyRaw(data.data(), data.size());
}

void Pages(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(1000)->Arg(10000);
}

void Pictures(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(300)->Arg(900);
}

void Audiences(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({100, 1})->Args({100, 10})->Args({900, 1});
}

void Fills(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(10)->Arg(100)->Arg(300)->Arg(900);
}

BENCHMARK(ExtractLibrary);
BENCHMARK(ExtractIterator);
BENCHMARK(BuildLibrary);
BENCHMARK(BuildIterator);
BENCHMARK(NamesLibrary)->Apply(Pages);
BENCHMARK(NamesPacked)->Apply(Pages);
BENCHMARK(NamesNaive)->Apply(Pages);
BENCHMARK(ArtworkLibrary)->Apply(Pictures);
BENCHMARK(ArtworkRaw)->Apply(Pictures);
BENCHMARK(EventLibrary)->Apply(Audiences);
BENCHMARK(EventRaw)->Apply(Audiences);
BENCHMARK(FillLibrary)->Apply(Fills);
BENCHMARK(FillRaw)->Apply(Fills);
BENCHMARK(FillEmptyLibrary)->Arg(100)->UseManualTime();
BENCHMARK(FillEmptyRaw)->Arg(100)->UseManualTime();
BENCHMARK(DispatchLibrary)->Arg(10)->Arg(100);
BENCHMARK(DispatchWalk)->Arg(10)->Arg(100);
BENCHMARK(Control)->Name("ControlA");
BENCHMARK(Control)->Name("ControlB");
}  // namespace

BENCHMARK_MAIN();
