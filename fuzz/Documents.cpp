// Saved documents: whatever the bytes, what can be recovered is alive, and what is written of it
// reads back to the same bytes. Checksums are put right first, so that mutated contents get
// through; the bytes as they came are tried too.
#include "host/Workbook.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using cells::host::Place;
using cells::host::Workbook;

constexpr std::size_t kHead = 12, kSectionHead = 20, kBeforeChecksum = 16;

std::size_t U32At(std::string const & bytes, std::size_t at) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::size_t(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

std::string WithChecksums(std::string bytes) {
    for (std::size_t at = kHead; at + kSectionHead <= bytes.size();) {
        std::size_t const length = U32At(bytes, at + 12);
        if (length > bytes.size() - at - kSectionHead) break;
        std::string_view const view(bytes);
        std::uint32_t const sum =
            cells::host::Checksum(view.substr(at + kSectionHead, length),
                                  cells::host::Checksum(view.substr(at, kBeforeChecksum)));
        for (std::size_t i = 0; i < 4; ++i) bytes[at + kBeforeChecksum + i] = char(sum >> (8 * i));
        at += kSectionHead + length;
    }
    return bytes;
}

std::string Written(Workbook const & book) {
    std::string bytes;
    book.Write([&](std::string_view piece) { bytes += piece; });
    return bytes;
}

void Try(std::string const & document) {
    auto const recovered = Workbook::Recover(document, "C");
    Workbook & book = *recovered.book;
    std::string const first = Written(book);
    if (Written(*Workbook::Read(first, "C")) != first) std::abort();
    for (int i = 0; i < book.Count(); ++i) {
        book.At(i).ForEachOccupied([&](Place place) {
            book.At(i).Text(place);
            book.At(i).EditText(place);
        });
        book.At(i).Enter("A1", "2");
        book.At(i).InsertRows(0);
    }
    book.Recalculate();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const *>(data), size);
    Try(bytes);
    Try(WithChecksums(bytes));
    return 0;
}
