// The frame of saved documents: sections with checksums.
//
// A document is a head (a mark and a version), then sections: a tag, a sheet number, a part number,
// the length of the payload, a checksum of all that and of the payload, the payload. Every byte is
// under the mark or a checksum, so no damage goes unnoticed. docs/file-formats.md shows each byte.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cells::host {

enum class SectionTag : std::uint32_t {
    kBook = 0x4B4F4F42,       // "BOOK": number of sheets, protection
    kProperties = 0x504F5250, // "PROP": title, author, dates and so on
    kStrings = 0x53525453,    // "STRS": leading and trailing strings
    kSheet = 0x54454853,      // "SHET": name, protection, names, formats of areas
    kCells = 0x4C4C4543,      // "CELL": a run of cells
    kSheetEnd = 0x444E4553,   // "SEND": how many parts the sheet has
    kPending = 0x444E4550,    // "PEND": formulas that wait to be computed
    kDone = 0x454E4F44,       // "DONE": how many sections stand before it
};

constexpr std::uint32_t kNoSheet = 0xFFFFFFFF;
constexpr std::uint32_t kDocumentVersion = 1;

struct Section {
    SectionTag tag;
    std::uint32_t sheet = kNoSheet, part = 0;
    std::uint64_t offset = 0; // in the document
    std::string_view payload;
};

// CRC-32 as in ISO 3309, of bytes that follow those of `before`.
std::uint32_t Checksum(std::string_view bytes, std::uint32_t before = 0);

class ContainerWriter {
public:
    // Takes the bytes of the document in order.
    using Sink = std::function<void(std::string_view)>;

    explicit ContainerWriter(Sink sink);
    void Add(SectionTag tag, std::uint32_t sheet, std::uint32_t part, std::string_view payload);
    // The last section.
    void Finish();

private:
    Sink m_Sink;
    std::uint32_t m_Count = 0;
};

// Something in a document that is not as it should be.
struct Damage {
    std::uint64_t offset = 0; // of its first byte
    std::string what;
};

// The sections of a document that are whole, which borrow its bytes, and what lies between them.
struct Container {
    std::vector<Section> sections;
    std::vector<Damage> damages;
};

Container ReadContainer(std::string_view document);

} // namespace cells::host
