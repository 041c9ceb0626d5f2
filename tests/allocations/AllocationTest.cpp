// What happens when memory ends: a day's work on a sheet, in which the n-th allocation fails, for
// n = 1, 2, 3 and so on until the work gets through. Whatever the failure interrupts, nothing may
// leak or crash, and the same sheet must take the same work again and give the right results.
#include "host/LegacyFile.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

long g_untilFailure = -1; // negative: none fails
bool g_failed = false;

void * Allocate(std::size_t size) {
    if (g_untilFailure >= 0 && g_untilFailure-- == 0) {
        g_failed = true;
        throw std::bad_alloc();
    }
    if (void * memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

} // namespace

void * operator new(std::size_t size) { return Allocate(size); }
void * operator new[](std::size_t size) { return Allocate(size); }
void * operator new(std::size_t size, std::nothrow_t const &) noexcept {
    return std::malloc(size ? size : 1);
}
void operator delete(void * memory) noexcept { std::free(memory); }
void operator delete[](void * memory) noexcept { std::free(memory); }
void operator delete(void * memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void * memory, std::size_t) noexcept { std::free(memory); }

namespace {

using cells::host::Sheet;

void Work(Sheet & sheet) {
    sheet.DefineName("rate", *cells::host::ParseArea("F1"));
    sheet.Enter("F1", "0.5");
    {
        Sheet::Bulk bulk(sheet);
        for (int row = 0; row < 20; ++row) {
            bulk.Enter({0, row}, std::to_string(row + 1));
            bulk.Enter({1, row}, "=A" + std::to_string(row + 1) + "*rate");
        }
        bulk.Commit();
    }
    sheet.Enter("C1", "=SUM(A1:A20)+SUM(B1:B20)");
    sheet.Enter("C2", "=IF(C1>300,\"high\",\"low\")+\"!\"");
    sheet.Enter("C3", "'a text that is longer than a short one");
    sheet.Enter("C4", "={1,2;3,4}+MAX(A1:A20)");
    sheet.Enter("C5", "=C5");
    sheet.Enter("C5", "=((1");
    sheet.SetNumberFormat(*cells::host::ParseArea("C1:D9"), "$0.00;-0.00");
    sheet.Recalculate();
    sheet.Enter("A1", "11");
    sheet.Recalculate();
}

bool IsRight(Sheet & sheet) {
    // 1 to 20 with 11 for 1 is 220; half of it again makes 330.
    return sheet.Text("C1") == "$330.00" && sheet.Text("C2") == "high!" &&
           sheet.Text("C3") == "'a text that is longer than a short one" &&
           sheet.Text("C4") == "$30.00" && sheet.Text("C5") == "=((1" &&
           sheet.CheckInvariants().empty();
}

// A smaller piece of work: a sheet that comes back from a file of the older version.
void LegacyWork(Sheet & sheet) {
    Sheet source("C");
    source.DefineName("rate", *cells::host::ParseArea("A1"));
    source.Enter("A1", "0.5");
    source.Enter("A2", "=-rate*4+SUM(A1:A1)");
    source.Enter("A3", "!A1");
    source.Enter("A4", "a text that is longer than a short one");
    source.Recalculate();
    Sheet fresh("C");
    cells::host::ReadLegacyFile(cells::host::WriteLegacyFile(source).bytes, fresh);
    sheet.Enter("A1", fresh.Text("A2"));
    sheet.Enter("A2", fresh.EditText({0, 1}));
    sheet.Enter("A3", fresh.Text("A4"));
}

bool IsLegacyRight(Sheet & sheet) {
    return sheet.Text("A1") == "-1.5" && sheet.EditText({0, 1}) == "=-rate * 4 + SUM (A1:A1)" &&
           sheet.Text("A3") == "a text that is longer than a short one";
}

using Job = void (*)(Sheet &);

// Whether the work got through; any other exception than the one for memory ends the test.
bool GetsThrough(Job work, Sheet & sheet, long failing) {
    g_failed = false;
    g_untilFailure = failing;
    try {
        work(sheet);
    } catch (std::bad_alloc const &) {
    }
    g_untilFailure = -1;
    return !g_failed;
}

// Fails each allocation of the work once. False for a wrong result, or for too few of them.
bool Endures(char const * name, Job work, bool (*isRight)(Sheet &), long fewest) {
    {
        Sheet sheet("C"); // what is made once for a process
        GetsThrough(work, sheet, -1);
    }
    long failing = 0;
    for (bool through = false; !through; ++failing) {
        Sheet sheet("C");
        through = GetsThrough(work, sheet, failing);
        work(sheet);
        if (isRight(sheet)) continue;
        std::printf("%s: wrong results behind failing allocation %ld\n", name, failing);
        sheet.ForEachOccupied([&](cells::host::Place place) {
            std::printf("%s: %s\n", NameOf(place).c_str(), sheet.Text(place).c_str());
        });
        for (std::string const & flaw : sheet.CheckInvariants()) std::printf("%s\n", flaw.c_str());
        return false;
    }
    std::printf("%s: %ld allocations, each of them failed once\n", name, failing - 1);
    return failing > fewest;
}

} // namespace

int main() {
    bool const isFine = Endures("a day's work", Work, IsRight, 500) &&
                        Endures("the older version", LegacyWork, IsLegacyRight, 100);
    return isFine ? 0 : 1;
}
