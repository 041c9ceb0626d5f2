// Requests of other documents. The first byte chooses an operation and a place for a request that
// is sound so far, 0 none: then all bytes are the request. Whatever it is, it is answered or
// refused, replies are whole, and the documents stay sound.
#include "formula/CCRemoteRef.h"
#include "host/Links.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

using namespace cells::host;

constexpr std::size_t kOperations = 22;

struct Office {
    Office() {
        for (Workbook * book : {&a, &b}) book->Add("Sheet1");
        links.Open("a.cvs", a, ReadLinks::kYes);
        links.Open("b.cvs", b, ReadLinks::kYes);
        Sheet & sheet = a.At(0);
        sheet.Enter("A1", "5");
        sheet.Enter("A2", "=A1*2");
        sheet.Enter("A3", "=SUM(A1:A2)+REMOTE(\"b\",\"B1\")");
        sheet.Enter("A4", "=REMOTE(\"b.cvs\",\"Sheet1!B1\")");
        b.At(0).Enter("B1", "=REMOTE(\"a\",\"A2\")");
        sheet.DefineName("Part", *ParseArea("A1:A2"));
        links.Recalculate();
    }
    Links links;
    Workbook a{"C"}, b{"C"};
};

std::vector<std::uint8_t> RequestOf(std::uint8_t const * data, std::size_t size) {
    static wchar_t const * const kItems[] = {L"A1",         L"A2", L"Sheet1!A3", L"A1:A3",
                                             L"!A4",        L"C9", L"Part",      L"Sheet2!A1",
                                             L"IV65536:A1", L"",   L"A1:IV65536"};
    if (size == 0 || data[0] == 0) return {data, data + size};
    std::size_t const choice = data[0] - 1u;
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    CCRemoteRef const ref(L"a", kItems[choice / kOperations % std::size(kItems)]);
    ar << std::uint32_t(choice % kOperations + 1);
    ref.Write(nullptr, ar);
    ar.Write(data + 1, size - 1);
    ar.Flush();
    return file.Bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    Office office;
    std::vector<std::uint8_t> const request = RequestOf(data, size);
    CMemFile file(request.data(), request.size());
    int operation = 0;
    CCRemoteRef ref;
    bool const isRequest = CCTransportInterface::ReadRequest(file, operation, ref);
    bool answered = false;
    try {
        answered = office.links.Answer(file, true);
    } catch (CArchiveException const &) {
    }
    if (answered && (!isRequest || !CCTransportInterface::IsReply(file, operation))) std::abort();
    for (int number = 0; number <= int(kOperations) + 1; ++number) {
        CMemFile reply(data, size);
        CCTransportInterface::IsReply(reply, number);
    }
    office.links.Recalculate();
    for (Workbook * book : {&office.a, &office.b}) {
        for (std::string const & flaw : book->CheckInvariants())
            if (flaw.find("walks left open") == std::string::npos) {
                std::cerr << flaw << '\n';
                std::abort();
            }
    }
    return 0;
}
