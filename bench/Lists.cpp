// The lists of a request record, filled up to the largest number of items, and copied by the delivery of an
// answer. The floor is plain vectors of the same strings.
#include <benchmark/benchmark.h>

#include "exchange/dlgAddin.h"
#include "harness/Desk.h"

namespace {

using namespace platform;
using horalink::cListRequest;

// An exchange's answer to an item: command, number, value and answer text.
struct Item {
    Text command, first, second, extra;
};

std::vector<Item> Items(long count) {
    std::vector<Item> items;
    for (long i = 0; i < count; ++i) items.push_back({u"02", DecimalText(i), u"11/18 WED", u"LNK_OK"});
    return items;
}

std::shared_ptr<cListRequest> RecordOf(const std::vector<Item>& items) {
    auto record = std::make_shared<cListRequest>();
    for (const Item& item : items) record->AddToList(item.command, item.first, item.second, item.extra);
    return record;
}

// Eight lists like those of the record, four of which have contents.
std::vector<std::vector<Text>> ListsOf(const std::vector<Item>& items) {
    std::vector<std::vector<Text>> lists(cListRequest::ListCount);
    for (const Item& item : items) {
        lists[0].push_back(item.command);
        lists[1].push_back(item.first);
        lists[2].push_back(item.second);
        lists[3].push_back(item.extra);
        for (std::size_t empty = 4; empty < lists.size(); ++empty) lists[empty].emplace_back();
    }
    return lists;
}

void FillRecord(benchmark::State& state) {
    const auto items = Items(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(RecordOf(items));
}

void FillVectors(benchmark::State& state) {
    const auto items = Items(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(ListsOf(items));
}

// The response is an object of this process, to leave out the bus. As from any host, every field of every
// item is fetched by a late-bound call.
void CopyByCallBack(benchmark::State& state) {
    desk::Desk computer;
    horalink::ModuleData data;
    const auto dialog = std::make_shared<horalink::dlgAddin>(computer.services, data);
    const ObjectRef response = RecordOf(Items(state.range(0)));
    for (auto _ : state) {
        ObjectRef given = response;
        dialog->CallBack(given);
    }
}

void CopyVectors(benchmark::State& state) {
    const auto lists = ListsOf(Items(state.range(0)));
    for (auto _ : state) {
        auto copy = lists;
        benchmark::DoNotOptimize(copy.data());
    }
}

// The floor for late-bound reading: the same calls, without keeping the results.
void ReadLateBound(benchmark::State& state) {
    const ObjectRef response = RecordOf(Items(state.range(0)));
    for (auto _ : state)
        for (std::int16_t i = 0; i < state.range(0); ++i)
            for (const char* list : {"CMD", "FirstData", "SecondData", "ExtraData"})
                benchmark::DoNotOptimize(Get(response, list, ByRef(i)).ToText());
}

}  // namespace

BENCHMARK(FillRecord)->Arg(4096)->Arg(8192)->Arg(16384)->Arg(32767);
BENCHMARK(FillVectors)->Arg(32767);
BENCHMARK(CopyByCallBack)->Arg(4096)->Arg(8192)->Arg(16384)->Arg(32767);
BENCHMARK(CopyVectors)->Arg(32767);
BENCHMARK(ReadLateBound)->Arg(32767);
BENCHMARK_MAIN();
