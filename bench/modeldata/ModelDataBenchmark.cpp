// The model's half of loading and saving a large configuration: 50 keysets, each four full
// layers of controls and displays with actions, from an already parsed tree into the model and
// back, plus the whole-keyset operations of the keyset commands.

#include "ConfigGenerator.h"
#include "core/PlistValue.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <memory>

namespace {

using corvane::PlistValue;

constexpr int kKeysets = 50;

struct Fixture
{
    Corvane_Constant_Server constants;
    std::unique_ptr<CorvaneModelData> model;
    PlistValue tree;
    qint64 controls = 0;

    Fixture()
    {
        corvane::ConfigGenerator generator;
        model = generator.generateConfiguration(kKeysets);
        tree = PlistValue::makeDict();
        model->writeTo(tree);
        for (const auto& keyset : model->keysets()) {
            for (const auto& layer : keyset->layers()) {
                for (const auto& group : layer->groups())
                    controls += qint64(group.size());
                for (const auto& group : layer->displayGroups())
                    controls += qint64(group.size());
            }
        }
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

// Freeing the previous iteration's model is not part of loading the next one.
void settle(benchmark::State& state)
{
    state.PauseTiming();
    TVKKeyset::resetTargetIDs();
    malloc_trim(0);
    state.ResumeTiming();
}

void BM_TreeIntoModel(benchmark::State& state)
{
    const PlistValue& tree = fixture().tree;
    for (auto _ : state) {
        auto model = std::make_unique<CorvaneModelData>(tree);
        benchmark::DoNotOptimize(model.get());
        state.PauseTiming();
        model.reset();
        state.ResumeTiming();
        settle(state);
    }
    state.counters["controls"] = double(fixture().controls);
}

void BM_ModelIntoTree(benchmark::State& state)
{
    for (auto _ : state) {
        PlistValue tree = PlistValue::makeDict();
        fixture().model->writeTo(tree);
        benchmark::DoNotOptimize(tree);
        state.PauseTiming();
        tree = PlistValue();
        state.ResumeTiming();
        settle(state);
    }
}

void BM_NewKeyset(benchmark::State& state)
{
    CorvaneModelData& model = *fixture().model;
    for (auto _ : state) {
        auto keyset = model.createKeysetWithName(QStringLiteral("New"), corvane::fourCC("NEWK"));
        benchmark::DoNotOptimize(keyset.get());
        state.PauseTiming();
        keyset.reset();
        state.ResumeTiming();
        settle(state);
    }
}

void BM_CopyKeysetWithoutEmulation(benchmark::State& state)
{
    const TVKKeyset& source = *fixture().model->keysetAtIndex(0);
    for (auto _ : state) {
        auto copy = source.copyWithoutEmulation();
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
        settle(state);
    }
}

BENCHMARK(BM_TreeIntoModel)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelIntoTree)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_NewKeyset)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_CopyKeysetWithoutEmulation)->Unit(benchmark::kMillisecond)->MinTime(1.0);

} // namespace

BENCHMARK_MAIN();
