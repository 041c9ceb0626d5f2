// Documents that read each other, in one process and over a local socket.
#include "cells/CCCellManager.h"
#include "formula/CCRemoteRef.h"
#include "host/Links.h"
#include "host/Peers.h"

#include <benchmark/benchmark.h>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace cells::host;

namespace {

struct Document {
    Document(Links & links, char const * name) {
        book.Add("Sheet1");
        links.Open(name, book, ReadLinks::kYes);
    }
    Sheet & Cells() { return book.At(0); }
    Workbook book{"C"};
};

// One value of another document of the process.
void RemoteRead(benchmark::State & state) {
    Links links;
    Document a(links, "a.cvs"), b(links, "b.cvs");
    a.Cells().Enter("A1", "5");
    CCRemoteRef const place(L"a", L"A1");
    CCTransportInterface & reader = b.Cells().Manager();
    CCCellValue value;
    for (auto _ : state) benchmark::DoNotOptimize(reader.DoRemoteGetValue(&place, value, 0));
}
BENCHMARK(RemoteRead);

// A formula that reads one.
void RemoteFormula(benchmark::State & state) {
    Links links;
    Document a(links, "a.cvs"), b(links, "b.cvs");
    a.Cells().Enter("A1", "5");
    b.Cells().Enter("A1", "=REMOTE(\"a\",\"A1\")");
    links.Recalculate();
    for (auto _ : state) {
        links.Refresh(b.book);
        links.Recalculate();
    }
}
BENCHMARK(RemoteFormula);

// One edit that so many formulas of another document read.
void EditUnderLinks(benchmark::State & state) {
    Links links;
    Document a(links, "a.cvs"), b(links, "b.cvs");
    a.Cells().Enter("A1", "1");
    for (int row = 0; row < state.range(0); ++row)
        b.Cells().Enter(Place{0, row}, "=REMOTE(\"a\",\"A1\")+1");
    links.Recalculate();
    int value = 2;
    for (auto _ : state) {
        a.Cells().Enter("A1", std::to_string(value++));
        links.Recalculate();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(EditUnderLinks)->Arg(1000)->Arg(4000)->Arg(16000)->Unit(benchmark::kMillisecond);

// One value of a document of another process.
void SocketRead(benchmark::State & state) {
    auto const socket =
        std::filesystem::temp_directory_path() / ("cvcells-bench-" + std::to_string(getpid()));
    pid_t const server = fork();
    if (server == 0) {
        Links links;
        Document a(links, "a.cvs");
        a.Cells().Enter("A1", "5");
        Peers peers(links);
        peers.Listen(socket);
        for (;;) peers.Poll(std::chrono::seconds(1));
    }
    Links links;
    Peers peers(links);
    links.Add(peers);
    Document b(links, "b.cvs");
    for (bool isConnected = false; !isConnected;) {
        try {
            peers.Connect(socket);
            isConnected = true;
        } catch (std::runtime_error const &) {
            usleep(1000);
        }
    }
    CCRemoteRef const place(L"a", L"A1");
    CCTransportInterface & reader = b.Cells().Manager();
    CCCellValue value;
    for (auto _ : state)
        if (!reader.DoRemoteGetValue(&place, value, 0)) state.SkipWithError("nobody answers");
    kill(server, SIGKILL);
    waitpid(server, nullptr, 0);
    std::filesystem::remove(socket);
}
BENCHMARK(SocketRead)->UseRealTime();

} // namespace
